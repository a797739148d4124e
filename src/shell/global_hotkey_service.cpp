#include "shell/global_hotkey_service.hpp"

#include "settings/shortcut_key_codes.hpp"

namespace lumenote::shell {

std::string describe(GlobalHotkeyFailure failure, const settings::GlobalHotkeyBinding& binding) {
    switch (failure) {
        case GlobalHotkeyFailure::modifierMissing:
            return "A global shortcut needs at least one modifier key.";
        case GlobalHotkeyFailure::handlerUnavailable:
            return "Lumenote could not install its shortcut handler.";
        case GlobalHotkeyFailure::shortcutTaken:
            return settings::globalHotkeyDisplayText(binding) +
                   " is already used by macOS or another app. Choose a different shortcut.";
        case GlobalHotkeyFailure::noGlobalShortcuts:
            return "This desktop does not let applications use global shortcuts, so Lumenote's "
                   "shortcut is unavailable.";
    }
    return {};
}

GlobalHotkeyService::GlobalHotkeyService(HotkeyGrabber* grabber) : grabber_(grabber) {}

GlobalHotkeyService::~GlobalHotkeyService() {
    releaseRegistered();
}

void GlobalHotkeyService::configure(bool isEnabled, const settings::GlobalHotkeyBinding& binding) {
    isEnabled_ = isEnabled;
    binding_ = binding;
    auto next = registration(binding);
    if (next != state_) {
        state_ = std::move(next);
        stateObservers_.notify(state_);
    }
}

void GlobalHotkeyService::trigger() {
    if (registered_ && onTrigger_) {
        onTrigger_();
    }
}

GlobalHotkeyRegistrationState GlobalHotkeyService::registration(
    const settings::GlobalHotkeyBinding& binding) {
    const auto unavailable = [&binding](GlobalHotkeyFailure failure) {
        return GlobalHotkeyRegistrationState::unavailable(describe(failure, binding));
    };
    if (!isEnabled_) {
        releaseRegistered();
        return GlobalHotkeyRegistrationState::disabled();
    }
    if (grabber_ == nullptr) {
        return unavailable(GlobalHotkeyFailure::noGlobalShortcuts);
    }
    if ((binding.modifiers & settings::kRequiredModifierMask) == 0 ||
        settings::shortcutKeyForCode(binding.keyCode) == nullptr) {
        return unavailable(GlobalHotkeyFailure::modifierMissing);
    }
    if (!handlerInstalled_) {
        if (auto installed = grabber_->installHandler(); !installed) {
            return unavailable(installed.error());
        }
        handlerInstalled_ = true;
    }
    releaseRegistered();
    if (auto grabbed = grabber_->grab(binding); !grabbed) {
        return unavailable(grabbed.error());
    }
    registered_ = binding;
    return GlobalHotkeyRegistrationState::registered();
}

void GlobalHotkeyService::releaseRegistered() {
    if (registered_) {
        grabber_->release();
        registered_.reset();
    }
}

}  // namespace lumenote::shell
