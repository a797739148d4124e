// The global shortcut's key combination: its stored form, its default, the rule
// that decides whether a stored pair is usable, and its display text.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace lumenote::settings {

// Carbon modifier bits, the stored form of the modifier mask.
inline constexpr std::uint32_t kCarbonCommandModifier = 0x100;
inline constexpr std::uint32_t kCarbonShiftModifier = 0x200;
inline constexpr std::uint32_t kCarbonOptionModifier = 0x800;
inline constexpr std::uint32_t kCarbonControlModifier = 0x1000;
// A usable binding has at least one of these.
inline constexpr std::uint32_t kRequiredModifierMask = 0x1B00;

struct GlobalHotkeyBinding {
    std::uint32_t keyCode = 1;  // macOS virtual key code; 1 is S
    std::uint32_t modifiers = kCarbonCommandModifier | kCarbonShiftModifier;

    friend bool operator==(const GlobalHotkeyBinding&, const GlobalHotkeyBinding&) = default;
};

// True when the mask holds a command, shift, option or control bit and the key
// code is one of the shortcut keys (shortcut_key_codes.hpp).
bool isUsableGlobalHotkey(long long keyCode, long long modifiers);

// The binding a stored pair of integers stands for. A missing, non-integer or
// negative value, a mask without a required modifier, or a key without a
// display name gives the default (key code 1, modifiers 0x300). A usable pair
// whose modifier mask does not fit in 32 bits is not something this program
// ever writes; converting it stops the program (std::abort) instead of
// guessing.
GlobalHotkeyBinding globalHotkeyBindingFromStored(std::optional<long long> keyCode,
                                                  std::optional<long long> modifiers);

// "Ctrl+Alt+Shift+Super+S": the modifiers in that order, named as a Linux
// desktop names them (command is Super, option is Alt), then the key's
// display name, or "Key 0x..." for a key without one.
std::string globalHotkeyDisplayText(const GlobalHotkeyBinding& binding);

}  // namespace lumenote::settings
