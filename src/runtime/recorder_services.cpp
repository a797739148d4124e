#include "runtime/recorder_services.hpp"

#include <unistd.h>

#include <QDBusConnection>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <optional>

#include "bridge/browser_settings_binding.hpp"
#include "bridge/browser_silence.hpp"
#include "bridge/browser_status_report.hpp"
#include "insights/history_personal_bests.hpp"
#include "platform/linux/notifications.hpp"
#include "platform/system/headless_platform.hpp"
#include "recording/unclassified_review_service.hpp"
#include "settings/json_file_defaults_domain.hpp"
#include "settings/recording_preferences_adapter.hpp"
#include "store/recorder_lock.hpp"
#include "store/sqlite_recording_store.hpp"
#include "store/store_files.hpp"

namespace lumenote::runtime {

// Declared in the order they are built: each member refers only to those
// above it, and they are destroyed in reverse.
struct RecorderServices::Parts {
    Parts(const UserPaths& userPaths, std::unique_ptr<store::SqliteRecordingStore> openedStore,
          store::RecorderLock heldLock)
        : paths(userPaths),
          store(std::move(openedStore)),
          lock(std::move(heldLock)),
          defaults(settings::JsonFileDefaultsDomain::pathFor(paths),
                   [this] { return wallClock.now(); }),
          preferences(defaults),
          recordingPreferences(preferences),
          checkpoints(paths.applicationData(), wallClock),
          personalBests({*store, *store, recordingPreferences, LocalCalendar::current(), {}}),
          bridgeStore(bridge::BrowserBridgeStore::defaultRoot(paths, processEnvironmentValue)),
          browser(bridgeStore, wallClock, static_cast<std::int32_t>(::getpid())),
          registration(bridge::nativeHostConfiguration(paths, processEnvironmentValue)),
          notifications(QDBusConnection::sessionBus()) {}

