#include "settings/global_hotkey_binding.hpp"

#include <fmt/format.h>

#include <cstdlib>
#include <limits>

#include "settings/shortcut_key_codes.hpp"

namespace lumenote::settings {

bool isUsableGlobalHotkey(long long keyCode, long long modifiers) {
    return keyCode >= 0 && modifiers >= 0 && (modifiers & kRequiredModifierMask) != 0 &&
           shortcutKeyForCode(keyCode) != nullptr;
}

GlobalHotkeyBinding globalHotkeyBindingFromStored(std::optional<long long> keyCode,
                                                  std::optional<long long> modifiers) {
    if (!keyCode || !modifiers || !isUsableGlobalHotkey(*keyCode, *modifiers)) {
        return {};
    }
    if (*modifiers > std::numeric_limits<std::uint32_t>::max()) {
        std::abort();
    }
    return {static_cast<std::uint32_t>(*keyCode), static_cast<std::uint32_t>(*modifiers)};
}

std::string globalHotkeyDisplayText(const GlobalHotkeyBinding& binding) {
    std::string text;
    if (binding.modifiers & kCarbonControlModifier) {
        text += "Ctrl+";
    }
    if (binding.modifiers & kCarbonOptionModifier) {
        text += "Alt+";
    }
    if (binding.modifiers & kCarbonShiftModifier) {
        text += "Shift+";
    }
    if (binding.modifiers & kCarbonCommandModifier) {
        text += "Super+";
    }
    if (const ShortcutKey* key = shortcutKeyForCode(binding.keyCode)) {
        text += key->displayName;
    } else {
        text += fmt::format("Key 0x{:02X}", binding.keyCode);
    }
    return text;
}

}  // namespace lumenote::settings
