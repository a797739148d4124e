#include "shell/global_hotkey_coordinator.hpp"

#include <optional>
#include <string>

namespace lumenote::shell {

GlobalHotkeyCoordinator::GlobalHotkeyCoordinator(settings::PreferencesStore& preferences,
                                                 HotkeyGrabber* grabber)
    : preferences_(preferences), service_(grabber) {
    registerFromPreferences();
    preferencesToken_ = preferences_.addObserver([this](settings::PreferenceProperty property) {
        if (property == settings::PreferenceProperty::globalHotkeyEnabled ||
            property == settings::PreferenceProperty::globalHotkey) {
            registerFromPreferences();
        }
    });
}

GlobalHotkeyCoordinator::~GlobalHotkeyCoordinator() {
    preferences_.removeObserver(preferencesToken_);
}

void GlobalHotkeyCoordinator::registerFromPreferences() {
    service_.configure(preferences_.globalHotkeyEnabled(), preferences_.globalHotkey());
    const auto& state = service_.state();
    std::optional<std::string> message;
    if (state.kind == GlobalHotkeyRegistrationState::Kind::unavailable) {
        message = state.message;
    }
    // Only a different sentence is written, so that the screens hear of the
    // status when it changes rather than at every registration.
    if (preferences_.globalHotkeyStatusMessage() != message) {
        preferences_.setGlobalHotkeyStatusMessage(std::move(message));
    }
}

}  // namespace lumenote::shell
