// Test support: a private dbus-daemon for one test, the Python stand-ins of
// fake_gnome_shell.py on it, and waiting on the Qt event loop with a
// deadline.
#pragma once

#include <QCoreApplication>
#include <QDBusConnection>
#include <QEventLoop>
#include <QTimer>

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

extern char** environ;

namespace lumenote::testing {

// The Qt application the D-Bus connections need, made once.
inline void ensureQtApplication() {
    if (QCoreApplication::instance() == nullptr) {
        static int argc = 1;
        static char name[] = "platform_gnome_tests";
        static char* argv[] = {name, nullptr};
        static QCoreApplication application(argc, argv);
    }
}

// Runs the Qt event loop until `done` holds or `limit` passes; whether it
// held.
inline bool waitUntil(const std::function<bool()>& done,
                      std::chrono::milliseconds limit = std::chrono::seconds(10)) {
    const auto deadline = std::chrono::steady_clock::now() + limit;
    while (!done()) {
        if (std::chrono::steady_clock::now() >= deadline) {
            return false;
        }
        QEventLoop loop;
        QTimer::singleShot(10, &loop, &QEventLoop::quit);
        loop.exec();
    }
    return true;
}

// The first line of `file` once it has one, within `limit`; "" otherwise.
inline std::string waitForLine(const std::filesystem::path& file,
                               std::chrono::milliseconds limit = std::chrono::seconds(10)) {
    std::string line;
    waitUntil(
        [&] {
            std::ifstream stream(file);
            return std::getline(stream, line) && !line.empty() && !stream.eof();
        },
        limit);
    return line;
}

// A program run under coreutils' timeout (so that nothing outlives a crashed
// test by long), stopped with SIGTERM when destroyed.
class ChildProcess {
  public:
    ChildProcess(std::vector<std::string> arguments, const std::vector<std::string>& environment,
                 const std::filesystem::path& output) {
        arguments.insert(arguments.begin(), {"timeout", "120"});
        std::vector<char*> argv;
        for (auto& argument : arguments) {
            argv.push_back(argument.data());
        }
        argv.push_back(nullptr);
        std::vector<std::string> variables = environment;
        for (char** variable = environ; *variable != nullptr; ++variable) {
            variables.emplace_back(*variable);
        }
        std::vector<char*> envp;
        for (auto& variable : variables) {
            envp.push_back(variable.data());
        }
        envp.push_back(nullptr);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, output.c_str(),
                                         O_WRONLY | O_CREAT | O_TRUNC, 0600);
        posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO);
        if (::posix_spawnp(&pid_, argv[0], &actions, nullptr, argv.data(), envp.data()) != 0) {
            pid_ = -1;
        }
        posix_spawn_file_actions_destroy(&actions);
    }
    ~ChildProcess() { stop(); }
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    void stop() {
        if (pid_ > 0) {
            ::kill(pid_, SIGTERM);
            int status = 0;
            ::waitpid(pid_, &status, 0);
            pid_ = -1;
        }
    }

  private:
    pid_t pid_ = -1;
};

// A private session bus in a temporary folder, with no service folders, so
// nothing installed here can be started into a test; removed with its
// processes when destroyed.
class GnomeTestBus {
  public:
    GnomeTestBus() {
        ensureQtApplication();
        char folder[] = "/tmp/lumenote-gnome-XXXXXX";
        folder_ = ::mkdtemp(folder);
        std::ofstream(folder_ / "bus.conf") << R"(<!DOCTYPE busconfig PUBLIC
 "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:tmpdir=/tmp</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
)";
        daemon_ = std::make_unique<ChildProcess>(
            std::vector<std::string>{"dbus-daemon",
                                     "--config-file=" + (folder_ / "bus.conf").string(), "--nofork",
                                     "--print-address=1"},
            std::vector<std::string>{}, folder_ / "address");
        address_ = waitForLine(folder_ / "address");
        connectionName_ = QStringLiteral("gnome-test-%1").arg(++connections());
        bus_ = std::make_unique<QDBusConnection>(
            QDBusConnection::connectToBus(QString::fromStdString(address_), connectionName_));
    }

    ~GnomeTestBus() {
        services_.clear();
        bus_.reset();
        QDBusConnection::disconnectFromBus(connectionName_);
        daemon_.reset();
        std::error_code error;
        std::filesystem::remove_all(folder_, error);
    }

    bool ready() const { return !address_.empty() && bus_->isConnected(); }
    QDBusConnection& bus() { return *bus_; }
    const std::string& address() const { return address_; }

    // Starts fake_gnome_shell.py with `arguments` and waits until it says it
    // is ready; returns its unique bus name, "" when it did not start.
    std::string startService(const std::vector<std::string>& arguments) {
        const auto index = started_++;
        const auto ready = folder_ / ("service-" + std::to_string(index) + ".ready");
        // The system interpreter, which has python3-dbus (a PATH one may not).
        std::vector<std::string> command{
            "/usr/bin/python3", LUMENOTE_SOURCE_DIR "/tests/platform/gnome/fake_gnome_shell.py",
            "--ready", ready.string()};
        command.insert(command.end(), arguments.begin(), arguments.end());
        auto process = std::make_unique<ChildProcess>(
            command, std::vector<std::string>{"DBUS_SESSION_BUS_ADDRESS=" + address_},
            folder_ / ("service-" + std::to_string(index) + ".log"));
        const std::string uniqueName = waitForLine(ready);
        if (!uniqueName.empty()) {
            services_[uniqueName] = std::move(process);
        }
        return uniqueName;
    }

    // Stops the service that has `uniqueName`; its names leave the bus.
    void stopService(const std::string& uniqueName) { services_.erase(uniqueName); }

  private:
    static int& connections() {
        static int count = 0;
        return count;
    }

    std::filesystem::path folder_;
    std::unique_ptr<ChildProcess> daemon_;
    std::map<std::string, std::unique_ptr<ChildProcess>> services_;
    int started_ = 0;
    std::string address_;
    QString connectionName_;
    std::unique_ptr<QDBusConnection> bus_;
};

}  // namespace lumenote::testing
