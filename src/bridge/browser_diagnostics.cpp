#include "bridge/browser_diagnostics.hpp"

#include "bridge/browser_activity_resolution.hpp"

namespace lumenote::bridge {

namespace {

using Issue = BrowserDiagnosticIssue;

std::optional<Issue> chooseIssue(const BrowserDiagnosticFacts& facts,
                                 const BrowserDiagnosticStatus& status) {
    const std::string_view bundle = bundleIdentifier(facts.browser);
    if (!status.nativeHostRegistered) {
        return Issue::nativeHostNotRegistered;
    }
    if (facts.extension.state == BrowserExtensionConnectionState::unsupportedVersion) {
        return Issue::extensionVersionMismatch;
    }
    if (!facts.sessionRunning) {
        return Issue::noActiveSession;
    }
    if (facts.trackingPaused) {
        return Issue::trackingPaused;
    }
    if (!status.bridgeAvailable) {
        return Issue::bridgeMissing;
    }
    if (facts.recorderProcessIdentifier &&
        facts.bridgeState->appProcessIdentifier != *facts.recorderProcessIdentifier) {
        return Issue::appPIDMismatch;
    }
    if (!status.bridgeFresh) {
        return Issue::bridgeStale;
    }
    if (facts.frontmostBundleIdentifier != bundle) {
        return Issue::browserNotFrontmost;
    }
    if (!status.extensionConnected) {
        return Issue::extensionDisconnected;
    }
    if (facts.liveDiagnostic && facts.liveDiagnostic->issue) {
        return facts.liveDiagnostic->issue;
    }
    if (!status.lastEvent || !isFreshBrowserEvent(*status.lastEvent, facts.now)) {
        return Issue::eventStale;
    }
    return std::nullopt;
}

}  // namespace

BrowserDiagnosticStatus diagnoseBrowser(const BrowserDiagnosticFacts& facts) {
    BrowserDiagnosticStatus status;
    status.browser = facts.browser;
    status.browserInstalled = facts.browserInstalled;
    status.browserVersion = facts.browserVersion;
    status.extensionConnected = facts.extension.state == BrowserExtensionConnectionState::connected;
    status.nativeHostRegistered = facts.registration.isReady();
    status.bridgeAvailable = facts.bridgeState.has_value();
    status.bridgeFresh =
        facts.bridgeState &&
        facts.now.secondsSince(facts.bridgeState->updatedAt) <= kBridgeStateFreshSeconds;
    status.sessionRunning = facts.sessionRunning;
    status.trackingPaused = facts.trackingPaused;
    status.lastEvent = facts.extension.lastEventReceived;
    if (facts.liveDiagnostic) {
        status.lastResource = facts.liveDiagnostic->resource;
    }
    status.localPDFPermission = facts.extension.localPDFPermission;
    status.filenameLabelsEnabled = facts.filenameLabelsEnabled;
    status.compatibility = facts.extension.compatibility();
    status.liveDiagnostic = facts.liveDiagnostic;
    status.issue = chooseIssue(facts, status);
    return status;
}

BrowserConnectionTestResult testConnection(const BrowserDiagnosticStatus& status,
                                           BrowserExtensionConnectionState state) {
    using Result = BrowserConnectionTestResult;
    if (!status.browserInstalled) {
        return Result::browserNotInstalled;
    }
    if (!status.nativeHostRegistered) {
        return Result::nativeHostMissing;
    }
    if (!status.bridgeAvailable) {
        return Result::bridgeUnavailable;
    }
    if (state == BrowserExtensionConnectionState::unsupportedVersion) {
        return Result::versionMismatch;
    }
    if (state == BrowserExtensionConnectionState::permissionRequired) {
        return Result::permissionRequired;
    }
    if (state != BrowserExtensionConnectionState::connected) {
        return Result::extensionDidNotRespond;
    }
    return Result::successful;
}

std::string diagnosticSummary(const BrowserDiagnosticStatus& status) {
    std::string summary(displayName(status.browser));
    summary += status.browserInstalled ? ": installed" : ": not installed";
    summary +=
        status.nativeHostRegistered ? ", native host registered" : ", native host not registered";
    summary += status.extensionConnected ? ", extension connected" : ", extension not connected";
    summary += ", ";
    summary += displayText(status.compatibility);
    if (status.issue) {
        summary += ". ";
        summary += displayText(*status.issue);
    }
    summary += ".";
    return summary;
}

}  // namespace lumenote::bridge
