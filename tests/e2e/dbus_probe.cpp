// lumenote-dbus-probe: the D-Bus platform parts on their own, printing one
// JSON line per event, for the D-Bus end-to-end test.
//
//   lumenote-dbus-probe serve [--notify TITLE BODY]
//     system events, the notification service, the command service over a
//     stub recorder and the signal bridge; quits on SIGTERM, SIGINT or SIGHUP.
//   lumenote-dbus-probe call METHOD
//     sends one command with the command client; exit status 0 when answered.
#include <QCoreApplication>
#include <QDBusConnection>
#include <QTimer>

#include <cstdio>
#include <iostream>
#include <string>

#include <unistd.h>

#include <nlohmann/json.hpp>

#include "platform/linux/notifications.hpp"
#include "platform/linux/signal_bridge.hpp"
#include "platform/linux/system_event_source.hpp"
#include "runtime/command_client.hpp"
#include "runtime/command_service.hpp"

namespace {

using lumenote::Result;

void printLine(const nlohmann::json& line) {
    std::cout << line.dump() << std::endl;
}

// A recorder with one session that only moves when commanded.
class StubRecorder final : public lumenote::runtime::RecorderCommandHandler {
  public:
    explicit StubRecorder(std::function<void()> onEnd) : onEnd_(std::move(onEnd)) {}

    Result<void, std::string> togglePause() override {
        printLine({{"command", "TogglePause"}});
        paused_ = !paused_;
        return {};
    }
    Result<void, std::string> endSession() override {
        printLine({{"command", "EndSession"}});
        active_ = false;
        onEnd_();
        return {};
    }
    Result<void, std::string> startPassiveStudy() override {
        printLine({{"command", "StartPassiveStudy"}});
        if (paused_) {
            return lumenote::fail(std::string("Resume the session first – it is paused."));
        }
        away_ = true;
        return {};
    }
    Result<void, std::string> returnToComputerStudy() override {
        printLine({{"command", "ReturnToComputerStudy"}});
        away_ = false;
        return {};
    }
    std::string browserEvents() override { return R"({"events":[]})"; }
    std::string browserStatus() override { return "{}"; }
    Result<void, std::string> present() override {
        return lumenote::fail(std::string("The probe has no window."));
    }
    lumenote::runtime::RecorderStatus status() override {
        lumenote::runtime::RecorderStatus status;
        status.sessionActive = active_;
        status.subject = "Étude – Ω";
        status.state = paused_ ? lumenote::recording::StudySessionStatus::paused
                               : lumenote::recording::StudySessionStatus::running;
        status.elapsedSeconds = 61.7;
        status.remainingSeconds = 1438.3;
        status.currentActivity = "Probe";
        status.currentClassification = lumenote::classification::ActivityClassification::focused;
        status.studyState = away_ ? lumenote::recording::LiveStudyState::passiveStudy
                                  : lumenote::recording::LiveStudyState::computerActivity;
        return status;
    }

