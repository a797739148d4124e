#include "bridge/browser_status_report.hpp"

namespace lumenote::bridge {

namespace {

std::string registrationText(const NativeHostSetupSnapshot& snapshot) {
    if (snapshot.isReady()) {
        return "registered";
    }
    if (!snapshot.manifestPresent) {
        return "not registered (run `lumenote-cli browser register`)";
    }
    if (!snapshot.manifestValid) {
        return "the manifest is damaged (run `lumenote-cli browser register`)";
    }
    if (!snapshot.helperPresent || !snapshot.helperExecutable) {
        return "the manifest names a helper that is missing or cannot run (run `lumenote-cli "
               "browser register`)";
    }
    return "the manifest authorises another extension (run `lumenote-cli browser register`)";
}

std::string_view stateText(BrowserExtensionConnectionState state) {
    using State = BrowserExtensionConnectionState;
    switch (state) {
        case State::notInstalled:
            return "not seen yet (to load it: `lumenote-cli extension path`)";
        case State::installed:
            return "installed, not connected (is the browser open?)";
        case State::connecting:
            return "connecting";
        case State::connected:
            return "connected";
        case State::permissionRequired:
            return "needs permission";
        case State::extensionDisabled:
            return "disabled";
        case State::unsupportedVersion:
            return "incompatible version";
        case State::connectionProblem:
            return "stopped answering";
    }
    return "unknown";
}

std::string_view connectionText(BrowserConnectionTestResult result) {
    using Result = BrowserConnectionTestResult;
    switch (result) {
        case Result::successful:
            return "works";
        case Result::browserNotInstalled:
            return "the browser is not installed";
        case Result::nativeHostMissing:
            return "the native host is not registered";
        case Result::bridgeUnavailable:
            return "Lumenote has not prepared its browser bridge yet (it does when it records)";
        case Result::extensionDidNotRespond:
            return "the extension did not respond";
        case Result::versionMismatch:
            return "the extension and Lumenote versions do not match";
        case Result::permissionRequired:
            return "the extension needs permission";
    }
    return "unknown";
}

std::string extensionText(const BrowserExtensionStatus& status) {
    std::string text(stateText(status.state));
    if (status.extensionVersion) {
        text += ", extension " + *status.extensionVersion;
    }
    if (status.protocolVersion) {
        text += ", protocol " + std::to_string(*status.protocolVersion);
    }
    if (status.lastResponseReceived) {
        text += " (" + std::string(displayText(status.compatibility())) + ")";
    }
    return text;
}

}  // namespace

std::vector<BrowserStatusRow> browserStatusRows(const BrowserStatusSources& sources) {
    std::vector<BrowserStatusRow> rows;
    for (const auto& [browser, name] : RawValues<SupportedBrowser>::entries) {
        if (!sources.registration.manifestFolder(browser)) {
            continue;
        }
        BrowserDiagnosticFacts facts;
        facts.browser = browser;
        facts.browserInstalled = browserInstalled(browser, sources.installations);
        facts.browserVersion = installedBrowserVersion(browser, sources.installations);
        facts.registration = sources.registration.check(browser);
        facts.extension = sources.extensions.status(browser);
        facts.bridgeState = sources.bridgeState;
        facts.recorderProcessIdentifier = sources.recorderProcessIdentifier;
        facts.sessionRunning = sources.sessionRunning;
        facts.trackingPaused = sources.trackingPaused;
        facts.frontmostBundleIdentifier = sources.frontmostBundleIdentifier;
        facts.filenameLabelsEnabled = sources.filenameLabelsEnabled;
        if (sources.liveDiagnostic) {
            facts.liveDiagnostic = sources.liveDiagnostic(browser);
        }
        facts.now = sources.now;
        rows.push_back({diagnoseBrowser(facts), facts.registration, facts.extension});
    }
    return rows;
}

std::string browserStatusText(const BrowserStatusRow& row, const LocalCalendar& calendar) {
    const BrowserDiagnosticStatus& status = row.diagnosis;
    std::string text = std::string(displayName(status.browser)) + " (" +
                       std::string(bundleIdentifier(status.browser)) +
                       "): " + (status.browserInstalled ? "installed" : "not installed");
    if (status.browserInstalled && status.browserVersion) {
        text += ", version " + *status.browserVersion;
    }
    text += "\n";
    text += "  Native host:  " + registrationText(row.registration) + "\n";
    text += "  Extension:    " + extensionText(row.extension) + "\n";
    if (row.extension.lastResponseReceived) {
        text += "  Last heard:   " + calendar.formatDateTime(*row.extension.lastResponseReceived) +
                "\n";
    }
    if (status.lastEvent) {
        text += "  Last event:   " + calendar.formatDateTime(*status.lastEvent) + " (" +
                std::string(displayText(status.lastResource)) + ")\n";
    }
    text += "  Connection:   " +
            std::string(connectionText(testConnection(status, row.extension.state))) + "\n";
    if (status.issue) {
        text += "  Issue:        " + std::string(displayText(*status.issue)) + "\n";
    }
    return text;
}

}  // namespace lumenote::bridge
