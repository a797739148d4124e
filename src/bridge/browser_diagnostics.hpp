// The browser diagnostics: per supported browser, the one most important
// reason its activity is not being tracked, and the outcome of testing its
// connection. Pure functions over the facts the caller gathered.
//
// Precedence, first that applies (setup problems first, since nothing else
// can work until the user fixes them; then what the recorder is doing; then
// what the last event showed):
//   1. nativeHostNotRegistered   the manifest is missing, invalid, names
//                                another extension or a helper that cannot run
//   2. extensionVersionMismatch  the extension speaks another protocol
//   3. noActiveSession
//   4. trackingPaused
//   5. bridgeMissing             no "state.json" (the recorder never prepared it)
//   6. appPIDMismatch            "state.json" names another process
//   7. bridgeStale               "state.json" older than kBridgeStateFreshSeconds
//   8. browserNotFrontmost
//   9. extensionDisconnected     the extension is not connected
//  10. the last event's own issue (session mismatch, out of order, invalid,
//      unsupported page, private browsing, file access, PDF detection off, …)
//  11. eventStale                the last event is older than the freshness
//                                window of the tracking coordinator
// and no issue when none applies.
#pragma once

#include <optional>
#include <string>

#include "bridge/bridge_documents.hpp"
#include "bridge/browser_diagnostic_types.hpp"
#include "bridge/browser_extension_status.hpp"
#include "bridge/native_host_registration.hpp"

namespace lumenote::bridge {

// The recorder republishes "state.json" every 15 seconds: three missed
// publications make it stale.
inline constexpr double kBridgeStateFreshSeconds = 45.0;

struct BrowserDiagnosticStatus {
    SupportedBrowser browser = SupportedBrowser::chromium;
    bool browserInstalled = false;
    std::optional<std::string> browserVersion;
    bool extensionConnected = false;
    bool nativeHostRegistered = false;
    bool bridgeAvailable = false;
    bool bridgeFresh = false;
    bool sessionRunning = false;
    bool trackingPaused = false;
    std::optional<Date> lastEvent;
    BrowserDiagnosticResource lastResource = BrowserDiagnosticResource::unavailable;
    std::optional<BrowserLocalFilePermission> localPDFPermission;
    bool filenameLabelsEnabled = false;
    std::optional<BrowserDiagnosticIssue> issue;
    BrowserVersionCompatibility compatibility = BrowserVersionCompatibility::unknown;
    std::optional<BrowserLiveDiagnostic> liveDiagnostic;
};

// What the diagnostics of one browser are computed from.
struct BrowserDiagnosticFacts {
    SupportedBrowser browser = SupportedBrowser::chromium;
    bool browserInstalled = false;
    std::optional<std::string> browserVersion;
    NativeHostSetupSnapshot registration;
    BrowserExtensionStatus extension;
    std::optional<BrowserBridgeState> bridgeState;
    // The running recorder's process, when the caller knows it.
    std::optional<std::int32_t> recorderProcessIdentifier;
    bool sessionRunning = false;
    bool trackingPaused = false;
    std::optional<std::string> frontmostBundleIdentifier;
    std::optional<BrowserLiveDiagnostic> liveDiagnostic;
    bool filenameLabelsEnabled = false;
    Date now;
};

BrowserDiagnosticStatus diagnoseBrowser(const BrowserDiagnosticFacts& facts);

enum class BrowserConnectionTestResult {
    successful,
    browserNotInstalled,
    nativeHostMissing,
    bridgeUnavailable,
    extensionDidNotRespond,
    versionMismatch,
    permissionRequired,
};

// The outcome of testing one browser's connection, first failing step first:
// installed, registered, bridge present, versions, permission, response.
BrowserConnectionTestResult testConnection(const BrowserDiagnosticStatus& status,
                                           BrowserExtensionConnectionState state);

// A one-line summary of one browser's diagnostics, for copying: the browser,
// its extension and registration state and the issue's text.
std::string diagnosticSummary(const BrowserDiagnosticStatus& status);

}  // namespace lumenote::bridge

namespace lumenote {

template <>
struct RawValues<bridge::BrowserConnectionTestResult> {
    using E = bridge::BrowserConnectionTestResult;
    static constexpr std::array<std::pair<E, std::string_view>, 7> entries{{
        {E::successful, "successful"},
        {E::browserNotInstalled, "browserNotInstalled"},
        {E::nativeHostMissing, "nativeHostMissing"},
        {E::bridgeUnavailable, "bridgeUnavailable"},
        {E::extensionDidNotRespond, "extensionDidNotRespond"},
        {E::versionMismatch, "versionMismatch"},
        {E::permissionRequired, "permissionRequired"},
    }};
};

}  // namespace lumenote
