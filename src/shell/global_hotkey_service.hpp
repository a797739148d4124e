// The global shortcut's registration: the rules a binding must meet, the
// order in which the desktop is asked for it, and the state the settings
// screens show.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>

#include "foundation/observer_list.hpp"
#include "foundation/result.hpp"
#include "settings/global_hotkey_binding.hpp"

namespace lumenote::shell {

// Why the shortcut is not registered; describe() gives the sentence shown.
enum class GlobalHotkeyFailure {
    modifierMissing,     // no command, shift, option or control bit, or a key without a
                         // display name: one sentence for both, on purpose
    handlerUnavailable,  // the key presses cannot be received
    shortcutTaken,       // the desktop refused the combination
    noGlobalShortcuts    // the desktop gives applications no global shortcuts
};

// The fixed sentence of `failure`; `binding` names the combination refused.
std::string describe(GlobalHotkeyFailure failure, const settings::GlobalHotkeyBinding& binding);

struct GlobalHotkeyRegistrationState {
    enum class Kind { unavailable, disabled, registered };

    Kind kind = Kind::disabled;
    std::string message;  // the sentence for `unavailable`; "" otherwise

    static GlobalHotkeyRegistrationState unavailable(std::string message) {
        return {Kind::unavailable, std::move(message)};
    }
    static GlobalHotkeyRegistrationState disabled() { return {Kind::disabled, {}}; }
    static GlobalHotkeyRegistrationState registered() { return {Kind::registered, {}}; }

    friend bool operator==(const GlobalHotkeyRegistrationState&,
                           const GlobalHotkeyRegistrationState&) = default;
};

// What the platform does for the service: receiving key presses and holding
// one key combination for this application, whatever window has the focus.
// A press of the held combination reaches the service through trigger().
class HotkeyGrabber {
  public:
    virtual ~HotkeyGrabber() = default;

    // Prepares to receive presses; fails with handlerUnavailable.
    virtual Result<void, GlobalHotkeyFailure> installHandler() = 0;
    // Holds the combination; fails with shortcutTaken when the desktop refuses
    // it (another application holds it) and with handlerUnavailable when the
    // desktop can no longer be reached. A failed grab holds nothing.
    virtual Result<void, GlobalHotkeyFailure> grab(
        const settings::GlobalHotkeyBinding& binding) = 0;
    // Lets go of the combination held, if any.
    virtual void release() = 0;
};

class GlobalHotkeyService {
  public:
    using StateObservers = ObserverList<GlobalHotkeyRegistrationState>;

    // `grabber` is not owned and must outlive the service; nullptr stands for
    // a desktop that gives applications no global shortcuts (Wayland without
    // X11 access): the shortcut is then unavailable whenever it is enabled.
    // Starts disabled and asks the grabber for nothing until configure().
    explicit GlobalHotkeyService(HotkeyGrabber* grabber);
    // Releases the registered key.
    ~GlobalHotkeyService();
    GlobalHotkeyService(const GlobalHotkeyService&) = delete;
    GlobalHotkeyService& operator=(const GlobalHotkeyService&) = delete;

    // Takes the preference and registers it, in this order: disabled releases
    // any registered key; a binding without a required modifier or with a key
    // that has no display name is refused and the key registered before stays
    // registered; the handler is installed once (tried again after a
    // failure); the registered key is released and the new one grabbed.
    // Observers hear of the state when it differs from the previous one.
    void configure(bool isEnabled, const settings::GlobalHotkeyBinding& binding);

    const GlobalHotkeyRegistrationState& state() const { return state_; }
    // The binding last configured, registered or not.
    const settings::GlobalHotkeyBinding& binding() const { return binding_; }
    bool isEnabled() const { return isEnabled_; }

    // The action of a press, run on the thread that calls trigger().
    void setOnTrigger(std::function<void()> action) { onTrigger_ = std::move(action); }
    // The platform saw the registered key pressed: runs the action, unless no
    // key is registered any more (a press queued before the release).
    void trigger();

    StateObservers& stateObservers() { return stateObservers_; }

  private:
    GlobalHotkeyRegistrationState registration(const settings::GlobalHotkeyBinding& binding);
    void releaseRegistered();

    HotkeyGrabber* grabber_;
    GlobalHotkeyRegistrationState state_;
    settings::GlobalHotkeyBinding binding_;
    bool isEnabled_ = false;
    bool handlerInstalled_ = false;
    std::optional<settings::GlobalHotkeyBinding> registered_;
    std::function<void()> onTrigger_;
    StateObservers stateObservers_;
};

}  // namespace lumenote::shell
