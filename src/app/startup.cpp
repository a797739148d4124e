#include "app/startup.hpp"

#include <unistd.h>
#include <CLI/CLI.hpp>

#include <QApplication>
#include <cstdlib>
#include <filesystem>
#include <iostream>

#include "app/desktop_application.hpp"
#include "app/desktop_command_line.hpp"
#include "app/tray_icons.hpp"
#include "platform/linux/x11_display_probe.hpp"
#include "platform/system/system_clocks.hpp"
#include "runtime/recorder_control.hpp"
#include "shell/startup_failure.hpp"
#include "ui/startup_failure_window.hpp"

namespace lumenote::app {

namespace {

constexpr std::string_view kNoDisplaySentence =
    "No display could be opened, so Lumenote starts the terminal recorder instead.";

// Whether Qt will find a display: a Wayland socket or platform chosen by the
// environment is trusted, an X display is tried.
bool displayAvailable() {
    if (std::getenv("QT_QPA_PLATFORM") != nullptr || std::getenv("WAYLAND_DISPLAY") != nullptr) {
        return true;
    }
    return platform::linux_desktop::x11DisplayCanBeOpened();
}

// Replaces this process with `lumenote-cli record` from beside this
// executable; returns only when that failed.
int startTerminalRecorder(const char* argument0) {
    std::error_code error;
    std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", error);
    if (error) {
        self = argument0;
    }
    const std::string cli = (self.parent_path() / "lumenote-cli").string();
    char record[] = "record";
    std::string name = "lumenote-cli";
    char* arguments[] = {name.data(), record, nullptr};
    ::execv(cli.c_str(), arguments);
    std::cerr << "The terminal recorder could not be started (" << cli << ").\n";
    return 1;
}

// A window in place of the application; nothing records behind it.
int showFailure(QApplication& application, const std::string& text) {
    ui::StartupFailureWindow window(QString::fromStdString(text));
    window.setWindowIcon(applicationIcon());
    window.show();
    std::cerr << shell::kStartupFailureTitle << ": " << text << '\n';
    return application.exec();
}

}  // namespace

int runDesktopApplication(int argc, char** argv) {
    CLI::App options;
    DesktopCommandLine chosen;
    buildDesktopCommandLine(options, chosen);
    try {
        options.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return options.exit(error);
    }
    if (!displayAvailable()) {
        std::cerr << kNoDisplaySentence << '\n';
        return startTerminalRecorder(argv[0]);
    }

    QApplication::setApplicationName(QStringLiteral("Lumenote"));
    QApplication::setApplicationVersion(QStringLiteral(LUMENOTE_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("com.tallywise.Lumenote"));
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setWindowIcon(applicationIcon());

    const UserPaths paths = UserPaths::fromProcessEnvironment();
    AppDependencies dependencies;
    auto services = runtime::RecorderServices::open(paths, dependencies.startupWarnings);
    if (!services.ok()) {
        switch (services.error().kind) {
            case runtime::ServicesOpenError::Kind::anotherRecorder: {
                auto presented = runtime::presentRecorder();
                if (presented.ok()) {
                    std::cout << "Lumenote is already running; its panel is open.\n";
                    return 0;
                }
                QApplication::setQuitOnLastWindowClosed(true);
                return showFailure(application, services.error().message + " " + presented.error());
            }
            case runtime::ServicesOpenError::Kind::storageUnavailable:
            case runtime::ServicesOpenError::Kind::lockUnusable:
                QApplication::setQuitOnLastWindowClosed(true);
                return showFailure(application, services.error().message.empty()
                                                    ? std::string(shell::kStorageUnavailableText)
                                                    : services.error().message);
        }
    }
    dependencies.services = std::move(services).value();
    auto clock = std::make_shared<platform::system::SystemWallClock>();
    dependencies.templateRepository = std::make_unique<settings::FileSessionTemplateRepository>(
        settings::FileSessionTemplateRepository::pathFor(paths), [clock] { return clock->now(); });
    dependencies.templateStore = std::make_unique<settings::SessionTemplateStore>(
        *dependencies.templateRepository, [clock] { return clock->now(); });
    dependencies.appearanceController = std::make_unique<ui::AppearanceController>();

    DesktopApplication::Options desktopOptions;
    desktopOptions.startHidden =
        chosen.hidden || dependencies.services->preferences().startHidden();
    DesktopApplication desktop(std::move(dependencies), desktopOptions);
    for (const std::string& gap : desktop.begin()) {
        std::cerr << gap << '\n';
    }
    return application.exec();
}

}  // namespace lumenote::app
