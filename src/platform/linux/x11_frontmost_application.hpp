// The frontmost application on X11: the window manager's active window, named
// through its class hints and the desktop entries, and the notification that
// the active window changed.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>

#include "foundation/result.hpp"
#include "foundation/user_paths.hpp"
#include "platform/linux/desktop_entries.hpp"
#include "platform/linux/x11_connection.hpp"
#include "recording/platform_services.hpp"

union _XEvent;

namespace lumenote::platform::linux_desktop {

// Reads `_NET_ACTIVE_WINDOW` from the root window and resolves the window's
// `_GTK_APPLICATION_ID` and `WM_CLASS` (and, when it has neither, its
// process's executable name) into an application. Each window's application
// is resolved once and cached until the window is destroyed or changes those
// properties, so a steady sample costs one round trip.
//
// Activation notification: the root window's property changes are selected,
// so a switch puts an event on the connection. Watch fileDescriptor() for
// readability and call processEvents(), which drains what is queued and says
// whether the active window changed. Xlib may read events off the socket
// while answering another request (a sample, an idle query), leaving them
// queued without the socket being readable: call processEvents() after each
// sample as well. Not thread-safe; use it from one thread.
class X11FrontmostApplicationSource final : public recording::FrontmostApplicationSource {
  public:
    // The executable name of a local process, "" when it cannot be read.
    using ProcessNameReader = std::function<std::string(long processID)>;

    // Connects to the display of $DISPLAY and indexes the desktop entries of
    // the XDG data folders of `environment`.
    static Result<std::unique_ptr<X11FrontmostApplicationSource>, X11ConnectionError> open(
        const EnvironmentLookup& environment);

    X11FrontmostApplicationSource(std::shared_ptr<X11Connection> connection,
                                  DesktopEntryIndex entries, ProcessNameReader processName);

    // nullopt when no window is active, when the active window vanished while
    // being read, when it carries nothing to name it by, or once the
    // connection is lost. A window manager moving focus may set no active
    // window for a moment; that is reported as it is, and the recorder treats
    // such a moment as part of the switch (recording/frontmost_gaps.hpp).
    std::optional<recording::FrontmostApplication> frontmostApplication() override;

    int fileDescriptor() const { return connection_->fileDescriptor(); }
    // Handles every queued event without blocking; true when the window
    // manager set `_NET_ACTIVE_WINDOW` since the previous call (setting it to
    // the same window counts: sampling once more is harmless). Reads nothing
    // once the connection is lost.
    bool processEvents();

    const std::shared_ptr<X11Connection>& connection() const { return connection_; }

  private:
    // Window and atom ids are Xlib's XID and Atom (unsigned long).
    struct Atoms {
        unsigned long activeWindow;
        unsigned long windowProcessID;
        unsigned long gtkApplicationID;
        unsigned long utf8String;
    };

    std::optional<unsigned long> activeWindow();
    std::optional<recording::FrontmostApplication> resolve(unsigned long window);
    std::optional<long> processID(unsigned long window);
    void handle(const _XEvent& event);

    std::shared_ptr<X11Connection> connection_;
    DesktopEntryIndex entries_;
    ProcessNameReader processName_;
    Atoms atoms_{};
    bool hasXRes_ = false;
    bool activeWindowChanged_ = false;
    // nullopt caches a window that carries nothing to name it by.
    std::unordered_map<unsigned long, std::optional<recording::FrontmostApplication>> cache_;
};

// Reads /proc/<id>/comm.
std::string readProcessName(long processID);

}  // namespace lumenote::platform::linux_desktop
