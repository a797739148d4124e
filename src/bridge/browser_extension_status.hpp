// The extension's connection state per browser, from the host's readiness
// files and the events the recorder accepted.
//
// Freshness: a connected host rewrites its browser's readiness at least
// every 20 seconds (on hello, on heartbeats and with its periodic status),
// and the extension sends a heartbeat every 15 seconds while a session runs.
// So a readiness or an accepted event younger than kExtensionFreshSeconds
// (three beats) means the extension is connected now.
//
// The state, first rule that holds:
//   notInstalled       no readiness and no accepted event, ever
//   unsupportedVersion the readiness's versions are not compatible
//   connected          a fresh readiness saying connected, or a fresh event
//   connecting         a readiness saying connected but not fresh, within
//                      kExtensionConnectingGraceSeconds of the service's
//                      start (a live host refreshes it within one beat)
//   connectionProblem  a readiness saying connected but not fresh after
//                      that: the host stopped without saying goodbye
//   installed          the extension connected before and its host said
//                      goodbye (browser closed, extension disabled or
//                      removed: a browser does not tell these apart)
// `extensionDisabled` and `permissionRequired` are never derived on Linux:
// neither the Chromium family nor Firefox lets a helper see an extension's
// enabled state, and the native-messaging permission is granted at install.
//
// Version compatibility compares protocol numbers only: the extension
// announces the protocol it speaks in its hello and the host passes it on in
// the readiness. An older protocol needs an extension update, a newer one an
// application update; no readiness or no protocol is unknown.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "bridge/browser_activity_event.hpp"
#include "bridge/browser_bridge_store.hpp"
#include "bridge/supported_browser.hpp"
#include "foundation/dates.hpp"

namespace lumenote::bridge {

inline constexpr double kExtensionFreshSeconds = 60.0;
inline constexpr double kExtensionConnectingGraceSeconds = 60.0;

enum class BrowserExtensionConnectionState {
    notInstalled,
    installed,
    connecting,
    connected,
    permissionRequired,
    extensionDisabled,
    unsupportedVersion,
    connectionProblem,
};

enum class BrowserVersionCompatibility {
    compatible,
    extensionUpdateRequired,
    appUpdateRequired,
    unknown
};

// "Compatible", "Extension update required", "App update required",
// "Unknown version".
std::string_view displayText(BrowserVersionCompatibility compatibility);

BrowserVersionCompatibility versionCompatibility(
    const std::optional<std::string>& extensionVersion,
    const std::optional<std::string>& nativeHostVersion, std::optional<long long> protocolVersion);

struct BrowserExtensionStatus {
    SupportedBrowser browser = SupportedBrowser::chromium;
    BrowserExtensionConnectionState state = BrowserExtensionConnectionState::notInstalled;
    std::optional<Date> lastEventReceived;
    std::optional<Date> lastResponseReceived;
    std::optional<BrowserLocalFilePermission> localPDFPermission;
    std::optional<std::string> extensionVersion;
    std::optional<std::string> nativeHostVersion;
    std::optional<long long> protocolVersion;

    BrowserVersionCompatibility compatibility() const {
        return versionCompatibility(extensionVersion, nativeHostVersion, protocolVersion);
    }
    friend bool operator==(const BrowserExtensionStatus&, const BrowserExtensionStatus&) = default;
};

// The status of one browser from what is known of it (rules above).
BrowserExtensionStatus extensionStatus(SupportedBrowser browser,
                                       const std::optional<BrowserBridgeReadiness>& readiness,
                                       std::optional<Date> lastEvent,
                                       std::optional<BrowserLocalFilePermission> permission,
                                       Date now, Date startedAt);

class BrowserExtensionStatusService {
  public:
    // Reads nothing: until the first refresh every browser is notInstalled.
    BrowserExtensionStatusService(const BrowserBridgeStore& store, Date startedAt);

    // The statuses the files alone show at `now`, for a process that was not
    // watching (a command, the setup test): it started long ago as far as the
    // rules go, so an old "connected" readiness is a problem, never
    // `connecting`.
    static BrowserExtensionStatusService readNow(const BrowserBridgeStore& store, Date now);

    // An accepted event from `browser` at `receivedAt`.
    void recordEvent(SupportedBrowser browser, Date receivedAt,
                     std::optional<BrowserLocalFilePermission> permission);
    // Reads every readiness file and recomputes every browser's status.
    void refresh(Date now);

    // One status per supported browser, in the order of SupportedBrowser.
    const std::vector<BrowserExtensionStatus>& statuses() const { return statuses_; }
    const BrowserExtensionStatus& status(SupportedBrowser browser) const;

  private:
    void recompute(const std::map<SupportedBrowser, BrowserBridgeReadiness>& readiness, Date now);

    const BrowserBridgeStore& store_;
    Date startedAt_;
    std::map<SupportedBrowser, Date> lastEvents_;
    std::map<SupportedBrowser, BrowserLocalFilePermission> localPDFPermissions_;
    std::vector<BrowserExtensionStatus> statuses_;
};

}  // namespace lumenote::bridge

namespace lumenote {

template <>
struct RawValues<bridge::BrowserExtensionConnectionState> {
    using E = bridge::BrowserExtensionConnectionState;
    static constexpr std::array<std::pair<E, std::string_view>, 8> entries{{
        {E::notInstalled, "notInstalled"},
        {E::installed, "installed"},
        {E::connecting, "connecting"},
        {E::connected, "connected"},
        {E::permissionRequired, "permissionRequired"},
        {E::extensionDisabled, "extensionDisabled"},
        {E::unsupportedVersion, "unsupportedVersion"},
        {E::connectionProblem, "connectionProblem"},
    }};
};

template <>
struct RawValues<bridge::BrowserVersionCompatibility> {
    using E = bridge::BrowserVersionCompatibility;
    static constexpr std::array<std::pair<E, std::string_view>, 4> entries{{
        {E::compatible, "compatible"},
        {E::extensionUpdateRequired, "extensionUpdateRequired"},
        {E::appUpdateRequired, "appUpdateRequired"},
        {E::unknown, "unknown"},
    }};
};

}  // namespace lumenote
