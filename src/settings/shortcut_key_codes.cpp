#include "settings/shortcut_key_codes.hpp"

#include <algorithm>
#include <array>

namespace lumenote::settings {

namespace {

constexpr std::array<ShortcutKey, 81> kShortcutKeys{{
    {0x00, "A", "a"},
    {0x01, "S", "s"},
    {0x02, "D", "d"},
    {0x03, "F", "f"},
    {0x04, "H", "h"},
    {0x05, "G", "g"},
    {0x06, "Z", "z"},
    {0x07, "X", "x"},
    {0x08, "C", "c"},
    {0x09, "V", "v"},
    {0x0B, "B", "b"},
    {0x0C, "Q", "q"},
    {0x0D, "W", "w"},
    {0x0E, "E", "e"},
    {0x0F, "R", "r"},
    {0x10, "Y", "y"},
    {0x11, "T", "t"},
    {0x12, "1", "1"},
    {0x13, "2", "2"},
    {0x14, "3", "3"},
    {0x15, "4", "4"},
    {0x16, "6", "6"},
    {0x17, "5", "5"},
    {0x18, "=", "equal"},
    {0x19, "9", "9"},
    {0x1A, "7", "7"},
    {0x1B, "-", "minus"},
    {0x1C, "8", "8"},
    {0x1D, "0", "0"},
    {0x1E, "]", "bracketright"},
    {0x1F, "O", "o"},
    {0x20, "U", "u"},
    {0x21, "[", "bracketleft"},
    {0x22, "I", "i"},
    {0x23, "P", "p"},
    {0x24, "Return", "Return"},
    {0x25, "L", "l"},
    {0x26, "J", "j"},
    {0x27, "'", "apostrophe"},
    {0x28, "K", "k"},
    {0x29, ";", "semicolon"},
    {0x2A, "\\", "backslash"},
    {0x2B, ",", "comma"},
    {0x2C, "/", "slash"},
    {0x2D, "N", "n"},
    {0x2E, "M", "m"},
    {0x2F, ".", "period"},
    {0x30, "Tab", "Tab"},
    {0x31, "Space", "space"},
    {0x32, "`", "grave"},
    {0x33, "Delete", "BackSpace"},
    {0x35, "Escape", "Escape"},
    {0x40, "F17", "F17"},
    {0x4F, "F18", "F18"},
    {0x50, "F19", "F19"},
    {0x5A, "F20", "F20"},
    {0x60, "F5", "F5"},
    {0x61, "F6", "F6"},
    {0x62, "F7", "F7"},
    {0x63, "F3", "F3"},
    {0x64, "F8", "F8"},
    {0x65, "F9", "F9"},
    {0x67, "F11", "F11"},
    {0x69, "F13", "F13"},
    {0x6A, "F16", "F16"},
    {0x6B, "F14", "F14"},
    {0x6D, "F10", "F10"},
    {0x6F, "F12", "F12"},
    {0x71, "F15", "F15"},
    {0x73, "Home", "Home"},
    {0x74, "Page Up", "Prior"},
    {0x75, "Forward Delete", "Delete"},
    {0x76, "F4", "F4"},
    {0x77, "End", "End"},
    {0x78, "F2", "F2"},
    {0x79, "Page Down", "Next"},
    {0x7A, "F1", "F1"},
    {0x7B, "Left Arrow", "Left"},
    {0x7C, "Right Arrow", "Right"},
    {0x7D, "Down Arrow", "Down"},
    {0x7E, "Up Arrow", "Up"},
}};

static_assert(std::is_sorted(kShortcutKeys.begin(), kShortcutKeys.end(),
                             [](const ShortcutKey& a, const ShortcutKey& b) {
                                 return a.keyCode < b.keyCode;
                             }));

}  // namespace

std::span<const ShortcutKey> shortcutKeys() {
    return kShortcutKeys;
}

const ShortcutKey* shortcutKeyForCode(long long keyCode) {
    const auto found =
        std::lower_bound(kShortcutKeys.begin(), kShortcutKeys.end(), keyCode,
                         [](const ShortcutKey& key, long long code) { return key.keyCode < code; });
    if (found == kShortcutKeys.end() || found->keyCode != keyCode) {
        return nullptr;
    }
    return &*found;
}

}  // namespace lumenote::settings
