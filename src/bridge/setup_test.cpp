#include "bridge/setup_test.hpp"

#include <algorithm>

namespace lumenote::bridge {

namespace {

using Kind = SetupTestKind;
using Status = SetupTestStatus;
using ExtensionState = BrowserExtensionConnectionState;

struct Outcome {
    Status status;
    std::string_view sentence;
};

Outcome applicationTracking(const SetupTestInput& input) {
    if (input.applicationObservationAvailable) {
        return {Status::ready,
                "Lumenote can observe the frontmost Mac application. No extra macOS permission is "
                "required."};
    }
    return {Status::needsAttention, "Lumenote could not observe a frontmost Mac application."};
}

Outcome activitySampling(const SetupTestInput& input) {
    if (input.samplingPipelinePassed) {
        return {Status::ready,
                "The in-memory sampling pipeline accepted and finalised a privacy-safe sample."};
    }
    return {Status::needsAttention, "The sampling pipeline did not complete its in-memory check."};
}

Outcome sessionPersistence(const SetupTestInput& input) {
    if (input.persistenceReadable) {
        return {Status::ready,
                "The local Lumenote store is readable. No records were created or changed."};
    }
    return {Status::needsAttention, "Lumenote could not read its local session store."};
}

Outcome chromeApplication(const SetupTestInput& input) {
    if (input.chromeInstalled) {
        return {Status::ready, "Google Chrome is installed"};
    }
    return {Status::unavailable,
            "Google Chrome is not installed. Browser tracking remains optional."};
}

Outcome nativeHost(const SetupTestInput& input) {
    const NativeHostSetupSnapshot& host = input.nativeHost;
    if (!input.browserTrackingEnabled) {
        return {Status::notEnabled,
                "Browser tracking is turned off, so native-host setup is optional."};
    }
    if (!host.manifestPresent || !host.manifestValid) {
        return {Status::needsAttention, "The Lumenote native-host manifest is missing."};
    }
    if (!host.helperPresent || !host.helperExecutable) {
        return {Status::needsAttention, "The Lumenote native helper is missing or cannot run."};
    }
    if (!host.exactConfiguredOriginAuthorised) {
        return {Status::needsAttention,
                "The native-host registration does not authorise the expected extension exactly."};
    }
    return {Status::ready, "The native host and executable helper are registered securely."};
}

Outcome chromeExtension(const SetupTestInput& input) {
    if (!input.browserTrackingEnabled) {
        return {Status::notEnabled,
                "Browser tracking is turned off, so the Chrome extension is optional."};
    }
    if (!input.chromeInstalled) {
        return {Status::unavailable, "The Lumenote extension cannot run without Google Chrome."};
    }
    switch (input.extensionState) {
        case ExtensionState::notInstalled:
            return {Status::needsAttention, "The Lumenote Chrome extension was not detected."};
        case ExtensionState::installed:
            return {Status::needsAttention,
                    "The extension is installed but is not connected to Lumenote."};
        case ExtensionState::connecting:
        case ExtensionState::connectionProblem:
            return {Status::needsAttention,
                    "The extension is present, but a connection has not been confirmed yet."};
        case ExtensionState::extensionDisabled:
            return {Status::needsAttention, "The Lumenote Chrome extension is disabled."};
        case ExtensionState::permissionRequired:
            return {Status::needsAttention,
                    "The Chrome extension needs permission before it can connect."};
        case ExtensionState::unsupportedVersion:
            return {Status::needsAttention,
                    "The Chrome extension and Lumenote versions are incompatible."};
        case ExtensionState::connected:
            return {Status::ready,
                    "The Lumenote extension returned an authenticated readiness heartbeat."};
    }
    return {Status::needsAttention, "The Lumenote Chrome extension was not detected."};
}

Outcome nativeMessaging(const SetupTestInput& input) {
    if (!input.browserTrackingEnabled) {
        return {Status::notEnabled,
                "Browser tracking is turned off, so native messaging is optional."};
    }
    if (!input.chromeInstalled) {
        return {Status::unavailable,
                "Native messaging is not used until Google Chrome is installed."};
    }
    if (!input.nativeHost.isReady()) {
        return {Status::needsAttention,
                "Native messaging cannot start until the native host is repaired."};
    }
    const auto compatibility = versionCompatibility(input.extensionVersion, input.nativeHostVersion,
                                                    input.protocolVersion);
    if (input.extensionState == ExtensionState::unsupportedVersion ||
        compatibility == BrowserVersionCompatibility::extensionUpdateRequired ||
        compatibility == BrowserVersionCompatibility::appUpdateRequired) {
        return {Status::needsAttention, "The extension and Lumenote versions are incompatible."};
    }
    if (input.extensionState == ExtensionState::notInstalled) {
        return {Status::notEnabled, "Native messaging is optional and is not currently in use."};
    }
    if (input.extensionState == ExtensionState::connected && input.lastReadinessAt &&
        compatibility == BrowserVersionCompatibility::compatible) {
        return {Status::ready,
                "Session-independent native messaging is available. No activity data was sent by "
                "this test."};
    }
    return {Status::needsAttention, "Lumenote has not received a compatible readiness heartbeat."};
}

Outcome notifications(const SetupTestInput& input) {
    if (!input.notificationPreferenceEnabled) {
        return {Status::notEnabled, "Session-finish notifications are optional and turned off."};
    }
    switch (input.notificationState) {
        case NotificationAuthorizationState::unavailable:
            return {Status::unavailable,
                    "The current notification permission state is unavailable."};
        case NotificationAuthorizationState::denied:
            return {Status::needsAttention, "Notifications are denied in macOS System Settings."};
        case NotificationAuthorizationState::notDetermined:
            return {Status::needsAttention, "Notification permission has not been requested."};
        case NotificationAuthorizationState::authorized:
            return {Status::ready, "macOS allows Lumenote session-finish notifications."};
    }
    return {Status::unavailable, "The current notification permission state is unavailable."};
}

std::optional<SetupTestAction> recommendedAction(const std::vector<SetupTestItem>& items,
                                                 const SetupTestInput& input) {
    const auto needs = [&](Kind kind) {
        return std::any_of(items.begin(), items.end(), [&](const SetupTestItem& item) {
            return item.kind == kind && item.status == Status::needsAttention;
        });
    };
    if (needs(Kind::nativeHost)) {
        return SetupTestAction::repairNativeHost;
    }
    if (needs(Kind::chromeExtension) || needs(Kind::nativeMessaging)) {
        return SetupTestAction::openChromeExtensions;
    }
    if (needs(Kind::notifications)) {
        return input.notificationState == NotificationAuthorizationState::denied
                   ? SetupTestAction::openNotificationSettings
                   : SetupTestAction::requestNotifications;
    }
    return std::nullopt;
}

std::string yesNo(bool value) {
    return value ? "yes" : "no";
}

std::string identifier(const std::optional<std::string>& value) {
    return value ? reportValue(*value, kReportIdentifierCharacters) : "none";
}

std::string reportText(const SetupTestInput& input, const SetupTestReport& report) {
    const auto id = [](std::string_view value) {
        return reportValue(value, kReportIdentifierCharacters);
    };
    std::string text = "Lumenote Setup Test Diagnostic Report\n";
    text += "- Generated: " + formatIso8601(report.generatedAt) + "\n";
    text += "- Lumenote version: " + id(input.appVersion) + " (build " + id(input.appBuild) + ")\n";
    text += "- System: " + reportValue(input.macOSVersion, kReportWordCharacters) + "\n";
    text += "\nPermission states\n";
    text += "- Architecture: " + id(input.architecture) + "\n";
    text += "- Frontmost application observation: ";
    text += input.applicationObservationAvailable ? "Available; no additional permission required"
                                                  : "Blocked in System Settings";
    text += "\n- Notifications: ";
    text += rawValue(input.notificationState);
    text += "\n\nChrome connection\n";
    text += "- Chrome application: ";
    text += input.chromeInstalled ? "installed" : "not installed";
    text += "\n- Chrome version: " + identifier(input.chromeVersion) + "\n";
    text += "- Extension state: ";
    text += rawValue(input.extensionState);
    text += "\n- Extension version: " + identifier(input.extensionVersion) + "\n";
    text += "- Native host version: " + identifier(input.nativeHostVersion) + "\n";
    text += "- Native-messaging protocol: " +
            (input.protocolVersion ? std::to_string(*input.protocolVersion) : "none") + "\n";
    text +=
        "- Authenticated extension ID: " +
        (input.extensionState == ExtensionState::connected ? id(input.configuredExtensionIdentifier)
                                                           : std::string("none")) +
        "\n";
    text += "- Recent readiness heartbeat: " +
            (input.lastReadinessAt ? formatIso8601(*input.lastReadinessAt)
                                   : std::string("No authenticated extension readiness")) +
            "\n";
    text += "- Manifest present: " + yesNo(input.nativeHost.manifestPresent) + "\n";
    text += "- Manifest valid: " + yesNo(input.nativeHost.manifestValid) + "\n";
    text += "- Helper present: " + yesNo(input.nativeHost.helperPresent) + "\n";
    text += "- Helper executable: " + yesNo(input.nativeHost.helperExecutable) + "\n";
    text += "- Exact configured origin authorised: " +
            yesNo(input.nativeHost.exactConfiguredOriginAuthorised) + "\n";
    text += "\nChecks\n";
    for (const SetupTestItem& item : report.items) {
        text += "- ";
        text += item.title;
        text += ": ";
        text += displayText(item.status);
        text += ". ";
        text += item.sentence;
        text += "\n";
    }
    if (!input.recentIssues.empty()) {
        text += "\nRecent browser issues\n";
        for (const BrowserDiagnosticIssue issue : input.recentIssues) {
            text += "- ";
            text += rawValue(issue);
            text += "\n";
        }
    }
    if (report.recommendedAction) {
        text += "\nRecommended action: ";
        text += displayText(*report.recommendedAction);
        text += "\n";
    }
    return text;
}

}  // namespace

std::string_view title(SetupTestKind kind) {
    switch (kind) {
        case Kind::applicationTracking:
            return "Mac application tracking";
        case Kind::activitySampling:
            return "Activity sampling";
        case Kind::sessionPersistence:
            return "Session data persistence";
        case Kind::chromeApplication:
            return "Google Chrome";
        case Kind::nativeHost:
            return "Native host";
        case Kind::chromeExtension:
            return "Chrome extension";
        case Kind::nativeMessaging:
            return "Native messaging";
        case Kind::notifications:
            return "Notifications";
        case Kind::overallReadiness:
            return "Overall readiness";
    }
    return "Overall readiness";
}

std::string_view displayText(SetupTestStatus status) {
    switch (status) {
        case Status::ready:
            return "Ready";
        case Status::needsAttention:
            return "Needs attention";
        case Status::notEnabled:
            return "Not enabled";
        case Status::unavailable:
            return "Unavailable";
    }
    return "Unavailable";
}

std::string_view displayText(SetupTestAction action) {
    switch (action) {
        case SetupTestAction::repairNativeHost:
            return "Repair the native host registration (lumenote-cli browser register).";
        case SetupTestAction::openChromeExtensions:
            return "Open the browser's extensions page and load or enable the Lumenote extension "
                   "(lumenote-cli extension path).";
        case SetupTestAction::requestNotifications:
            return "Allow notifications from Lumenote when the desktop asks.";
        case SetupTestAction::openNotificationSettings:
            return "Turn on notifications for Lumenote in the desktop's notification settings.";
    }
    return "";
}

std::string reportValue(std::string_view value, std::string_view allowed) {
    std::string kept;
    for (const char c : value) {
        if (allowed.find(c) != std::string_view::npos) {
            kept += c;
        }
    }
    return kept.empty() ? "unknown" : kept;
}

SetupTestReport runSetupTest(const SetupTestInput& input, Date now) {
    SetupTestReport report;
    report.generatedAt = now;
    const std::pair<Kind, Outcome> outcomes[] = {
        {Kind::applicationTracking, applicationTracking(input)},
        {Kind::activitySampling, activitySampling(input)},
        {Kind::sessionPersistence, sessionPersistence(input)},
        {Kind::chromeApplication, chromeApplication(input)},
        {Kind::nativeHost, nativeHost(input)},
        {Kind::chromeExtension, chromeExtension(input)},
        {Kind::nativeMessaging, nativeMessaging(input)},
        {Kind::notifications, notifications(input)},
    };
    bool attention = false;
    for (const auto& [kind, outcome] : outcomes) {
        report.items.push_back({kind, title(kind), outcome.status, outcome.sentence});
        attention = attention || outcome.status == Status::needsAttention;
    }
    report.items.push_back(
        {Kind::overallReadiness, title(Kind::overallReadiness),
         attention ? Status::needsAttention : Status::ready,
         attention ? "An enabled or required setup check needs attention."
                   : "Lumenote is ready for a study session. Optional features may remain off."});
    report.recommendedAction = recommendedAction(report.items, input);
    report.diagnosticText = reportText(input, report);
    return report;
}

}  // namespace lumenote::bridge
