#include "runtime/diagnostic_report_input.hpp"

#include <chrono>
#include <cstdlib>
#include <system_error>

#include "bridge/browser_bridge_store.hpp"
#include "bridge/browser_extension_status.hpp"
#include "bridge/browser_installation.hpp"
#include "portability/backup_records.hpp"
#include "portability/export_model.hpp"
#include "runtime/system_facts.hpp"
#include "settings/json_file_defaults_domain.hpp"
#include "settings/preferences_store.hpp"
#include "store/sqlite_recording_store.hpp"
#include "store/store_files.hpp"

namespace lumenote::runtime {

namespace {

template <typename T>
std::optional<std::size_t> sizeOf(Result<std::vector<T>, StoreError> rows) {
    return rows ? std::optional<std::size_t>(rows->size()) : std::nullopt;
}

std::optional<std::size_t> countOf(Result<std::size_t, StoreError> count) {
    return count ? std::optional<std::size_t>(*count) : std::nullopt;
}

// The counts of the store; zero for a store not yet created, which is not
// created here.
void countStore(const UserPaths& paths, portability::DiagnosticReportFacts& facts) {
    const auto path = store::storePath(paths);
    std::error_code error;
    if (!std::filesystem::exists(path, error)) {
        if (!error) {
            facts.sessions = facts.activitySegments = facts.applicationRules = facts.websiteRules =
                0;
        }
        return;
    }
    auto opened = store::SqliteRecordingStore::open(path);
    if (!opened) {
        return;
    }
    store::SqliteRecordingStore& recordings = **opened;
    const auto live = recordings.liveSessions();
    facts.activeSession = live && !live->empty();
    facts.sessions = countOf(recordings.sessionCount());
    facts.activitySegments = countOf(recordings.segmentCount());
    facts.applicationRules = sizeOf(recordings.appClassifications());
    facts.websiteRules = sizeOf(recordings.websiteClassifications());
}

}  // namespace

portability::DiagnosticReportFacts gatherDiagnosticReportFacts(
    const DiagnosticReportSurroundings& surroundings) {
    portability::DiagnosticReportFacts facts;
    facts.generatedAt = systemNow();
    facts.appVersion = surroundings.appVersion;
    facts.appBuild = surroundings.appBuild;
    facts.operatingSystem = operatingSystemName();
    facts.architecture = std::string(portability::buildArchitectureText());
    facts.backupFormatVersion = portability::kBackupFormatVersion;
    facts.exportFormatVersion = portability::kExportFormatVersion;

    settings::JsonFileDefaultsDomain defaults(
        settings::JsonFileDefaultsDomain::pathFor(surroundings.paths), systemNow);
    const settings::PreferencesStore preferences(defaults);
    facts.appearance = preferences.appearance();
    facts.browserTrackingEnabled = preferences.browserTrackingEnabled();
    facts.hostnameTrackingEnabled = preferences.hostnameTrackingEnabled();
    facts.localPDFDetectionEnabled = preferences.localPDFDetectionEnabled();
    facts.notifications = portability::reportedNotificationState(preferences.notificationsEnabled(),
                                                                 desktopNotificationState());

    countStore(surroundings.paths, facts);

    const bridge::BrowserBridgeStore bridgeStore(
        bridge::BrowserBridgeStore::defaultRoot(surroundings.paths, processEnvironmentValue));
    const auto extensions =
        bridge::BrowserExtensionStatusService::readNow(bridgeStore, facts.generatedAt);
    const auto installations =
        bridge::BrowserSearchLocations::fromEnvironment(processEnvironmentValue);
    for (const auto& [browser, name] : RawValues<bridge::SupportedBrowser>::entries) {
        facts.browserReadiness.emplace_back(
            browser, portability::browserReadiness(bridge::browserInstalled(browser, installations),
                                                   extensions.status(browser).state));
    }
    return facts;
}

}  // namespace lumenote::runtime
