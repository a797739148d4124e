// Seconds since the last input on GNOME Shell under Wayland, from Mutter's
// IdleMonitor on the session bus.
#pragma once

#include <QDBusConnection>
#include <QObject>

#include <chrono>
#include <cstdint>
#include <optional>

#include "recording/time_providers.hpp"

class QDBusMessage;
class QDBusServiceWatcher;

namespace lumenote::platform::gnome {

// Bound on each call to the IdleMonitor.
inline constexpr std::chrono::milliseconds kIdleMonitorCallTimeout{250};
// The idle watch's interval: the resolution of watched readings.
inline constexpr std::chrono::milliseconds kIdleWatchInterval{1000};

// Readings come from org.gnome.Mutter.IdleMonitor at
// /org/gnome/Mutter/IdleMonitor/Core, which counts the milliseconds since the
// last input of any device.
//
// Watched: at start (and whenever the monitor's name gets a new owner, a
// shell restart) an idle watch of kIdleWatchInterval is added and the idle
// time read once with GetIdletime. When the idle watch fires, input stopped
// one interval ago: the moment is kept on the monotonic clock and a
// user-active watch added; when that fires, input came back. A reading is
// then the time since that moment, or 0 while the user is active, without a
// call: one-second resolution (readings are 0 until a second without input
// has passed, as with the Wayland idle protocols) and no traffic while
// recording but two signals per pause.
//
// A monitor that refuses the watches is asked with GetIdletime at each
// reading instead (millisecond resolution, one round trip each).
//
// When the monitor does not answer (absent, too slow, a reply of another
// type) a reading is 0: a missing idle source must never turn study into time
// away. Handles D-Bus signals on the Qt thread of the connection: the event
// loop must run. Not thread-safe.
class MutterIdleTimeProvider final : public QObject, public recording::IdleTimeProvider {
    Q_OBJECT

  public:
    // Adds the watches and reads once, so that available() says at once
    // whether the monitor answers.
    MutterIdleTimeProvider(QDBusConnection bus, recording::MonotonicTimeProvider& clock,
                           std::chrono::milliseconds callTimeout = kIdleMonitorCallTimeout);
    // Removes the watches it added.
    ~MutterIdleTimeProvider() override;

    double idleSeconds() override;

    // The monitor answered the latest call (or, watched, since it was last
    // armed).
    bool available() const { return available_; }
    // Readings come from the watches, with no call each.
    bool watched() const { return idleWatch_.has_value(); }

  private Q_SLOTS:
    void onWatchFired(const QDBusMessage& message);
    void onOwnerChanged(const QString& name, const QString& oldOwner, const QString& newOwner);

  private:
    // Adds the idle watch and reads the idle time once.
    void arm();
    void forgetWatches();
    void addUserActiveWatch();
    // GetIdletime in seconds; nullopt when the monitor does not answer so.
    std::optional<double> askIdleTime();
    // A call that answers with a watch id; nullopt when it does not.
    std::optional<std::uint32_t> addWatch(const char* method, const QVariantList& arguments);

    QDBusConnection bus_;
    recording::MonotonicTimeProvider& clock_;
    std::chrono::milliseconds callTimeout_;
    QDBusServiceWatcher* watcher_ = nullptr;
    std::optional<std::uint32_t> idleWatch_;
    std::optional<std::uint32_t> activeWatch_;
    // When input stopped (monotonic seconds), while the user is idle.
    std::optional<double> idleSince_;
    bool available_ = false;
};

}  // namespace lumenote::platform::gnome
