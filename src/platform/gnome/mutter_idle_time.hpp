// Seconds since the last input on GNOME Shell under Wayland, from Mutter's
// IdleMonitor on the session bus.
#pragma once

#include <QDBusConnection>

#include <chrono>

#include "recording/time_providers.hpp"

namespace lumenote::platform::gnome {

// Bound on each call to the IdleMonitor.
inline constexpr std::chrono::milliseconds kIdleMonitorCallTimeout{250};

// Each reading asks org.gnome.Mutter.IdleMonitor at
// /org/gnome/Mutter/IdleMonitor/Core for GetIdletime, which counts the
// milliseconds since the last input of any device: readings have millisecond
// resolution and are exact at the moment of the call. One call per reading
// keeps no state and costs one round trip through the shell (about 0.25 ms
// of wall time and 0.07 ms of CPU time in the end-to-end test); a cache fed
// by idle and user-active watches would need a clock to extrapolate between
// their events and would lose resolution to the watch interval, to save one
// small call a second.
//
// When the monitor does not answer (absent, too slow, a reply of another
// type) a reading is 0: a missing idle source must never turn study into time
// away. Uses the calling thread's connection; not thread-safe.
class MutterIdleTimeProvider final : public recording::IdleTimeProvider {
  public:
    // Asks once, so that available() says at once whether the monitor
    // answers.
    explicit MutterIdleTimeProvider(
        QDBusConnection bus, std::chrono::milliseconds callTimeout = kIdleMonitorCallTimeout);

    double idleSeconds() override;

    // The latest call was answered with an idle time.
    bool available() const { return available_; }

  private:
    QDBusConnection bus_;
    std::chrono::milliseconds callTimeout_;
    bool available_ = false;
};

}  // namespace lumenote::platform::gnome
