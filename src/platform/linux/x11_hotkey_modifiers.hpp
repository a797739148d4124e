// How a stored shortcut's Carbon modifiers become X11 modifier masks, which
// lock combinations a grab is repeated with, and which key events are the
// shortcut's. Pure functions over masks, so that they are tested without a
// display.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace lumenote::platform::linux_desktop {

// The X11 mask of a Carbon modifier mask: command is Super (Mod4), shift is
// Shift, option is Alt (Mod1), control is Control. Other bits (Caps Lock's
// 0x400 among them) are dropped.
unsigned int x11ModifierMask(std::uint32_t carbonModifiers);

// The modifier bit a key is mapped to in a modifier map as Xlib hands it over
// (eight rows, Shift to Mod5, of `keysPerModifier` key codes, 0 for an empty
// slot); 0 when the key is in no row or is 0 itself (a keysym without a key).
unsigned int modifierMaskOfKey(std::span<const std::uint8_t> modifierMap, int keysPerModifier,
                               std::uint8_t keyCode);

// The lock bits a grab is repeated with, so that the shortcut works whatever
// the state of Caps Lock and Num Lock: none, Caps Lock, Num Lock and both,
// without repeats (a keyboard without a Num Lock modifier has `numLockMask`
// 0, which leaves none and Caps Lock).
std::vector<unsigned int> lockVariants(unsigned int numLockMask);

// Whether a key event's modifier state is `modifiers` once the lock bits and
// the pointer buttons are set aside.
bool isGrabbedState(unsigned int eventState, unsigned int modifiers, unsigned int numLockMask);

}  // namespace lumenote::platform::linux_desktop
