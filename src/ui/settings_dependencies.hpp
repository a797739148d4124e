// What the Settings page works through: the services the application made
// once at start-up, passed by reference, and the few runtime facts that only
// the application knows, passed as functions.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include "bridge/browser_status_report.hpp"
#include "bridge/native_host_registration.hpp"
#include "bridge/setup_test.hpp"
#include "classification/classification_rules.hpp"
#include "foundation/dates.hpp"
#include "foundation/user_paths.hpp"
#include "portability/diagnostic_report.hpp"
#include "recording/history_import.hpp"
#include "recording/recording_store.hpp"
#include "recording/session_history.hpp"
#include "recording/session_history_reader.hpp"
#include "recording/time_providers.hpp"
#include "runtime/gnome_extension_setup.hpp"
#include "runtime/setup_check.hpp"
#include "settings/preferences_store.hpp"
#include "settings/session_template_store.hpp"

namespace lumenote::ui {

// Every reference must outlive the page.
struct SettingsDependencies {
    settings::PreferencesStore& preferences;
    recording::RecordingStore& store;
    recording::SessionHistoryReader& historyReader;
    recording::HistoryImporter& importer;
    recording::SessionHistory& history;
    settings::SessionTemplateStore& templates;
    // The rules the recorder classifies with, so that a change applies at once.
    classification::ClassificationRules& rules;
    recording::WallClock& wallClock;
    // The local time backups are named and previews are shown in.
    LocalCalendar calendar;
    UserPaths paths;
    // Written into every backup; shown with the build number in About, the
    // diagnostic report and the setup test's report.
    std::string appVersion;
    std::string appBuild;
    // Why the global shortcut is not registered, when it is not ("" when
    // it is, or when it is off). Empty: the preferences' hotkey status
    // message, which the shortcut coordinator keeps.
    std::function<std::string()> shortcutUnavailableSentence;
    // What this desktop lets Lumenote observe. Empty: the checks of
    // `lumenote-cli check`, run on this machine.
    std::function<runtime::SetupCheck()> checkDesktop;
    // Installs and enables the GNOME Shell extension. Empty: not offered.
    std::function<runtime::GnomeExtensionSetup()> installGnomeExtension;
    // What the diagnostic report states at this moment. Empty: gathered
    // from the files under `paths`, as `lumenote-cli report` does.
    std::function<portability::DiagnosticReportFacts()> diagnosticFacts;
    // Where native-host manifests are written and which helper they name.
    // Empty: this user's browser folders and the helper of this installation.
    std::optional<bridge::NativeHostConfiguration> nativeHost;
    // Each browser's row, judged with the registration `checker` the page
    // changes manifests with: the running recorder knows the last events.
    // Empty: from the bridge files alone, as `lumenote-cli browser status`
    // does without a recorder.
    std::function<std::vector<bridge::BrowserStatusRow>(
        const bridge::NativeHostRegistrationChecker& checker)>
        browserStatus;
    // The folder of the built extension packages; nullopt when none was found.
    std::optional<std::filesystem::path> extensionPackages;
    // What the setup test judges. Empty: gathered from the files under
    // `paths`, as `lumenote-cli setup-test` does.
    std::function<bridge::SetupTestInput()> setupTestInput;
};

}  // namespace lumenote::ui
