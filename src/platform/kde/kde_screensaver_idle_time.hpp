// Seconds since the last input on KDE Plasma, from the screen saver service:
// org.freedesktop.ScreenSaver /ScreenSaver GetSessionIdleTime.
#pragma once

#include <QDBusConnection>

#include <chrono>

#include "recording/time_providers.hpp"

namespace lumenote::platform::kde {

// GetSessionIdleTime answers a uint32 of milliseconds: KDE's screen locker
// (kscreenlocker, the owner of org.freedesktop.ScreenSaver in a Plasma
// session) returns KIdleTime's idle time, which counts milliseconds. The
// reading keeps that resolution (a millisecond). Recent kscreenlocker
// releases answer org.freedesktop.DBus.Error.NotSupported in a Wayland
// session, and kwin_wayland started without its lock screen owns no screen
// saver at all: both read as 0 with available() false, so that a missing
// idle source never turns study into time away.
//
// Each reading is one blocking call, bounded by `timeout` (250 ms by
// default); when nobody owns the name the bus answers at once. Not
// thread-safe.
class KdeScreenSaverIdleTimeProvider final : public recording::IdleTimeProvider {
  public:
    static constexpr std::chrono::milliseconds kDefaultTimeout{250};

    // Asks once, so that available() says at once whether readings work.
    explicit KdeScreenSaverIdleTimeProvider(QDBusConnection bus,
                                            std::chrono::milliseconds timeout = kDefaultTimeout);

    // Seconds since the last input; 0 when the service does not answer with a
    // uint32.
    double idleSeconds() override;

    // Whether the latest call was answered with a reading.
    bool available() const { return available_; }

  private:
    QDBusConnection bus_;
    int timeoutMilliseconds_;
    bool available_ = false;
};

}  // namespace lumenote::platform::kde
