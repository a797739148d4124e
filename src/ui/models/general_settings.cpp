#include "ui/models/general_settings.hpp"

#include "settings/shortcut_key_codes.hpp"
#include "shell/global_hotkey_service.hpp"

namespace lumenote::ui::models {

Result<settings::GlobalHotkeyBinding, std::string> bindingFromRecordedKeys(
    const RecordedKeys& keys) {
    std::uint32_t modifiers = 0;
    if (keys.command) {
        modifiers |= settings::kCarbonCommandModifier;
    }
    if (keys.shift) {
        modifiers |= settings::kCarbonShiftModifier;
    }
    if (keys.option) {
        modifiers |= settings::kCarbonOptionModifier;
    }
    if (keys.control) {
        modifiers |= settings::kCarbonControlModifier;
    }
    for (const settings::ShortcutKey& key : settings::shortcutKeys()) {
        if (key.displayName == keys.keyName) {
            const settings::GlobalHotkeyBinding binding{key.keyCode, modifiers};
            if (settings::isUsableGlobalHotkey(binding.keyCode, binding.modifiers)) {
                return binding;
            }
            break;
        }
    }
    return fail(shell::describe(shell::GlobalHotkeyFailure::modifierMissing, {}));
}

std::string shortcutStateText(bool enabled, const settings::GlobalHotkeyBinding& binding,
                              std::string_view unavailableSentence) {
    if (!enabled) {
        return "The global shortcut is off.";
    }
    if (!unavailableSentence.empty()) {
        return std::string(unavailableSentence);
    }
    return settings::globalHotkeyDisplayText(binding) +
           " opens the Lumenote panel, or pauses and resumes a running session.";
}

}  // namespace lumenote::ui::models
