#include "platform/wayland/idle_estimate.hpp"

#include <algorithm>

namespace lumenote::platform::wayland {

void IdleEstimate::idled(double now) {
    if (!idleSince_) {
        idleSince_ = now;
    }
}

void IdleEstimate::resumed() {
    idleSince_.reset();
}

double IdleEstimate::idleSeconds(double now) const {
    if (!idleSince_) {
        return 0.0;
    }
    return thresholdSeconds_ + std::max(0.0, now - *idleSince_);
}

}  // namespace lumenote::platform::wayland
