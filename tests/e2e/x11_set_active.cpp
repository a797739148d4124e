// lumenote-x11-set-active: sets the root window's _NET_ACTIVE_WINDOW as a
// window manager does, so that the end-to-end tests can make the moments a
// window manager leaves no window active, without depending on one to do so.
//
//   lumenote-x11-set-active WINDOW
//       the active window becomes WINDOW (0: no active window)
//   lumenote-x11-set-active --through-none WINDOW SECONDS
//       no active window for SECONDS, then WINDOW, as while focus moves
//
// WINDOW is a window id in decimal (as xdotool prints it) or 0x hexadecimal.
// Exits 0 once the server has applied the change, 2 without a display, 64 on
// bad arguments.
#include <X11/Xatom.h>
#include <X11/Xlib.h>

#include <chrono>
#include <cstdlib>
#include <iostream>
#include <optional>
#include <string>
#include <thread>

namespace {

std::optional<Window> windowArgument(const std::string& text) {
    char* end = nullptr;
    const unsigned long value = std::strtoul(text.c_str(), &end, 0);
    if (text.empty() || *end != '\0') {
        return std::nullopt;
    }
    return static_cast<Window>(value);
}

std::optional<double> secondsArgument(const std::string& text) {
    char* end = nullptr;
    const double value = std::strtod(text.c_str(), &end);
    if (text.empty() || *end != '\0' || !(value >= 0.0 && value <= 10.0)) {
        return std::nullopt;
    }
    return value;
}

// Sets the property and waits until the server has applied it.
void setActiveWindow(Display* display, Atom activeWindow, Window window) {
    XChangeProperty(display, DefaultRootWindow(display), activeWindow, XA_WINDOW, 32,
                    PropModeReplace, reinterpret_cast<const unsigned char*>(&window), 1);
    XSync(display, False);
}

int usage() {
    std::cerr << "usage: lumenote-x11-set-active WINDOW\n"
                 "       lumenote-x11-set-active --through-none WINDOW SECONDS\n";
    return 64;
}

}  // namespace

int main(int argc, char** argv) {
    const bool throughNone = argc == 4 && std::string(argv[1]) == "--through-none";
    if (argc != 2 && !throughNone) {
        return usage();
    }
    const auto window = windowArgument(argv[throughNone ? 2 : 1]);
    const auto gap = throughNone ? secondsArgument(argv[3]) : std::optional<double>(0.0);
    if (!window || !gap) {
        return usage();
    }
    Display* display = XOpenDisplay(nullptr);
    if (display == nullptr) {
        std::cerr << "lumenote-x11-set-active: cannot open the display\n";
        return 2;
    }
    const Atom activeWindow = XInternAtom(display, "_NET_ACTIVE_WINDOW", False);
    if (throughNone) {
        setActiveWindow(display, activeWindow, None);
        std::this_thread::sleep_for(std::chrono::duration<double>(*gap));
    }
    setActiveWindow(display, activeWindow, *window);
    XCloseDisplay(display);
    return 0;
}
