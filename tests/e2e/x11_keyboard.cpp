// lumenote-x11-keyboard: the keyboard as other clients see it, for the
// end-to-end tests of the global shortcut.
//
//   lumenote-x11-keyboard modifiers
//       prints the modifiers in force now, locks included ("lock mod2"), and
//       exits
//   lumenote-x11-keyboard grab KEYSYM MODIFIER...
//       holds exactly that combination on the root window, without lock
//       variants, as another application's shortcut might: prints "grabbed"
//       once the server has granted it and holds it until killed (the server
//       lets go when the connection closes), or prints "refused" and exits 1
//       when another client holds it
//
// MODIFIER is one of shift, lock, control, mod1 ... mod5. Exits 2 without a
// display, 64 on bad arguments.
#include <X11/Xlib.h>
#include <unistd.h>

#include <array>
#include <iostream>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace {

constexpr std::array<std::pair<std::string_view, unsigned int>, 8> kModifiers{{
    {"shift", ShiftMask},
    {"lock", LockMask},
    {"control", ControlMask},
    {"mod1", Mod1Mask},
    {"mod2", Mod2Mask},
    {"mod3", Mod3Mask},
    {"mod4", Mod4Mask},
    {"mod5", Mod5Mask},
}};

std::optional<unsigned int> modifierNamed(std::string_view name) {
    for (const auto& [known, mask] : kModifiers) {
        if (known == name) {
            return mask;
        }
    }
    return std::nullopt;
}

int printModifiers(Display* display) {
    Window root = 0;
    Window child = 0;
    int rootX = 0;
    int rootY = 0;
    int windowX = 0;
    int windowY = 0;
    unsigned int state = 0;
    XQueryPointer(display, DefaultRootWindow(display), &root, &child, &rootX, &rootY, &windowX,
                  &windowY, &state);
    std::string names;
    for (const auto& [name, mask] : kModifiers) {
        if (state & mask) {
            names += (names.empty() ? "" : " ") + std::string(name);
        }
    }
    std::cout << names << std::endl;
    return 0;
}

bool refused = false;

int recordRefusal(Display*, XErrorEvent* event) {
    refused = refused || event->error_code == BadAccess;
    return 0;
}

int grab(Display* display, KeySym keysym, unsigned int modifiers) {
    XSetErrorHandler(recordRefusal);
    XGrabKey(display, XKeysymToKeycode(display, keysym), modifiers, DefaultRootWindow(display),
             False, GrabModeAsync, GrabModeAsync);
    XSync(display, False);
    std::cout << (refused ? "refused" : "grabbed") << std::endl;
    if (refused) {
        return 1;
    }
    while (true) {
        pause();
    }
}

int usage() {
    std::cerr << "usage: lumenote-x11-keyboard modifiers | grab KEYSYM MODIFIER...\n";
    return 64;
}

}  // namespace

int main(int argc, char** argv) {
    const std::string mode = argc > 1 ? argv[1] : "";
    KeySym keysym = NoSymbol;
    unsigned int modifiers = 0;
    if (mode == "grab") {
        keysym = argc > 2 ? XStringToKeysym(argv[2]) : NoSymbol;
        for (int index = 3; index < argc; ++index) {
            const auto mask = modifierNamed(argv[index]);
            if (!mask) {
                return usage();
            }
            modifiers |= *mask;
        }
        if (keysym == NoSymbol) {
            return usage();
        }
    } else if (mode != "modifiers" || argc != 2) {
        return usage();
    }
    Display* display = XOpenDisplay(nullptr);
    if (display == nullptr) {
        std::cerr << "no display\n";
        return 2;
    }
    return mode == "grab" ? grab(display, keysym, modifiers) : printModifiers(display);
}
