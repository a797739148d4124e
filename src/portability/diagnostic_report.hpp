// The diagnostic report a user may review and attach to a support message by
// hand, and the feedback message that opens in their mail program. Both carry
// versions, counts and switches only: no subject, goal, note, application,
// website, PDF or time of any recorded session. Nothing is sent anywhere.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "bridge/browser_extension_status.hpp"
#include "bridge/setup_test.hpp"
#include "bridge/supported_browser.hpp"
#include "foundation/dates.hpp"
#include "settings/preference_enumerations.hpp"

namespace lumenote::portability {

// The notification state the report shows: "Disabled" when the user turned
// notifications off in Lumenote, otherwise what the desktop says. Linux asks
// no permission, so a running notification server is "Authorised" and none
// is "Unavailable"; the other two come from desktops that do ask.
enum class ReportedNotificationState { disabled, notRequested, denied, authorised, unavailable };

std::string_view displayText(ReportedNotificationState state);

// The switch in Lumenote wins over whatever the desktop says.
ReportedNotificationState reportedNotificationState(bool enabledInLumenote,
                                                    bridge::NotificationAuthorizationState desktop);

// The processor architecture of this build, fixed when it was compiled:
// "Intel (x86_64)", "Arm (aarch64)", and so on.
std::string_view buildArchitectureText();

// Everything the report states, read at the moment it is built. A missing
// version or build prints "Development".
struct DiagnosticReportFacts {
    Date generatedAt;
    std::optional<std::string> appVersion;
    std::optional<std::string> appBuild;
    long long backupFormatVersion = 0;
    long long exportFormatVersion = 0;
    std::string operatingSystem;  // "Debian GNU/Linux 12 (bookworm), kernel 6.1.0-27-amd64"
    std::string architecture;     // buildArchitectureText() in the running build
    settings::TallywiseAppearance appearance = settings::TallywiseAppearance::system;
    // The counts of the store; nullopt when it could not be read, which the
    // report prints as "Unavailable" rather than a count it does not know.
    bool activeSession = false;
    std::optional<std::size_t> sessions;
    std::optional<std::size_t> activitySegments;
    std::optional<std::size_t> applicationRules;
    std::optional<std::size_t> websiteRules;
    bool browserTrackingEnabled = false;
    bool hostnameTrackingEnabled = false;
    bool localPDFDetectionEnabled = false;
    ReportedNotificationState notifications = ReportedNotificationState::unavailable;
    // One entry per supported browser, in the order to print.
    std::vector<std::pair<bridge::SupportedBrowser, bridge::BrowserExtensionConnectionState>>
        browserReadiness;
};

// "Not installed", "Installed", "Connecting", "Connected", "Permission
// required", "Connection problem", "Extension disabled", "Unsupported
// version".
std::string_view browserReadinessText(bridge::BrowserExtensionConnectionState state);

// A browser's readiness: "Not installed" while the browser itself is not
// installed; an installed browser whose extension was never heard from is
// "Installed"; otherwise the extension's connection state.
bridge::BrowserExtensionConnectionState browserReadiness(
    bool browserInstalled, bridge::BrowserExtensionConnectionState extension);

// "- Chromium: Connected": the browser's display name and its readiness.
std::string browserReadinessLine(bridge::SupportedBrowser browser,
                                 bridge::BrowserExtensionConnectionState state);

// The report, one line per item under its section name, each line ending in
// a line feed. The line under the title reads "Generated: " and the moment
// in UTC ("2026-11-25T17:45:12Z"), so that it reads the same in every zone.
//
// The operating-system line is "- Linux: " and the system's name: the line
// states the system the report was made on, in the form "<system>: <version>"
// that platforms share.
std::string buildDiagnosticReport(const DiagnosticReportFacts& facts);

// The message that opens in the user's mail program. The report itself is
// never part of it.
struct FeedbackMessage {
    std::string recipient;
    std::string subject;
    std::string body;

    // "mailto:" with the recipient and the subject and body as query items,
    // percent-encoded as RFC 6068 asks (UTF-8 bytes, line breaks as %0D%0A).
    std::string mailtoLink() const;
};

inline constexpr std::string_view kFeedbackRecipient = "feedback@lumenote.app";

// The body names the version, the build and the architecture, as
// "Lumenote 0.1.0 (build 7, Intel (x86_64))".
FeedbackMessage buildFeedbackMessage(const DiagnosticReportFacts& facts);

}  // namespace lumenote::portability
