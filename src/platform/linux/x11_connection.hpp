// One connection to the X server shared by the X11 observers, with error
// handling that never ends the process: a request about a window that has
// just vanished fails quietly, and a server that goes away marks the
// connection lost instead of exiting.
#pragma once

#include <memory>
#include <string_view>

#include "foundation/result.hpp"
#include "foundation/user_paths.hpp"

// Xlib's display type. Xlib's headers stay out of this header: their macros
// (None, Bool, Status...) break Qt and other headers included after them.
struct _XDisplay;

namespace lumenote::platform::linux_desktop {

enum class X11ConnectionError {
    noDisplay,    // DISPLAY is not set and no Wayland display is either
    waylandOnly,  // WAYLAND_DISPLAY is set but DISPLAY is not
    unreachable   // DISPLAY is set but the server does not accept the connection
};

// The sentence shown at start and in the setup check.
std::string_view describe(X11ConnectionError error);

class X11Connection {
  public:
    // Connects to the display named by $DISPLAY in `environment`.
    static Result<std::shared_ptr<X11Connection>, X11ConnectionError> open(
        const EnvironmentLookup& environment);

    ~X11Connection();
    X11Connection(const X11Connection&) = delete;
    X11Connection& operator=(const X11Connection&) = delete;

    _XDisplay* display() const { return display_; }
    unsigned long root() const { return root_; }  // the default screen's root window
    // The socket to watch for readability (events to drain).
    int fileDescriptor() const;
    // True once the server has gone away (it was stopped or the user logged
    // out). The display must not be used after that; the observers then
    // report nothing frontmost and no idle time.
    bool lost() const { return lost_; }

  private:
    explicit X11Connection(_XDisplay* display);
    static void markLost(_XDisplay* display, void* connection);

    _XDisplay* display_;
    unsigned long root_;
    bool lost_ = false;
};

}  // namespace lumenote::platform::linux_desktop
