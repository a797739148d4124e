// The desktop's observers of the frontmost application and of idle time,
// chosen at start-up from the session's environment, the compositor's
// globals and the session bus's names (platform/observation), and opened
// together. What could not be opened is kept as a sentence in the health
// report rather than stopping the recorder: the session still records its
// time, with the application in front unknown.
//
// On a Wayland desktop a backend that is none may come later: the GNOME Shell
// extension enabled during a session, KWin or the shell still starting. While
// one is none, the bus names the choice reads are watched; when one of them
// comes, the choice is made again and what it now offers is opened in the
// gap (backends that observe are never replaced). A backend that reports
// over the bus and fails to open is tried again after 0.25 s, doubling the
// wait, ten times (about two minutes), and again whenever a watched name
// comes. Both need the Qt event loop of the recorder.
#pragma once

#include <QDBusConnection>
#include <functional>
#include <memory>

#include "foundation/user_paths.hpp"
#include "platform/observation/observation_health.hpp"
#include "recording/platform_services.hpp"
#include "recording/session_manager.hpp"
#include "recording/time_providers.hpp"

namespace lumenote::runtime {

class DesktopObservation {
  public:
    struct Dependencies {
        const EnvironmentLookup& environment;
        QDBusConnection sessionBus;
        recording::MonotonicTimeProvider& monotonicClock;
        recording::WallClock& wallClock;
    };

    // Never fails: a backend that is missing or cannot be opened leaves a
    // stand-in that sees nothing in front and no idle time.
    static std::unique_ptr<DesktopObservation> open(const Dependencies& dependencies);
    ~DesktopObservation();
    DesktopObservation(const DesktopObservation&) = delete;
    DesktopObservation& operator=(const DesktopObservation&) = delete;

    // Stable for the observation's life: they read whichever backend
    // observes at the moment, including one opened after start-up.
    recording::FrontmostApplicationSource& frontmost();
    recording::IdleTimeProvider& idle();

    // The socket that becomes readable when the frontmost window may have
    // changed (X11 and Wayland backends); -1 for the others.
    int activationDescriptor() const;
    // Called on the Qt thread when a backend that reports over D-Bus
    // announces a change of the frontmost window.
    void setActivationHandler(std::function<void()> handler);
    // Handles the backend's pending events; true when the frontmost window
    // changed since the last call.
    bool takeActivation();
    // True once the display connection went away: its descriptor stays
    // readable at end of file, and nothing can be observed any more.
    bool displayLost() const;

    platform::observation::ObservationHealth health() const;

  private:
    struct Parts;
    explicit DesktopObservation(std::unique_ptr<Parts> parts);
    std::unique_ptr<Parts> parts_;
};

// What a fresh set of observers sees on this desktop now, for a process that
// does not record (the command line's checks). Opens its own application
// object for the session bus when the process has none.
platform::observation::ObservationHealth observeDesktopNow();

}  // namespace lumenote::runtime
