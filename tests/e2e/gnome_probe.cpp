// lumenote-gnome-probe: the GNOME Shell observers and the extension installer
// on their own, printing JSON lines, for the end-to-end test under a real
// headless GNOME Shell. Uses the session bus of DBUS_SESSION_BUS_ADDRESS and
// the desktop entries of the XDG data folders.
//
//   lumenote-gnome-probe --install FOLDER   installs the extension built in FOLDER
//   lumenote-gnome-probe --watch            "ready", an "activated" line at each change
//                                           reported, a "tick" sample every half second
//   lumenote-gnome-probe --bench N          wall and CPU time per sample over N samples
#include <QCoreApplication>
#include <QDBusConnection>
#include <QTimer>

#include <ctime>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "foundation/user_paths.hpp"
#include "platform/gnome/gnome_extension_installer.hpp"
#include "platform/gnome/gnome_shell_frontmost_application.hpp"
#include "platform/gnome/mutter_idle_time.hpp"
#include "platform/linux/desktop_entries.hpp"
#include "platform/linux/x11_frontmost_application.hpp"

namespace {

namespace gnome = lumenote::platform::gnome;
namespace linux_desktop = lumenote::platform::linux_desktop;

void printLine(const nlohmann::json& line) {
    std::cout << line.dump() << std::endl;
}

nlohmann::json sample(gnome::GnomeShellFrontmostApplicationSource& frontmost,
                      gnome::MutterIdleTimeProvider& idle, std::string_view event) {
    nlohmann::json line{{"event", event}};
    if (const auto application = frontmost.frontmostApplication()) {
        line["bundleIdentifier"] = application->bundleIdentifier;
        line["localizedName"] = application->localizedName;
    } else {
        line["bundleIdentifier"] = nullptr;
        line["localizedName"] = nullptr;
    }
    line["observing"] = frontmost.observing();
    line["idleSeconds"] = idle.idleSeconds();
    line["idleAvailable"] = idle.available();
    line["idleWatched"] = idle.watched();
    return line;
}

int install(const std::string& folder) {
    const auto paths = lumenote::UserPaths::fromProcessEnvironment();
    auto report = gnome::installGnomeShellExtension(folder, paths, gnome::processRunner());
    if (!report) {
        printLine({{"event", "error"}, {"message", gnome::describe(report.error())}});
        return 2;
    }
    printLine({{"event", "installed"},
               {"folder", report->folder.string()},
               {"format", gnome::formatFolder(report->format)},
               {"replacedPrevious", report->replacedPrevious},
               {"enabled", report->enabling == gnome::ExtensionEnabling::enabled},
               {"sentences", gnome::describe(*report)}});
    return 0;
}

double secondsOn(clockid_t clock) {
    timespec time{};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

class MonotonicClock final : public lumenote::recording::MonotonicTimeProvider {
  public:
    double now() override { return secondsOn(CLOCK_MONOTONIC); }
};

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    const std::string mode = argc > 1 ? argv[1] : "";
    if (mode == "--install" && argc == 3) {
        return install(argv[2]);
    }
    if (mode != "--watch" && !(mode == "--bench" && argc == 3)) {
        std::cerr << "usage: lumenote-gnome-probe --install FOLDER | --watch | --bench N\n";
        return 64;
    }
    auto entries = linux_desktop::DesktopEntryIndex::load(
        linux_desktop::applicationFolders(lumenote::processEnvironmentValue));
    auto opened = gnome::GnomeShellFrontmostApplicationSource::open(
        QDBusConnection::sessionBus(), std::move(entries), linux_desktop::readProcessName);
    if (!opened) {
        printLine({{"event", "error"}, {"message", gnome::describe(opened.error())}});
        return 2;
    }
    auto frontmost = std::move(opened.value());
    MonotonicClock clock;
    gnome::MutterIdleTimeProvider idle(QDBusConnection::sessionBus(), clock);

    if (mode == "--bench") {
        const int samples = std::stoi(argv[2]);
        int withFrontmost = 0;
        const double wall = secondsOn(CLOCK_MONOTONIC);
        const double cpu = secondsOn(CLOCK_PROCESS_CPUTIME_ID);
        for (int index = 0; index < samples; ++index) {
            withFrontmost += frontmost->frontmostApplication() ? 1 : 0;
            idle.idleSeconds();
        }
        printLine(
            {{"event", "bench"},
             {"samples", samples},
             {"samplesWithFrontmost", withFrontmost},
             {"wallMicrosecondsPerSample", (secondsOn(CLOCK_MONOTONIC) - wall) * 1e6 / samples},
             {"cpuMicrosecondsPerSample",
              (secondsOn(CLOCK_PROCESS_CPUTIME_ID) - cpu) * 1e6 / samples}});
        return 0;
    }

    frontmost->setActivationHandler([&] { printLine(sample(*frontmost, idle, "activated")); });
    printLine(sample(*frontmost, idle, "ready"));
    QTimer ticks;
    QObject::connect(&ticks, &QTimer::timeout,
                     [&] { printLine(sample(*frontmost, idle, "tick")); });
    ticks.start(500);
    return QCoreApplication::exec();
}