    UserPaths paths;
    std::unique_ptr<store::SqliteRecordingStore> store;
    store::RecorderLock lock;
    platform::system::SystemWallClock wallClock;
    platform::system::SystemMonotonicTimeProvider monotonicClock;
    settings::JsonFileDefaultsDomain defaults;
    settings::PreferencesStore preferences;
    settings::PreferencesForRecording recordingPreferences;
    recording::FileSessionCheckpointStore checkpoints;
    insights::HistoryPersonalBests personalBests;
    bridge::BrowserBridgeStore bridgeStore;
    bridge::BridgeTrackingCoordinator browser;
    bridge::NativeHostRegistrationChecker registration;
    platform::linux_desktop::FreedesktopNotificationService notifications;
    std::unique_ptr<DesktopObservation> desktop;
    std::optional<classification::ClassificationRules> rules;
    std::optional<recording::SessionHistory> history;
    std::optional<recording::SessionManager> manager;
    std::optional<bridge::BrowserSettingsBinding> browserSettings;
    std::optional<recording::UnclassifiedReviewService> review;
};

Result<std::unique_ptr<RecorderServices>, ServicesOpenError> RecorderServices::open(
    const UserPaths& paths, std::vector<std::string>& warnings) {
    auto store = store::SqliteRecordingStore::open(store::storePath(paths));
    if (!store.ok()) {
        return fail(ServicesOpenError{ServicesOpenError::Kind::storageUnavailable,
                                      store::storageOpenFailureMessage(store.error())});
    }
    auto lock = store::RecorderLock::acquire(store::recorderLockPath(paths));
    if (!lock.ok()) {
        const auto kind = lock.error().failure == store::RecorderLockFailure::heldByAnotherProcess
                              ? ServicesOpenError::Kind::anotherRecorder
                              : ServicesOpenError::Kind::lockUnusable;
        return fail(ServicesOpenError{kind, store::recorderLockMessage(lock.error())});
    }
    auto parts = std::make_unique<Parts>(paths, std::move(store).value(), std::move(lock).value());

    // The frontmost application and idle time come from the backends this
    // desktop offers; without them the session still records its time, with
    // nothing observed.
    parts->desktop =
        DesktopObservation::open({processEnvironmentValue, QDBusConnection::sessionBus(),
                                  parts->monotonicClock, parts->wallClock});
    for (std::string& warning : platform::observation::startWarnings(parts->desktop->health())) {
        warnings.push_back(std::move(warning));
    }

    // Without a bridge directory browsers are recorded as plain applications.
    if (auto started = parts->browser.start(); !started) {
        warnings.push_back("Websites and PDFs in the browser cannot be recorded: " +
                           bridge::message(started.error()));
    }

    Parts& p = *parts;
    p.rules.emplace(
        *p.store, [&p] { return p.wallClock.now(); }, recording::kOwnBundleIdentifier);
    p.history.emplace(recording::SessionHistoryDependencies{
        *p.store, *p.rules, p.recordingPreferences, p.monotonicClock, p.wallClock, {}});
    p.manager.emplace(recording::SessionManagerDependencies{*p.store,
                                                            p.recordingPreferences,
                                                            p.desktop->idle(),
                                                            p.monotonicClock,
                                                            p.wallClock,
                                                            p.desktop->frontmost(),
                                                            p.notifications,
                                                            p.browser,
                                                            p.checkpoints,
                                                            *p.rules,
                                                            *p.history,
                                                            {},
                                                            &p.personalBests});
    const auto told =
        p.manager->problems().add([&warnings](const recording::SessionError& problem) {
            warnings.push_back(problem.message());
        });
    p.manager->startUp();
    p.manager->problems().remove(told);
    p.browserSettings.emplace(p.browser, p.preferences, *p.rules);
    p.review.emplace(*p.store, *p.rules);
    return std::unique_ptr<RecorderServices>(new RecorderServices(std::move(parts)));
}

RecorderServices::RecorderServices(std::unique_ptr<Parts> parts) : parts_(std::move(parts)) {}

RecorderServices::~RecorderServices() = default;

recording::SessionManager& RecorderServices::manager() {
    return *parts_->manager;
}

recording::SessionHistory& RecorderServices::history() {
    return *parts_->history;
}

classification::ClassificationRules& RecorderServices::rules() {
    return *parts_->rules;
}

bridge::BridgeTrackingCoordinator& RecorderServices::browserTracking() {
    return parts_->browser;
}

settings::PreferencesStore& RecorderServices::preferences() {
    return parts_->preferences;
}

recording::SessionHistoryReader& RecorderServices::historyReader() {
    return *parts_->store;
}

recording::HistoryImporter& RecorderServices::importer() {
    return *parts_->store;
}

recording::WallClock& RecorderServices::wallClock() {
    return parts_->wallClock;
}

recording::UnclassifiedReviewService& RecorderServices::review() {
    return *parts_->review;
}

settings::DefaultsDomain& RecorderServices::defaults() {
    return parts_->defaults;
}

recording::RecordingStore& RecorderServices::store() {
    return *parts_->store;
}

recording::NotificationService& RecorderServices::notifications() {
    return parts_->notifications;
}

Date RecorderServices::now() {
    return parts_->wallClock.now();
}

const UserPaths& RecorderServices::paths() const {
    return parts_->paths;
}

std::vector<bridge::BrowserStatusRow> RecorderServices::browserStatusRows(
    const bridge::NativeHostRegistrationChecker* checker) {
    bridge::BridgeTrackingCoordinator& browser = parts_->browser;
    const bridge::BrowserStatusSources sources{
        checker != nullptr ? *checker : parts_->registration,
        browser.extensionStatus(),
        bridge::BrowserSearchLocations::fromEnvironment(processEnvironmentValue),
        parts_->bridgeStore.readState(),
        static_cast<std::int32_t>(::getpid()),
        browser.runningSession().has_value(),
        browser.settings().browserTrackingPaused,
        browser.frontmostBrowser(),
        browser.settings().filenameLabelsEnabled,
        [&browser](bridge::SupportedBrowser supported) {
            return browser.liveDiagnostic(supported);
        },
        parts_->wallClock.now()};
    return bridge::browserStatusRows(sources);
}

const bridge::NativeHostRegistrationChecker& RecorderServices::registration() const {
    return parts_->registration;
}

std::string RecorderServices::browserStatusJson() {
    const LocalCalendar calendar = LocalCalendar::current();
    nlohmann::ordered_json answer = nlohmann::ordered_json::object();
    for (const bridge::BrowserStatusRow& row : browserStatusRows()) {
        answer[std::string(rawValue(row.diagnosis.browser))] =
            bridge::browserStatusText(row, calendar);
    }
    return answer.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

std::string RecorderServices::browserWarning() {
    const auto silent = parts_->browser.silentFrontmostBrowser(parts_->wallClock.now());
    if (!silent) {
        return {};
    }
    return bridge::browserSilenceSentence(*silent, parts_->registration.check(*silent),
                                          parts_->browser.extensionStatus().status(*silent).state);
}

DesktopObservation& RecorderServices::desktop() {
    return *parts_->desktop;
}

int RecorderServices::activationDescriptor() const {
    return parts_->desktop->activationDescriptor();
}

bool RecorderServices::takeActivation() {
    return parts_->desktop->takeActivation();
}

bool RecorderServices::displayLost() const {
    return parts_->desktop->displayLost();
}

}  // namespace lumenote::runtime
