// What the General section of the settings computes: the binding a
// recorded key combination stands for, and the sentence beside the global
// shortcut.
#pragma once

#include <string>
#include <string_view>

#include "foundation/result.hpp"
#include "settings/global_hotkey_binding.hpp"

namespace lumenote::ui::models {

// A key combination as the key recorder saw it: the key's display name in
// the shortcut key table ("S", "F5", "Left Arrow") and the modifiers held.
struct RecordedKeys {
    std::string keyName;
    bool control = false;
    bool option = false;  // Alt
    bool shift = false;
    bool command = false;  // Super
};

// The binding of `keys`, or the shortcut service's own sentence ("A global
// shortcut needs at least one modifier key.") when no modifier is held or
// the key is not one a shortcut may use: the store is then left alone.
Result<settings::GlobalHotkeyBinding, std::string> bindingFromRecordedKeys(
    const RecordedKeys& keys);

// The line under the shortcut: off, the reason it is unavailable (the
// registration's sentence, when there is one), or what the combination does.
std::string shortcutStateText(bool enabled, const settings::GlobalHotkeyBinding& binding,
                              std::string_view unavailableSentence);

}  // namespace lumenote::ui::models
