#include "platform/linux/x11_hotkey_modifiers.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdint>

// Last: its macros (None) clash with GoogleTest's names.
#include <X11/X.h>

namespace lumenote::platform::linux_desktop {
namespace {

using ::testing::ElementsAre;

TEST(X11HotkeyModifiersTest, CarbonModifiersMapToTheirX11Keys) {
    const std::array<std::pair<std::uint32_t, unsigned int>, 8> table{{
        {0x100, Mod4Mask},
        {0x200, ShiftMask},
        {0x800, Mod1Mask},
        {0x1000, ControlMask},
        {0x1800, ControlMask | Mod1Mask},
        {0x1B00, ControlMask | Mod1Mask | ShiftMask | Mod4Mask},
        {0x400, 0},  // Caps Lock is never part of a shortcut's grab
        {0xFFFF00FF | 0x300, ShiftMask | Mod4Mask},
    }};
    for (const auto& [carbon, x11] : table) {
        SCOPED_TRACE(carbon);
        EXPECT_EQ(x11ModifierMask(carbon), x11);
    }
}

// A modifier map as Xlib hands it over, two slots a row: Shift, Lock,
// Control, Mod1 ... Mod5; empty slots are 0.
constexpr std::array<std::uint8_t, 16> kModifierMap{
    50,  62,   // Shift
    66,  0,    // Lock
    37,  105,  // Control
    64,  108,  // Mod1
    77,  0,    // Mod2: Num Lock
    0,   0,    // Mod3
    133, 134,  // Mod4
    92,  0,    // Mod5
};

TEST(X11HotkeyModifiersTest, AKeysModifierComesFromItsRowInTheMap) {
    EXPECT_EQ(modifierMaskOfKey(kModifierMap, 2, 77), static_cast<unsigned int>(Mod2Mask));
    EXPECT_EQ(modifierMaskOfKey(kModifierMap, 2, 50), static_cast<unsigned int>(ShiftMask));
    EXPECT_EQ(modifierMaskOfKey(kModifierMap, 2, 92), static_cast<unsigned int>(Mod5Mask));
    EXPECT_EQ(modifierMaskOfKey(kModifierMap, 2, 134), static_cast<unsigned int>(Mod4Mask));
    EXPECT_EQ(modifierMaskOfKey(kModifierMap, 2, 38), 0u);
    // A keysym without a key has code 0, which must not match an empty slot.
    EXPECT_EQ(modifierMaskOfKey(kModifierMap, 2, 0), 0u);
    // A map shorter than eight rows is read as far as it goes.
    EXPECT_EQ(modifierMaskOfKey(std::span(kModifierMap).first(9), 2, 77), 0u);
    EXPECT_EQ(modifierMaskOfKey(kModifierMap, 0, 77), 0u);
}

TEST(X11HotkeyModifiersTest, GrabsCoverEveryLockStateOnce) {
    EXPECT_THAT(lockVariants(Mod2Mask), ElementsAre(0u, LockMask, Mod2Mask, LockMask | Mod2Mask));
    EXPECT_THAT(lockVariants(0), ElementsAre(0u, LockMask));
    EXPECT_THAT(lockVariants(LockMask), ElementsAre(0u, LockMask));
}

TEST(X11HotkeyModifiersTest, PressesMatchWhateverTheLocksAndButtons) {
    const unsigned int ctrlAlt = ControlMask | Mod1Mask;
    EXPECT_TRUE(isGrabbedState(ctrlAlt, ctrlAlt, Mod2Mask));
    EXPECT_TRUE(isGrabbedState(ctrlAlt | LockMask | Mod2Mask, ctrlAlt, Mod2Mask));
    EXPECT_TRUE(isGrabbedState(ctrlAlt | Button1Mask, ctrlAlt, Mod2Mask));
    EXPECT_FALSE(isGrabbedState(ctrlAlt | ShiftMask, ctrlAlt, Mod2Mask));
    EXPECT_FALSE(isGrabbedState(ControlMask, ctrlAlt, Mod2Mask));
    // Num Lock on another modifier: Mod2 is then a real modifier.
    EXPECT_FALSE(isGrabbedState(ctrlAlt | Mod2Mask, ctrlAlt, Mod3Mask));
    EXPECT_TRUE(isGrabbedState(ctrlAlt | Mod3Mask, ctrlAlt, Mod3Mask));
}

}  // namespace
}  // namespace lumenote::platform::linux_desktop
