// BridgeTrackingCoordinator: the browser tracking coordinator over the real
// bridge directory. It receives the browser events the host drops into the
// inbox, keeps the last one per browser and per tab, resolves the frontmost
// browser into a website, a local PDF or a fallback on every sample, gives
// each browser tab a tab session identifier for the running session,
// publishes the recorder's state and preferences for the host, and queues
// commands for the extension. Lives on the recorder's one thread.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>

#include "bridge/browser_activity_resolution.hpp"
#include "bridge/browser_bridge_store.hpp"
#include "bridge/browser_diagnostic_types.hpp"
#include "bridge/browser_event_receiver.hpp"
#include "bridge/browser_extension_status.hpp"
#include "recording/platform_services.hpp"
#include "recording/time_providers.hpp"

namespace lumenote::bridge {

// "state.json" is rewritten at least this often, so that the host can tell
// a live recorder from one that stopped without cleaning up.
inline constexpr double kBridgeStatePublishInterval = 15.0;

class BridgeTrackingCoordinator final : public recording::BrowserTrackingCoordinator {
  public:
    BridgeTrackingCoordinator(BrowserBridgeStore& store, recording::WallClock& clock,
                              std::int32_t processIdentifier, BrowserEventValidator validator = {});

    // Prepares the bridge directory, drops commands an earlier run left
    // unsent (they were meant for pages long gone) and publishes the state
    // and the preferences. tokenUnavailable when the directory or its token
    // cannot be made: browsers are then recorded as plain applications.
    Result<void, BrowserBridgeStoreError> start();
    bool ready() const { return ready_; }
    // The running session and the supported browser in front, as told.
    const std::optional<Uuid>& runningSession() const { return session_; }
    const std::optional<std::string>& frontmostBrowser() const { return frontmostBrowser_; }
    // The folder the host drops events into, for a front end to watch.
    std::filesystem::path inboxFolder() const { return store_.inboxFolder(); }

    // ---- recording::BrowserTrackingCoordinator ----
    std::optional<recording::BrowserResolution> resolution(
        const std::string& frontmostBundleIdentifier, Date now, double idleSeconds) override;
    void setRunningSession(const std::optional<Uuid>& sessionID) override;
    void setFrontmostBundleIdentifier(const std::string& bundleIdentifier) override;

    // Once a second from the recorder's loop, session or not: drains one
    // batch of the inbox and republishes the state when it is due. Returns
    // true when inbox files are still waiting, so that the loop drains again
    // soon instead of waiting a whole second.
    bool tick();
    // Applies changed settings: a change of pause republishes the state, of
    // filename labels the preferences (and tells every browser seen).
    void applySettings(const BrowserTrackingSettings& settings);
    const BrowserTrackingSettings& settings() const { return settings_; }

    // Asks the extension in `browserBundleIdentifier` to show a local PDF.
    Result<std::string, BrowserBridgeWriteError> queueShowLocalPDF(
        const std::string& browserBundleIdentifier, const Uuid& pdfIdentifier);

    // What the diagnostics read.
    const std::deque<BrowserEventLogEntry>& eventLog() const { return receiver_.log(); }
    std::optional<BrowserLiveDiagnostic> liveDiagnostic(SupportedBrowser browser) const;
    std::optional<BrowserLocalFilePermission> localFilePermission(SupportedBrowser browser) const;
    std::optional<Date> lastEventReceived(SupportedBrowser browser) const;
    // The supported browser in front, when a session runs with browser
    // tracking on, the browser has been in front for at least
    // kBrowserSilenceDelaySeconds and no fresh event came from it: its
    // websites are not being recorded.
    std::optional<SupportedBrowser> silentFrontmostBrowser(Date now) const;
    // Every browser's extension status as of now (reads the readiness files).
    const BrowserExtensionStatusService& extensionStatus();
    // The last page event of one tab of the running session; nullopt once
    // the tab closed.
    std::optional<ReceivedBrowserEvent> lastTabEvent(const std::string& browserBundleIdentifier,
                                                     const std::string& tabIdentifier) const;
    // The last failure to write a bridge document, as a sentence; cleared by
    // the next successful write.
    const std::optional<std::string>& publishProblem() const { return publishProblem_; }

  private:
    struct BrowserState {
        std::optional<ReceivedBrowserEvent> last;
        std::optional<BrowserLocalFilePermission> permission;
        std::optional<BrowserLiveDiagnostic> live;
        std::optional<Date> lastAcceptedAt;
    };

    bool drain(Date now);
    void apply(const ReceivedBrowserEvent& received, Date now);
    void noteRejection(const BrowserEventLogEntry& entry, Date now);
    std::optional<Uuid> tabSession(const ReceivedBrowserEvent& received);
    void publishState(Date now);
    void publishPreferences();
    void queueFilenameLabelsCommands(Date now);
    template <typename Value>
    void noteWrite(const Result<Value, BrowserBridgeWriteError>& written);

    BrowserBridgeStore& store_;
    recording::WallClock& clock_;
    std::int32_t processIdentifier_;
    BrowserEventReceiver receiver_;
    BrowserExtensionStatusService extensionStatus_;
    BrowserTrackingSettings settings_;
    bool ready_ = false;
    std::optional<Uuid> session_;
    std::optional<std::string> frontmostBrowser_;
    Date frontmostSince_;
    std::optional<Date> lastPublished_;
    std::map<std::string, BrowserState> browsers_;
    // Per browser and extension tab identifier, for this session: the tab
    // session identifier and the tab's last page event (gone once it closed).
    struct TabState {
        Uuid tabSession;
        std::optional<ReceivedBrowserEvent> last;
    };
    std::map<std::pair<std::string, std::string>, TabState> tabs_;
    std::optional<std::string> publishProblem_;
};

}  // namespace lumenote::bridge
