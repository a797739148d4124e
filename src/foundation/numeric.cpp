#include "foundation/numeric.hpp"

#include <algorithm>
#include <cmath>

namespace lumenote {
inline namespace foundation {

double roundHalfAwayFromZero(double value) {
    return std::round(value);
}

double clampDuration(double seconds) {
    if (!std::isfinite(seconds)) {
        return 0.0;
    }
    return std::clamp(seconds, 0.0, kMaximumDurationSeconds);
}

double addClampedDuration(double sum, double seconds) {
    return clampDuration(clampDuration(sum) + clampDuration(seconds));
}

double percentRatio(double numerator, double denominator) {
    if (!std::isfinite(numerator) || !std::isfinite(denominator) || denominator < 1.0) {
        return 0.0;
    }
    return std::clamp(numerator / denominator * 100.0, 0.0, 100.0);
}

}  // namespace foundation
}  // namespace lumenote
