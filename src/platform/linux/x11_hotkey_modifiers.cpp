#include "platform/linux/x11_hotkey_modifiers.hpp"

#include <X11/X.h>

#include <algorithm>
#include <array>
#include <utility>

namespace lumenote::platform::linux_desktop {

namespace {

constexpr std::array<std::pair<std::uint32_t, unsigned int>, 4> kModifierBits{{
    {0x100, Mod4Mask},     // command: Super
    {0x200, ShiftMask},    // shift
    {0x800, Mod1Mask},     // option: Alt
    {0x1000, ControlMask}  // control
}};

// The key modifiers of an event's state; the rest are pointer buttons.
constexpr unsigned int kKeyModifierBits =
    ShiftMask | LockMask | ControlMask | Mod1Mask | Mod2Mask | Mod3Mask | Mod4Mask | Mod5Mask;

}  // namespace

unsigned int x11ModifierMask(std::uint32_t carbonModifiers) {
    unsigned int mask = 0;
    for (const auto& [carbon, x11] : kModifierBits) {
        if (carbonModifiers & carbon) {
            mask |= x11;
        }
    }
    return mask;
}

unsigned int modifierMaskOfKey(std::span<const std::uint8_t> modifierMap, int keysPerModifier,
                               std::uint8_t keyCode) {
    if (keyCode == 0 || keysPerModifier <= 0) {
        return 0;
    }
    const auto rowLength = static_cast<std::size_t>(keysPerModifier);
    for (std::size_t row = 0; row < 8 && (row + 1) * rowLength <= modifierMap.size(); ++row) {
        const auto keys = modifierMap.subspan(row * rowLength, rowLength);
        if (std::find(keys.begin(), keys.end(), keyCode) != keys.end()) {
            return 1u << row;
        }
    }
    return 0;
}

std::vector<unsigned int> lockVariants(unsigned int numLockMask) {
    std::vector<unsigned int> variants;
    for (const unsigned int variant :
         {0u, static_cast<unsigned int>(LockMask), numLockMask, LockMask | numLockMask}) {
        if (std::find(variants.begin(), variants.end(), variant) == variants.end()) {
            variants.push_back(variant);
        }
    }
    return variants;
}

bool isGrabbedState(unsigned int eventState, unsigned int modifiers, unsigned int numLockMask) {
    return (eventState & kKeyModifierBits & ~(LockMask | numLockMask)) == modifiers;
}

}  // namespace lumenote::platform::linux_desktop
