// The keys a global shortcut may use: macOS virtual key codes (the stored form
// of a binding on every platform) with their display names and the X11 keysym
// each stands for. The preferences accept a stored binding only when its key
// is in this table, and the shortcut service registers and names keys from
// it, so that both always agree on which keys exist.
//
// The table holds the letters, digits and punctuation of the ANSI layout,
// Return, Tab, Space, Delete (backspace), Escape, Forward Delete, Home, End,
// Page Up, Page Down, the four arrows and F1 to F20. Keypad keys, Help and the
// ISO section key are left out: they are missing from many keyboards.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace lumenote::settings {

struct ShortcutKey {
    std::uint32_t keyCode;           // macOS virtual key code (kVK_ANSI_S is 1)
    std::string_view displayName;    // "S", "Return", "F5", "Left Arrow"
    std::string_view x11KeysymName;  // for XStringToKeysym: "s", "Return", "F5", "Left"
};

// Every key, in ascending key-code order.
std::span<const ShortcutKey> shortcutKeys();

// The key with this code; nullptr when it has no display name (and so cannot
// be used). Negative codes and codes beyond 32 bits have none.
const ShortcutKey* shortcutKeyForCode(long long keyCode);

}  // namespace lumenote::settings
