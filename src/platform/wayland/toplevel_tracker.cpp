#include "platform/wayland/toplevel_tracker.hpp"

namespace lumenote::platform::wayland {

void ToplevelTracker::added(Handle toplevel) {
    toplevels_.try_emplace(toplevel);
}

void ToplevelTracker::appIdChanged(Handle toplevel, std::string_view appId) {
    if (const auto found = toplevels_.find(toplevel); found != toplevels_.end()) {
        found->second.pendingAppId = appId;
    }
}

void ToplevelTracker::stateChanged(Handle toplevel, bool activated) {
    if (const auto found = toplevels_.find(toplevel); found != toplevels_.end()) {
        found->second.pendingActivated = activated;
    }
}

bool ToplevelTracker::done(Handle toplevel) {
    const auto found = toplevels_.find(toplevel);
    if (found == toplevels_.end()) {
        return false;
    }
    const Frontmost before = frontmost();
    Toplevel& state = found->second;
    if (state.pendingActivated && !state.activated) {
        state.activation = ++activations_;
    }
    state.activated = state.pendingActivated;
    state.appId = state.pendingAppId;
    return frontmost() != before;
}

bool ToplevelTracker::closed(Handle toplevel) {
    const Frontmost before = frontmost();
    toplevels_.erase(toplevel);
    return frontmost() != before;
}

bool ToplevelTracker::finished() {
    const bool hadFrontmost = frontmost().toplevel.has_value();
    toplevels_.clear();
    return hadFrontmost;
}

std::optional<std::string> ToplevelTracker::frontmostAppId() const {
    return frontmost().appId;
}

ToplevelTracker::Frontmost ToplevelTracker::frontmost() const {
    const std::pair<const Handle, Toplevel>* latest = nullptr;
    for (const auto& entry : toplevels_) {
        if (entry.second.activated &&
            (latest == nullptr || entry.second.activation > latest->second.activation)) {
            latest = &entry;
        }
    }
    if (latest == nullptr) {
        return {};
    }
    return {latest->first, latest->second.appId};
}

}  // namespace lumenote::platform::wayland
