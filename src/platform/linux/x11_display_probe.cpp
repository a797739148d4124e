#include "platform/linux/x11_display_probe.hpp"

#include <X11/Xlib.h>

namespace lumenote::platform::linux_desktop {

bool x11DisplayCanBeOpened() {
    Display* display = XOpenDisplay(nullptr);
    if (display == nullptr) {
        return false;
    }
    XCloseDisplay(display);
    return true;
}

}  // namespace lumenote::platform::linux_desktop
