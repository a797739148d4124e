// Wires the recorder: the store and its lock, the preferences, the desktop's
// services (X11, D-Bus), the session manager and the host loop.
#include <fmt/format.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QDBusConnection>
#include <cstdlib>

#include "platform/linux/command_service.hpp"
#include "platform/linux/notifications.hpp"
#include "platform/linux/signal_bridge.hpp"
#include "platform/linux/system_event_source.hpp"
#include "platform/linux/x11_frontmost_application.hpp"
#include "platform/linux/x11_idle_time.hpp"
#include "platform/system/headless_platform.hpp"
#include "recorder/raw_terminal.hpp"
#include "recorder/recorder.hpp"
#include "recorder/recorder_host.hpp"
#include "settings/file_session_template_repository.hpp"
#include "settings/json_file_defaults_domain.hpp"
#include "settings/preferences_store.hpp"
#include "settings/recording_preferences_adapter.hpp"
#include "settings/session_template_store.hpp"
#include "store/recorder_lock.hpp"
#include "store/sqlite_recording_store.hpp"
#include "store/store_files.hpp"

namespace lumenote::recorder {

namespace {

// Runs `use` over the user's template store.
template <typename Use>
auto withTemplates(const UserPaths& paths, Use use) {
    SystemWallClock clock;
    FileSessionTemplateRepository repository(FileSessionTemplateRepository::pathFor(paths),
                                             [&clock] { return clock.now(); });
    SessionTemplateStore templates(repository, [&clock] { return clock.now(); });
    return use(templates);
}

// Fills the request from a template where the options left it open. The
// template is marked used only once the session exists (see runRecorder).
// Fails with the sentence to show.
Result<void, std::string> applyTemplate(const RecorderOptions& options,
                                        SessionTemplateStore& templates,
                                        SessionStartRequest& request) {
    const SessionTemplate* chosen = templates.findByName(*options.templateName);
    if (chosen == nullptr) {
        if (const auto id = Uuid::parse(*options.templateName)) {
            chosen = templates.find(*id);
        }
    }
    if (chosen == nullptr) {
        return fail(
            fmt::format("No session template has the name or id \"{}\".", *options.templateName));
    }
    if (request.subject.empty()) {
        request.subject = chosen->subject;
    }
    if (request.goal.empty()) {
        request.goal = chosen->defaultGoal;
    }
    if (!options.durationGiven) {
        request.plannedDuration = chosen->duration;
    }
    if (!options.timingGiven) {
        request.timingMode = chosen->timingMode();
    }
    request.templateID = chosen->id;
    return {};
}

const char* environmentValue(const char* name) {
    return std::getenv(name);
}

}  // namespace

int runRecorder(const RecorderOptions& options, const UserPaths& paths, std::ostream& out,
                std::ostream& err) {
    SessionStartRequest request = options.request;
    if (options.templateName) {
        auto applied = withTemplates(paths, [&](SessionTemplateStore& templates) {
            return applyTemplate(options, templates, request);
        });
        if (!applied.ok()) {
            err << applied.error() << '\n';
            return 1;
        }
    }
    int argc = 1;
    char name[] = "lumenote-cli";
    char* argv[] = {name, nullptr};
    QCoreApplication application(argc, argv);

    auto store = SqliteRecordingStore::open(storePath(paths));
    if (!store.ok()) {
        err << storageOpenFailureMessage(store.error()) << '\n';
        return 1;
    }
    auto lock = RecorderLock::acquire(recorderLockPath(paths));
    if (!lock.ok()) {
        err << recorderLockMessage(lock.error()) << '\n';
        return 1;
    }

    SystemWallClock wallClock;
    SystemMonotonicTimeProvider monotonicClock;
    JsonFileDefaultsDomain defaults(JsonFileDefaultsDomain::pathFor(paths),
                                    [&wallClock] { return wallClock.now(); });
    PreferencesStore preferences(defaults);
    PreferencesForRecording recordingPreferences(preferences);
    FileSessionCheckpointStore checkpoints(paths.applicationData(), wallClock);
    NoBrowserTracking browser;
    FreedesktopNotificationService notifications(QDBusConnection::sessionBus());

    // The frontmost application and idle time come from X11; without an X
    // display the session still records its time, with nothing observed.
    HeadlessPlatform headless;
    FrontmostApplicationSource* frontmost = &headless.frontmostApplication;
    IdleTimeProvider* idle = &headless.idleTime;
    std::unique_ptr<X11FrontmostApplicationSource> x11;
    std::unique_ptr<XScreenSaverIdleTimeProvider> x11Idle;
    if (auto opened = X11FrontmostApplicationSource::open(environmentValue); opened.ok()) {
        x11 = std::move(opened).value();
        x11Idle = std::make_unique<XScreenSaverIdleTimeProvider>(x11->connection());
        frontmost = x11.get();
        idle = x11Idle.get();
    } else {
        err << describe(opened.error())
            << " Recording goes on, but Lumenote cannot see which application is in front or "
               "when you last gave input.\n";
    }

    ClassificationRules rules(
        **store, [&wallClock] { return wallClock.now(); }, kOwnBundleIdentifier);
    SessionHistory history(SessionHistoryDependencies{
        **store, rules, recordingPreferences, monotonicClock, wallClock, {}});
    SessionManager manager(SessionManagerDependencies{
        **store, recordingPreferences, *idle, monotonicClock, wallClock, *frontmost, notifications,
        browser, checkpoints, rules, history});
    manager.startUp();
    if (const auto& problem = manager.lastError()) {
        err << *problem << '\n';
        manager.clearLastError();
    }

    RawTerminal terminal(STDIN_FILENO);
    RecorderHost::Setup setup{manager, out, options.interactive};
    setup.startRequest = request;
    setup.sessionStarted = [&paths](const StudySession& session) {
        if (const auto templateID = session.originatingTemplateID()) {
            (void)withTemplates(paths, [&](SessionTemplateStore& templates) {
                return templates.markUsed(*templateID);
            });
        }
    };
    setup.introduceAwayStudy = [&preferences] {
        if (preferences.hasSeenPassiveStudyIntroduction()) {
            return false;
        }
        preferences.setHasSeenPassiveStudyIntroduction(true);
        return true;
    };
    if (x11) {
        setup.activationDescriptor = x11->fileDescriptor();
        setup.activationChanged = [&x11] { return x11->processEvents(); };
    }
    RecorderHost host(std::move(setup));

    SystemEventCallbacks callbacks;
    callbacks.sleep = [&manager](SystemEventCause) { manager.willSleep(); };
    callbacks.wake = [&manager](SystemEventCause) { manager.didWake(); };
    callbacks.terminate = [&host](SystemEventCause) {
        host.terminate("The system is shutting down");
    };
    LinuxSystemEventSource systemEvents(callbacks, SystemEventSourceSettings::fromEnvironment());
    for (const SystemEventGap gap : systemEventGaps(systemEvents.start())) {
        err << systemEventGapMessage(gap) << '\n';
    }

    SignalBridge signalBridge(
        [&host](int signal) { host.terminate(fmt::format("Stopped by {}", signalName(signal))); });
    if (auto installed = signalBridge.install(); !installed.ok()) {
        err << signalBridgeFailureMessage(installed.error()) << '\n';
    }

    if (!host.begin()) {
        return 1;
    }
    RecorderCommandService commands(host, QDBusConnection::sessionBus());
    if (auto started = commands.start(); !started.ok()) {
        err << commandServiceFailureMessage(started.error()) << '\n';
    }
    application.exec();
    commands.stop();
    systemEvents.stop();
    return host.exitStatus();
}

}  // namespace lumenote::recorder
