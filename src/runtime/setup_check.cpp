// What the desktop lets the recorder observe: the X display and its idle
// extension, logind and the screen saver, and the notification server.
#include "runtime/setup_check.hpp"

#include <fmt/format.h>

#include <QCoreApplication>
#include <QDBusConnection>
#include <cstdlib>
#include <optional>

#include "platform/linux/notifications.hpp"
#include "platform/linux/system_event_source.hpp"
#include "platform/linux/x11_frontmost_application.hpp"
#include "platform/linux/x11_idle_time.hpp"

namespace lumenote::runtime {

namespace {

std::string line(bool ok, std::string_view text) {
    return fmt::format("{} {}\n", ok ? "ok  " : "gap ", text);
}

}  // namespace

SetupCheck checkSetup() {
    // The buses need an application object: the command line has none of
    // its own, the desktop application checks inside its own.
    int argc = 1;
    char name[] = "lumenote-cli";
    char* argv[] = {name, nullptr};
    std::optional<QCoreApplication> application;
    if (QCoreApplication::instance() == nullptr) {
        application.emplace(argc, argv);
    }
    SetupCheck check;

    auto x11 =
        platform::linux_desktop::X11FrontmostApplicationSource::open(processEnvironmentValue);
    if (x11.ok()) {
        platform::linux_desktop::XScreenSaverIdleTimeProvider idle((*x11)->connection());
        check.report +=
            line(true, "The X display answers: Lumenote sees the application in front.");
        check.report += line(idle.extensionAvailable(),
                             idle.extensionAvailable()
                                 ? "The X screen saver extension reports the time since your "
                                   "last input."
                                 : "The X server has no screen saver extension, so time without "
                                   "input cannot be noticed.");
        check.complete = idle.extensionAvailable();
    } else {
        check.report += line(false, describe(x11.error()));
        check.complete = false;
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
