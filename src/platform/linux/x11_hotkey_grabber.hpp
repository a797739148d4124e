// The global shortcut on X11: a passive key grab on the root window, held on
// a connection of the grabber's own, and the key presses it brings.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "foundation/result.hpp"
#include "foundation/user_paths.hpp"
#include "platform/linux/x11_connection.hpp"
#include "shell/global_hotkey_service.hpp"

namespace lumenote::platform::linux_desktop {

// Grabs the shortcut's key (the table's keysym, on whichever key types it)
// with the shortcut's modifiers (x11_hotkey_modifiers.hpp) on the root
// window, once for each lock combination, so that Caps Lock and Num Lock do
// not get in the way. The server refuses a combination another client holds
// (BadAccess); the grab is then undone whole and reported as shortcutTaken.
//
// Presses: watch fileDescriptor() for readability and call processEvents(),
// which drains what is queued and says whether the shortcut was pressed; the
// application then calls the service's trigger(). Not thread-safe; use it
// from one thread.
class X11HotkeyGrabber final : public shell::HotkeyGrabber {
  public:
    // Connects to the display of $DISPLAY in `environment`; fails as
    // X11Connection::open does (no display, Wayland only, unreachable), when
    // the application gives its shortcut service no grabber.
    static Result<std::unique_ptr<X11HotkeyGrabber>, X11ConnectionError> open(
        const EnvironmentLookup& environment);

    // `connection` must be this grabber's alone: whoever else reads its
    // events would take the key presses.
    explicit X11HotkeyGrabber(std::shared_ptr<X11Connection> connection);
    // Releases the key.
    ~X11HotkeyGrabber() override;
    X11HotkeyGrabber(const X11HotkeyGrabber&) = delete;
    X11HotkeyGrabber& operator=(const X11HotkeyGrabber&) = delete;

    // A grab's key events reach the grabbing client without any input being
    // selected, so there is nothing to install: fails with handlerUnavailable
    // only once the connection is lost.
    Result<void, shell::GlobalHotkeyFailure> installHandler() override;
    // Releases the key held, then grabs the binding's. shortcutTaken when
    // another client holds any lock combination of it, or when no key of the
    // keyboard types the binding's keysym; handlerUnavailable once the
    // connection is lost. Each combination is confirmed by a round trip.
    Result<void, shell::GlobalHotkeyFailure> grab(
        const settings::GlobalHotkeyBinding& binding) override;
    void release() override;

    int fileDescriptor() const { return connection_->fileDescriptor(); }
    // Handles every queued event without blocking; true when the key held was
    // pressed with its modifiers (whatever the lock state) since the previous
    // call, however many times. Reads nothing once the connection is lost.
    bool processEvents();

    const std::shared_ptr<X11Connection>& connection() const { return connection_; }

  private:
    struct Grab {
        unsigned int keyCode;
        unsigned int modifiers;    // X11 mask, lock bits excluded
        unsigned int numLockMask;  // the Num Lock modifier when grabbed, 0 without one
        std::vector<unsigned int> grabbedVariants;
    };

    void ungrab(const Grab& grab);

    std::shared_ptr<X11Connection> connection_;
    std::optional<Grab> grab_;
};

}  // namespace lumenote::platform::linux_desktop
