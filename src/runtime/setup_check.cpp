// What the desktop lets the recorder observe: the application in front and
// idle time through the backends this desktop offers, logind and the screen
// saver, and the notification server.
#include "runtime/setup_check.hpp"

#include <fmt/format.h>

#include <QDBusConnection>
#include <cstdlib>
#include <optional>

#include "platform/linux/notifications.hpp"
#include "platform/linux/system_event_source.hpp"
#include "runtime/desktop_observation.hpp"
#include "runtime/recorder_control.hpp"
#include "runtime/scoped_application.hpp"

namespace lumenote::runtime {

namespace {

std::string line(bool ok, std::string_view text) {
    return fmt::format("{} {}\n", ok ? "ok  " : "gap ", text);
}

}  // namespace

SetupCheck checkSetup(const std::optional<platform::observation::ObservationHealth>& observing) {
    const ScopedApplication application;
    SetupCheck check;

    auto health = observing ? *observing : observeDesktopNow();
    if (!observing) {
        // A recorder that runs has seen the activations; this check has not.
        if (const auto running = recorderStatus(); running.ok()) {
            health.lastActivation = running->lastActivation;
        }
    }
    check.waylandStep = platform::observation::waylandSetupStep(health);
    for (const auto& [ok, text] :
         platform::observation::healthLines(health, LocalCalendar::current())) {
        check.report += line(ok, text);
        check.complete = check.complete && ok;
    }

    platform::linux_desktop::LinuxSystemEventSource events(
        {}, platform::linux_desktop::SystemEventSourceSettings::fromEnvironment());
    const auto gaps = platform::linux_desktop::systemEventGaps(events.start());
    events.stop();
    if (gaps.empty()) {
        check.report +=
            line(true, "logind and the screen saver report sleep, locking and shutdown.");
    }
    for (const platform::linux_desktop::SystemEventGap gap : gaps) {
        check.report += line(false, platform::linux_desktop::systemEventGapMessage(gap));
        check.complete = false;
    }

    platform::linux_desktop::FreedesktopNotificationService notifications(
        QDBusConnection::sessionBus());
    const bool notify =
        notifications.authorization() == recording::NotificationAuthorization::authorized;
    check.report += line(notify, notify ? "A notification server shows Lumenote's notices."
                                        : "No notification server answers, so notices (such as a "
                                          "pause after a long sleep) are not shown.");
    check.complete = check.complete && notify;
    return check;
}

}  // namespace lumenote::runtime
