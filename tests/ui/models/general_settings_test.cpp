#include "ui/models/general_settings.hpp"

#include <gtest/gtest.h>

namespace lumenote::ui::models {
namespace {

constexpr std::string_view kModifierSentence = "A global shortcut needs at least one modifier key.";

TEST(GeneralSettings, ARecordedCombinationBecomesItsBinding) {
    struct Case {
        RecordedKeys keys;
        std::uint32_t keyCode;
        std::uint32_t modifiers;
    };
    for (const Case& c : {
             Case{{.keyName = "S", .shift = true, .command = true}, 0x01, 0x300},
             Case{{.keyName = "K", .control = true, .option = true}, 0x28, 0x1800},
             Case{{.keyName = "A", .control = true, .option = true, .shift = true, .command = true},
                  0x00,
                  0x1B00},
             Case{{.keyName = "F5", .option = true}, 0x60, 0x800},
             Case{{.keyName = "Left Arrow", .control = true}, 0x7B, 0x1000},
             Case{{.keyName = "Space", .command = true}, 0x31, 0x100},
         }) {
        const auto binding = bindingFromRecordedKeys(c.keys);
        ASSERT_TRUE(binding.ok()) << c.keys.keyName;
        EXPECT_EQ(*binding, (settings::GlobalHotkeyBinding{c.keyCode, c.modifiers}))
            << c.keys.keyName;
    }
}

TEST(GeneralSettings, NoModifierOrAKeyOutsideTheTableIsRefusedWithOneSentence) {
    for (const RecordedKeys& keys : {
             RecordedKeys{.keyName = "S"}, RecordedKeys{.keyName = "F5"},
             RecordedKeys{.keyName = "", .control = true},
             RecordedKeys{.keyName = "Keypad 5", .control = true},
             RecordedKeys{.keyName = "s", .control = true},  // names are the table's, upper case
         }) {
        const auto binding = bindingFromRecordedKeys(keys);
        ASSERT_FALSE(binding.ok()) << keys.keyName;
        EXPECT_EQ(binding.error(), kModifierSentence);
    }
}

TEST(GeneralSettings, TheShortcutSentenceSaysOffUnavailableOrWhatItDoes) {
    const settings::GlobalHotkeyBinding binding{0x28, 0x1800};
    EXPECT_EQ(shortcutStateText(false, binding, "ignored while off"),
              "The global shortcut is off.");
    EXPECT_EQ(shortcutStateText(true, binding,
                                "Ctrl+Alt+K is already used by macOS or another "
                                "app. Choose a different shortcut."),
              "Ctrl+Alt+K is already used by macOS or another app. Choose a different shortcut.");
    EXPECT_EQ(shortcutStateText(true, binding, ""),
              "Ctrl+Alt+K opens the Lumenote panel, or pauses and resumes a running session.");
}

}  // namespace
}  // namespace lumenote::ui::models
