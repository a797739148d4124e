#include "platform/linux/x11_connection.hpp"

#include <X11/Xlib.h>

#include <algorithm>
#include <mutex>
#include <vector>

namespace lumenote::platform::linux_desktop {

namespace {

// Xlib's error handlers are process-wide. Errors on our own connections are
// expected (a window can be destroyed between two requests about it) and are
// answered by the failing call's return value; errors on any other
// connection go to whatever handler was installed before ours.
struct HandlerRegistry {
    std::mutex mutex;
    std::vector<Display*> displays;
    bool installed = false;
    XErrorHandler previousErrorHandler = nullptr;
    XIOErrorHandler previousIOErrorHandler = nullptr;

    bool owns(Display* display) {
        std::lock_guard lock(mutex);
        return std::find(displays.begin(), displays.end(), display) != displays.end();
    }
};

HandlerRegistry& registry() {
    static HandlerRegistry instance;
    return instance;
}

int handleError(Display* display, XErrorEvent* event) {
    auto& handlers = registry();
    if (handlers.owns(display) || handlers.previousErrorHandler == nullptr) {
        return 0;
    }
    return handlers.previousErrorHandler(display, event);
}

// For our connections the per-display exit handler records the loss; this
// only keeps Xlib's default handler from printing a fatal-error message.
int handleIOError(Display* display) {
    auto& handlers = registry();
    if (handlers.owns(display) || handlers.previousIOErrorHandler == nullptr) {
        return 0;
    }
    return handlers.previousIOErrorHandler(display);
}

void registerDisplay(Display* display) {
    auto& handlers = registry();
    std::lock_guard lock(handlers.mutex);
    if (!handlers.installed) {
        handlers.previousErrorHandler = XSetErrorHandler(handleError);
        handlers.previousIOErrorHandler = XSetIOErrorHandler(handleIOError);
        handlers.installed = true;
    }
    handlers.displays.push_back(display);
}

void unregisterDisplay(Display* display) {
    auto& handlers = registry();
    std::lock_guard lock(handlers.mutex);
    std::erase(handlers.displays, display);
}

}  // namespace

std::string_view describe(X11ConnectionError error) {
    switch (error) {
        case X11ConnectionError::noDisplay:
            return "No X display is available (DISPLAY is not set), so the frontmost "
                   "application and idle time cannot be observed.";
        case X11ConnectionError::waylandOnly:
            return "This is a Wayland session without an X display: the frontmost application "
                   "and idle time can only be observed on X11 for now.";
        case X11ConnectionError::unreachable:
            return "The X display named by DISPLAY does not accept connections, so the "
                   "frontmost application and idle time cannot be observed.";
    }
    return {};
}

Result<std::shared_ptr<X11Connection>, X11ConnectionError> X11Connection::open(
    const EnvironmentLookup& environment) {
    const char* name = environment("DISPLAY");
    if (name == nullptr || *name == '\0') {
        const char* wayland = environment("WAYLAND_DISPLAY");
        return fail(wayland != nullptr && *wayland != '\0' ? X11ConnectionError::waylandOnly
                                                           : X11ConnectionError::noDisplay);
    }
    Display* display = XOpenDisplay(name);
    if (display == nullptr) {
        return fail(X11ConnectionError::unreachable);
    }
    return std::shared_ptr<X11Connection>(new X11Connection(display));
}

X11Connection::X11Connection(Display* display)
    : display_(display), root_(DefaultRootWindow(display)) {
    registerDisplay(display_);
    XSetIOErrorExitHandler(display_, markLost, this);
}

int X11Connection::fileDescriptor() const {
    return ConnectionNumber(display_);
}

X11Connection::~X11Connection() {
    // A lost display is left open: closing it would write to the dead socket
    // and run the loss handlers again.
    if (!lost_) {
        XCloseDisplay(display_);
    }
    unregisterDisplay(display_);
}

void X11Connection::markLost(Display*, void* connection) {
    static_cast<X11Connection*>(connection)->lost_ = true;
}

}  // namespace lumenote::platform::linux_desktop
