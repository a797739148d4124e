#include "platform/linux/x11_hotkey_grabber.hpp"

#include <X11/Xlib.h>
#include <X11/Xproto.h>
#include <X11/keysym.h>

#include <cassert>
#include <cstdint>
#include <span>
#include <string>
#include <utility>

#include "platform/linux/x11_hotkey_modifiers.hpp"
#include "settings/shortcut_key_codes.hpp"

namespace lumenote::platform::linux_desktop {

namespace {

using shell::GlobalHotkeyFailure;

// Xlib's error handler is process-wide. x11_connection.cpp installs one that
// silences every error on our connections, whose requests answer by return
// value; a key grab answers only with an error. While a grab is confirmed,
// this handler takes the grab errors of that one display and hands every
// other display's errors to the handler it replaced, which it puts back
// afterwards.
class GrabErrorTrap {
  public:
    explicit GrabErrorTrap(Display* display) : display_(display) {
        assert(trapped_ == nullptr);
        trapped_ = display;
        previous_ = XSetErrorHandler(handle);
    }
    ~GrabErrorTrap() {
        XSetErrorHandler(previous_);
        trapped_ = nullptr;
        grabError_ = Success;
    }
    GrabErrorTrap(const GrabErrorTrap&) = delete;
    GrabErrorTrap& operator=(const GrabErrorTrap&) = delete;

    // Waits until the server has handled every request sent so far; the
    // first grab error since the previous call, Success when there was none.
    int sync() {
        XSync(display_, False);
        return std::exchange(grabError_, Success);
    }

  private:
    static int handle(Display* display, XErrorEvent* event) {
        if (display != trapped_) {
            return previous_ != nullptr ? previous_(display, event) : 0;
        }
        if (event->request_code == X_GrabKey && grabError_ == Success) {
            grabError_ = event->error_code;
        }
        return 0;
    }

    Display* display_;
    static inline Display* trapped_ = nullptr;
    static inline XErrorHandler previous_ = nullptr;
    static inline int grabError_ = Success;
};

// The modifier bit Num Lock is mapped to now; 0 when it is mapped to none.
unsigned int numLockMask(Display* display) {
    const KeyCode numLock = XKeysymToKeycode(display, XK_Num_Lock);
    XModifierKeymap* map = XGetModifierMapping(display);
    if (map == nullptr) {
        return 0;
    }
    const std::span<const std::uint8_t> keys(map->modifiermap,
                                             static_cast<std::size_t>(8 * map->max_keypermod));
    const unsigned int mask = modifierMaskOfKey(keys, map->max_keypermod, numLock);
    XFreeModifiermap(map);
    return mask;
}

// The key that types the binding's keysym on this keyboard; 0 when none does.
KeyCode keyCodeFor(Display* display, const settings::GlobalHotkeyBinding& binding) {
    const settings::ShortcutKey* key = settings::shortcutKeyForCode(binding.keyCode);
    if (key == nullptr) {
        return 0;
    }
    const KeySym keysym = XStringToKeysym(std::string(key->x11KeysymName).c_str());
    return keysym == NoSymbol ? 0 : XKeysymToKeycode(display, keysym);
}

}  // namespace

Result<std::unique_ptr<X11HotkeyGrabber>, X11ConnectionError> X11HotkeyGrabber::open(
    const EnvironmentLookup& environment) {
    auto connection = X11Connection::open(environment);
    if (!connection) {
        return fail(connection.error());
    }
    return std::make_unique<X11HotkeyGrabber>(std::move(connection).value());
}

X11HotkeyGrabber::X11HotkeyGrabber(std::shared_ptr<X11Connection> connection)
    : connection_(std::move(connection)) {}

X11HotkeyGrabber::~X11HotkeyGrabber() {
    release();
}

Result<void, GlobalHotkeyFailure> X11HotkeyGrabber::installHandler() {
    if (connection_->lost()) {
        return fail(GlobalHotkeyFailure::handlerUnavailable);
    }
    return {};
}

Result<void, GlobalHotkeyFailure> X11HotkeyGrabber::grab(
    const settings::GlobalHotkeyBinding& binding) {
    release();
    if (connection_->lost()) {
        return fail(GlobalHotkeyFailure::handlerUnavailable);
    }
    Display* display = connection_->display();
    const KeyCode keyCode = keyCodeFor(display, binding);
    if (keyCode == 0) {
        return fail(GlobalHotkeyFailure::shortcutTaken);
    }
    Grab grab{keyCode, x11ModifierMask(binding.modifiers), numLockMask(display), {}};
    GrabErrorTrap trap(display);
    for (const unsigned int variant : lockVariants(grab.numLockMask)) {
        XGrabKey(display, static_cast<int>(keyCode), grab.modifiers | variant, connection_->root(),
                 False, GrabModeAsync, GrabModeAsync);
        const int error = trap.sync();
        if (connection_->lost()) {
            return fail(GlobalHotkeyFailure::handlerUnavailable);
        }
        if (error != Success) {
            ungrab(grab);
            return fail(GlobalHotkeyFailure::shortcutTaken);
        }
        grab.grabbedVariants.push_back(variant);
    }
    grab_ = std::move(grab);
    return {};
}

void X11HotkeyGrabber::release() {
    if (grab_ && !connection_->lost()) {
        ungrab(*grab_);
    }
    grab_.reset();
}

bool X11HotkeyGrabber::processEvents() {
    Display* display = connection_->display();
    bool pressed = false;
    while (!connection_->lost() && XPending(display) > 0) {
        XEvent event;
        XNextEvent(display, &event);
        if (grab_ && event.type == KeyPress && event.xkey.keycode == grab_->keyCode &&
            isGrabbedState(event.xkey.state, grab_->modifiers, grab_->numLockMask)) {
            pressed = true;
        }
    }
    return pressed;
}

// Waits for the server, so that the combination is free for other clients
// once this returns.
void X11HotkeyGrabber::ungrab(const Grab& grab) {
    Display* display = connection_->display();
    for (const unsigned int variant : grab.grabbedVariants) {
        XUngrabKey(display, static_cast<int>(grab.keyCode), grab.modifiers | variant,
                   connection_->root());
    }
    XSync(display, False);
}

}  // namespace lumenote::platform::linux_desktop