  private:
    std::function<void()> onEnd_;
    bool active_ = true;
    bool paused_ = false;
    bool away_ = false;
};

nlohmann::json statusJson(
    const lumenote::platform::linux_desktop::SystemEventSourceStatus& status) {
    nlohmann::json gaps = nlohmann::json::array();
    for (const auto gap : lumenote::platform::linux_desktop::systemEventGaps(status)) {
        gaps.push_back(lumenote::platform::linux_desktop::systemEventGapMessage(gap));
    }
    return {{"systemBusAvailable", status.systemBusAvailable},
            {"logindAvailable", status.logindAvailable},
            {"sessionFound", status.sessionFound},
            {"sessionPath", status.sessionPath},
            {"inhibitorHeld", status.inhibitorHeld},
            {"sessionBusAvailable", status.sessionBusAvailable},
            {"screenSaverAvailable", status.screenSaverAvailable},
            {"gaps", gaps}};
}

std::string authorizationName(lumenote::recording::NotificationAuthorization authorization) {
    switch (authorization) {
        case lumenote::recording::NotificationAuthorization::authorized:
            return "authorized";
        case lumenote::recording::NotificationAuthorization::denied:
            return "denied";
        case lumenote::recording::NotificationAuthorization::unavailable:
            return "unavailable";
    }
    return "unknown";
}

int serve(QCoreApplication& app, int argc, char** argv) {
    lumenote::runtime::RecorderCommandService* servicePointer = nullptr;
    // The service is released after the reply to EndSession has gone out, as
    // a recorder does when its session ends.
    StubRecorder recorder([&servicePointer] {
        QTimer::singleShot(0, [&servicePointer] {
            servicePointer->stop();
            printLine({{"event", "commandServiceStopped"}});
        });
    });
    lumenote::runtime::RecorderCommandService service(recorder, QDBusConnection::sessionBus());
    servicePointer = &service;

    const auto eventPrinter = [](const char* kind) {
        return [kind](lumenote::platform::linux_desktop::SystemEventCause cause) {
            printLine({{"event", kind},
                       {"cause", lumenote::platform::linux_desktop::systemEventCauseName(cause)}});
        };
    };
    lumenote::platform::linux_desktop::LinuxSystemEventSource events(
        {eventPrinter("sleep"), eventPrinter("wake"), eventPrinter("terminate")},
        lumenote::platform::linux_desktop::SystemEventSourceSettings::fromEnvironment());
    events.setStatusChangeHandler(
        [](const lumenote::platform::linux_desktop::SystemEventSourceStatus& status) {
            nlohmann::json line = statusJson(status);
            line["event"] = "status";
            printLine(line);
        });
    lumenote::platform::linux_desktop::FreedesktopNotificationService notifications(
        QDBusConnection::sessionBus());

    lumenote::platform::linux_desktop::SignalBridge signalBridge([&](int signal) {
        printLine({{"event", "signal"},
                   {"signal", lumenote::platform::linux_desktop::signalName(signal)}});
        service.stop();
        events.stop();
        app.quit();
    });
    if (auto installed = signalBridge.install(); !installed) {
        printLine({{"event", "error"},
                   {"message", lumenote::platform::linux_desktop::signalBridgeFailureMessage(
                                   installed.error())}});
        return 1;
    }

    nlohmann::json ready = statusJson(events.start());
    ready["event"] = "ready";
    ready["pid"] = static_cast<long long>(::getpid());
    ready["notifications"] = authorizationName(notifications.authorization());
    const auto started = service.start();
    ready["commandService"] =
        started ? std::string("running")
                : lumenote::runtime::commandServiceFailureMessage(started.error());
    printLine(ready);

    if (argc >= 5 && std::string(argv[2]) == "--notify") {
        notifications.post(argv[3], argv[4]);
        printLine({{"event", "notified"}});
    }
    return app.exec();
}

int call(const std::string& method) {
    const auto command = lumenote::runtime::recorderCommandFromMethod(method);
    if (!command) {
        printLine({{"ok", false}, {"message", "unknown method " + method}});
        return 2;
    }
    const auto answer = lumenote::runtime::callRecorderCommand(*command);
    if (!answer) {
        printLine({{"ok", false},
                   {"message", lumenote::runtime::commandClientErrorMessage(answer.error())}});
        return 1;
    }
    const auto parsed = lumenote::runtime::parseRecorderStatus(*answer);
    nlohmann::json line{{"ok", true}, {"reply", *answer}};
    if (parsed) {
        line["state"] = parsed->sessionActive ? std::string(lumenote::rawValue(parsed->state))
                                              : std::string("idle");
        line["subject"] = parsed->subject;
        line["studyState"] = std::string(lumenote::rawValue(parsed->studyState));
    } else {
        line["parseError"] = lumenote::runtime::recorderStatusParseErrorMessage(parsed.error());
    }
    printLine(line);
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const std::string mode = argc >= 2 ? argv[1] : "";
    if (mode == "serve") {
        return serve(app, argc, argv);
    }
    if (mode == "call" && argc == 3) {
        return call(argv[2]);
    }
    std::cerr << "usage: lumenote-dbus-probe serve [--notify TITLE BODY] | call METHOD\n";
    return 2;
}
