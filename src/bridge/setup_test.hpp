// The setup test: a fixed list of checks over the whole installation, each
// with a status and one sentence, one recommended action and a plain-text
// report the user can copy. Pure: the caller gathers SetupTestInput.
//
// Choices made here:
// - Titles of the checks that have none given: "Google Chrome" for
//   chromeApplication, "Native host" for nativeHost, "Notifications" for
//   notifications.
// - Google Chrome not installed is `unavailable` (neither turned off nor
//   failed); with browser tracking turned off the three browser checks are
//   `notEnabled` whatever else holds, so that they never block readiness.
// - chromeExtension: tracking off, then Chrome missing, then the state.
// - nativeMessaging: tracking off, Chrome missing, native host not ready,
//   versions incompatible, extension not installed ("not currently in use",
//   `notEnabled`), connected with a readiness (ready), else no compatible
//   heartbeat.
// - Notifications: `notDetermined` and `denied` need attention (the user
//   turned the preference on), `unavailable` is `unavailable`.
// - The recommended action is the first of: repairNativeHost (native host
//   or native messaging blocked by it), openChromeExtensions (extension or
//   native messaging), requestNotifications (notDetermined),
//   openNotificationSettings (denied).
// - Report values: versions, identifiers and the architecture use the
//   identifier set; the system's name, which holds words, the wider set.
//   Dates are the report's own ISO-8601 text.
//   Other characters are dropped without a substitute; a value left empty
//   prints as "unknown".
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "bridge/browser_diagnostic_types.hpp"
#include "bridge/browser_extension_status.hpp"
#include "bridge/native_host_registration.hpp"
#include "foundation/dates.hpp"

namespace lumenote::bridge {

enum class SetupTestKind {
    applicationTracking,
    activitySampling,
    sessionPersistence,
    chromeApplication,
    nativeHost,
    chromeExtension,
    nativeMessaging,
    notifications,
    overallReadiness,
};

enum class SetupTestStatus { ready, needsAttention, notEnabled, unavailable };

enum class SetupTestAction {
    repairNativeHost,
    openChromeExtensions,
    requestNotifications,
    openNotificationSettings,
};

enum class NotificationAuthorizationState { notDetermined, authorized, denied, unavailable };

struct SetupTestInput {
    bool applicationObservationAvailable = false;
    bool samplingPipelinePassed = false;
    bool persistenceReadable = false;
    bool chromeInstalled = false;
    std::optional<std::string> chromeVersion;
    bool browserTrackingEnabled = true;
    NativeHostSetupSnapshot nativeHost;
    BrowserExtensionConnectionState extensionState = BrowserExtensionConnectionState::notInstalled;
    std::optional<std::string> extensionVersion;
    std::optional<std::string> nativeHostVersion;
    std::optional<long long> protocolVersion;
    std::optional<Date> lastReadinessAt;
    bool notificationPreferenceEnabled = false;
    NotificationAuthorizationState notificationState = NotificationAuthorizationState::unavailable;
    std::vector<BrowserDiagnosticIssue> recentIssues;
    std::string appVersion;
    std::string appBuild;
    std::string macOSVersion;  // the operating system's name and version
    std::string architecture;
    std::string configuredExtensionIdentifier;
};

struct SetupTestItem {
    SetupTestKind kind = SetupTestKind::applicationTracking;
    std::string_view title;
    SetupTestStatus status = SetupTestStatus::ready;
    std::string_view sentence;
};

struct SetupTestReport {
    Date generatedAt;
    std::vector<SetupTestItem> items;  // one per check, in SetupTestKind order
    std::optional<SetupTestAction> recommendedAction;
    std::string diagnosticText;
};

SetupTestReport runSetupTest(const SetupTestInput& input, Date now);

std::string_view title(SetupTestKind kind);
// "Ready", "Needs attention", "Not enabled", "Unavailable".
std::string_view displayText(SetupTestStatus status);
// What the user does next, as a short instruction for this system.
std::string_view displayText(SetupTestAction action);

// The two character sets of report values.
inline constexpr std::string_view kReportIdentifierCharacters =
    "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789._+-";
inline constexpr std::string_view kReportWordCharacters =
    "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789 ._()+-";
// `value` reduced to `allowed`; "unknown" when nothing is left.
std::string reportValue(std::string_view value, std::string_view allowed);

// The messages around the setup test.
inline constexpr std::string_view kReportCopiedMessage = "Diagnostic report copied";
inline constexpr std::string_view kReportCopyFailedMessage = "Could not copy the diagnostic report";
inline constexpr std::string_view kSetupTestDidNotFinishMessage = "The setup test did not finish.";
inline constexpr std::string_view kSummaryCopiedMessage = "Diagnostic summary copied";
inline constexpr std::string_view kSummaryCopyFailedMessage = "Could not copy diagnostic summary";

}  // namespace lumenote::bridge

namespace lumenote {

template <>
struct RawValues<bridge::SetupTestKind> {
    using E = bridge::SetupTestKind;
    static constexpr std::array<std::pair<E, std::string_view>, 9> entries{{
        {E::applicationTracking, "applicationTracking"},
        {E::activitySampling, "activitySampling"},
        {E::sessionPersistence, "sessionPersistence"},
        {E::chromeApplication, "chromeApplication"},
        {E::nativeHost, "nativeHost"},
        {E::chromeExtension, "chromeExtension"},
        {E::nativeMessaging, "nativeMessaging"},
        {E::notifications, "notifications"},
        {E::overallReadiness, "overallReadiness"},
    }};
};

template <>
struct RawValues<bridge::SetupTestStatus> {
    using E = bridge::SetupTestStatus;
    static constexpr std::array<std::pair<E, std::string_view>, 4> entries{{
        {E::ready, "ready"},
        {E::needsAttention, "needsAttention"},
        {E::notEnabled, "notEnabled"},
        {E::unavailable, "unavailable"},
    }};
};

template <>
struct RawValues<bridge::SetupTestAction> {
    using E = bridge::SetupTestAction;
    static constexpr std::array<std::pair<E, std::string_view>, 4> entries{{
        {E::repairNativeHost, "repairNativeHost"},
        {E::openChromeExtensions, "openChromeExtensions"},
        {E::requestNotifications, "requestNotifications"},
        {E::openNotificationSettings, "openNotificationSettings"},
    }};
};

template <>
struct RawValues<bridge::NotificationAuthorizationState> {
    using E = bridge::NotificationAuthorizationState;
    static constexpr std::array<std::pair<E, std::string_view>, 4> entries{{
        {E::notDetermined, "notDetermined"},
        {E::authorized, "authorized"},
        {E::denied, "denied"},
        {E::unavailable, "unavailable"},
    }};
};

}  // namespace lumenote
