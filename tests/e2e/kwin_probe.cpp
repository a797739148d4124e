// lumenote-kwin-probe: the KDE observers on their own, printing JSON lines,
// for the end-to-end test against a real KWin.
//
//   lumenote-kwin-probe --watch   stages the shipped KWin script in
//                                 $XDG_RUNTIME_DIR, has KWin run it, prints
//                                 "ready", then one "activated" line for each
//                                 report of the script (with the idle reading
//                                 of the screen saver service), until SIGTERM
//                                 or SIGINT, when it unloads the script and
//                                 prints "stopped"
//
// Exit status 2 with an "error" line when the observer cannot start.
#include <QCoreApplication>
#include <QDBusConnection>

#include <cstdlib>
#include <iostream>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "foundation/user_paths.hpp"
#include "platform/kde/kde_screensaver_idle_time.hpp"
#include "platform/kde/kwin_script_file.hpp"
#include "platform/kde/kwin_script_frontmost_application.hpp"
#include "platform/linux/desktop_entries.hpp"
#include "platform/linux/signal_bridge.hpp"

namespace {

namespace kde = lumenote::platform::kde;
namespace linux_desktop = lumenote::platform::linux_desktop;

void printLine(const nlohmann::json& line) {
    std::cout << line.dump() << std::endl;
}

int printError(std::string_view message) {
    printLine({{"event", "error"}, {"message", message}});
    return 2;
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication qtApplication(argc, argv);
    if (argc != 2 || std::string_view(argv[1]) != "--watch") {
        std::cerr << "usage: lumenote-kwin-probe --watch\n";
        return 64;
    }
    const char* runtime = std::getenv("XDG_RUNTIME_DIR");
    if (runtime == nullptr || *runtime == '\0') {
        return printError("XDG_RUNTIME_DIR is not set");
    }
    const auto shipped =
        kde::shippedKWinScript(QCoreApplication::applicationDirPath().toStdString());
    if (!shipped) {
        return printError(kde::describe(kde::KWinScriptError::scriptNotFound));
    }
    const auto staged = kde::stageKWinScript(*shipped, runtime);
    if (!staged) {
        return printError(kde::describe(staged.error()));
    }

    auto bus = QDBusConnection::sessionBus();
    auto source = kde::KWinScriptFrontmostApplicationSource::open(
        bus,
        linux_desktop::DesktopEntryIndex::load(
            linux_desktop::applicationFolders(lumenote::processEnvironmentValue)),
        QString::fromStdString(staged.value().string()));
    if (!source) {
        return printError(kde::describe(source.error()));
    }
    kde::KdeScreenSaverIdleTimeProvider idle(bus);

    auto& frontmost = *source.value();
    frontmost.setActivationHandler([&] {
        nlohmann::json line{{"event", "activated"}, {"observing", frontmost.observing()}};
        if (const auto application = frontmost.frontmostApplication()) {
            line["bundleIdentifier"] = application->bundleIdentifier;
            line["localizedName"] = application->localizedName;
        } else {
            line["bundleIdentifier"] = nullptr;
            line["localizedName"] = nullptr;
        }
        line["idleSeconds"] = idle.idleSeconds();
        line["idleAvailable"] = idle.available();
        if (const auto failure = frontmost.reloadFailure()) {
            line["reloadFailure"] = kde::describe(*failure);
        }
        printLine(line);
    });

    linux_desktop::SignalBridge bridge([](int) { QCoreApplication::quit(); });
    if (auto installed = bridge.install(); !installed) {
        return printError(linux_desktop::signalBridgeFailureMessage(installed.error()));
    }
    printLine({{"event", "ready"}, {"script", staged.value().string()}});
    const int status = QCoreApplication::exec();
    source.value().reset();
    printLine({{"event", "stopped"}});
    return status;
}
