#include "bridge/bridge_tracking_coordinator.hpp"
#include "bridge/browser_silence.hpp"

#include <gtest/gtest.h>

#include "support/temporary_home.hpp"

namespace lumenote::bridge {
namespace {

using recording::BrowserFallbackReason;
using Kind = recording::BrowserResolution::Kind;
using lumenote::testing::namesIn;

const Date kStart = *parseIso8601("2026-11-25T10:00:00Z");
constexpr const char* kChromium = "org.chromium.Chromium";

class SteppedClock final : public recording::WallClock {
  public:
    Date now() override { return now_; }
    void advance(double seconds) { now_ = now_.addingSeconds(seconds); }

  private:
    Date now_ = kStart;
};

class BridgeTrackingCoordinatorTest : public ::testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(coordinator_.start()); }

    // Writes one event into the inbox as the host does.
    void send(BrowserActivityEvent event, std::optional<Uuid> session = std::nullopt) {
        event.id = Uuid::generate();
        event.browserDisplayName = "Chromium";
        event.timestamp = clock_.now();
        const BrowserBridgeEnvelope envelope{kBridgeDocumentVersion, store_.readToken().value(),
                                             session.value_or(session_), clock_.now(),
                                             encodeBrowserActivityEvent(event)};
        ASSERT_TRUE(store_.writeInboxEnvelope(envelope));
    }
    void sendPage(const std::string& hostname, const std::string& tab) {
        BrowserActivityEvent event;
        event.browserBundleIdentifier = kChromium;
        event.eventType = BrowserActivityEventType::tabActivated;
        event.hostname = hostname;
        event.temporaryTabIdentifier = tab;
        send(event);
    }
    std::optional<recording::BrowserResolution> resolve(const std::string& bundle = kChromium) {
        return coordinator_.resolution(bundle, clock_.now(), 0.0);
    }

    lumenote::testing::TemporaryHome home_;
    SteppedClock clock_;
    BrowserBridgeStore store_{home_.root() / "bridge"};
    BridgeTrackingCoordinator coordinator_{store_, clock_, 4242};
    const Uuid session_ = Uuid::generate();
};

TEST_F(BridgeTrackingCoordinatorTest, StartPublishesStateAndPreferencesAndDropsOldCommands) {
    BrowserBridgeStore fresh(home_.root() / "other");
    ASSERT_TRUE(fresh.prepare());
    BrowserBridgeCommand leftover{Uuid::generate(), BrowserBridgeCommandType::showLocalPDF,
                                  kChromium};
    ASSERT_TRUE(fresh.queueCommand(leftover));
    BridgeTrackingCoordinator coordinator(fresh, clock_, 77);
    ASSERT_TRUE(coordinator.start());
    EXPECT_TRUE(fresh.queuedCommandNames().empty());
    const auto state = fresh.readState();
    ASSERT_TRUE(state);
    EXPECT_EQ(state->appProcessIdentifier, 77);
    EXPECT_FALSE(state->sessionRunning);
    EXPECT_EQ(state->updatedAt, kStart);
    ASSERT_TRUE(fresh.readPreferences());
    EXPECT_TRUE(fresh.readPreferences()->filenameLabelsEnabled);
}

TEST_F(BridgeTrackingCoordinatorTest, StateFollowsSessionFrontmostBrowserAndPause) {
    coordinator_.setRunningSession(session_);
    EXPECT_EQ(store_.readState()->sessionIdentifier, session_);
    EXPECT_TRUE(store_.readState()->sessionRunning);

    clock_.advance(1);
    coordinator_.setFrontmostBundleIdentifier("org.gnome.TextEditor");
    EXPECT_EQ(store_.readState()->updatedAt, kStart);  // not a browser: nothing to tell
    coordinator_.setFrontmostBundleIdentifier(kChromium);
    EXPECT_EQ(store_.readState()->frontmostBrowserBundleIdentifier, kChromium);
    EXPECT_EQ(store_.readState()->updatedAt, kStart.addingSeconds(1));

    BrowserTrackingSettings paused;
    paused.browserTrackingPaused = true;
    coordinator_.applySettings(paused);
    EXPECT_TRUE(store_.readState()->browserTrackingPaused);

    coordinator_.setRunningSession(std::nullopt);
    EXPECT_FALSE(store_.readState()->sessionRunning);
    EXPECT_FALSE(store_.readState()->sessionIdentifier);
}

TEST_F(BridgeTrackingCoordinatorTest, StateIsRewrittenEveryFifteenSeconds) {
    for (int second = 1; second <= 30; ++second) {
        clock_.advance(1);
        coordinator_.tick();
        const double age = clock_.now().secondsSince(store_.readState()->updatedAt);
        EXPECT_LT(age, kBridgeStatePublishInterval) << second;
    }
    EXPECT_EQ(store_.readState()->updatedAt, kStart.addingSeconds(30));
}

TEST_F(BridgeTrackingCoordinatorTest, OnlySupportedTrackedBrowsersAreResolved) {
    coordinator_.setRunningSession(session_);
    sendPage("github.com", "1");
    EXPECT_FALSE(resolve("org.gnome.TextEditor"));
    EXPECT_EQ(resolve()->kind, Kind::website);
    // Events of one browser say nothing about another.
    EXPECT_EQ(resolve("org.mozilla.firefox")->fallbackReason,
              BrowserFallbackReason::awaitingFreshEvent);
    BrowserTrackingSettings off;
    off.browserTrackingEnabled = false;
    coordinator_.applySettings(off);
    EXPECT_FALSE(resolve());
}

TEST_F(BridgeTrackingCoordinatorTest, TabsKeepOneTabSessionPerSession) {
    coordinator_.setRunningSession(session_);
    sendPage("github.com", "1");
    const auto first = resolve()->tabSessionIdentifier;
    sendPage("overleaf.com", "2");
    const auto second = resolve()->tabSessionIdentifier;
    sendPage("github.com", "1");
    ASSERT_TRUE(first && second);
    EXPECT_NE(*first, *second);
    EXPECT_EQ(resolve()->tabSessionIdentifier, first);
    ASSERT_TRUE(coordinator_.lastTabEvent(kChromium, "2"));

    BrowserActivityEvent closed;
    closed.browserBundleIdentifier = kChromium;
    closed.eventType = BrowserActivityEventType::tabClosed;
    closed.temporaryTabIdentifier = "2";
    send(closed);
    EXPECT_EQ(resolve()->fallbackReason, BrowserFallbackReason::awaitingFreshEvent);
    EXPECT_FALSE(coordinator_.lastTabEvent(kChromium, "2"));

    const Uuid next = Uuid::generate();
    coordinator_.setRunningSession(next);
    sendPage("github.com", "1");
    ASSERT_TRUE(store_.writeInboxEnvelope(
        {kBridgeDocumentVersion, store_.readToken().value(), next, clock_.now(), ""}));
    const auto later = resolve();
    EXPECT_EQ(later->fallbackReason, BrowserFallbackReason::awaitingFreshEvent)
        << "the page event was sent for the previous session";
}

TEST_F(BridgeTrackingCoordinatorTest, PauseForgetsThePageUntilTheExtensionReportsAgain) {
    coordinator_.setRunningSession(session_);
    sendPage("github.com", "1");
    EXPECT_EQ(resolve()->kind, Kind::website);
    coordinator_.setRunningSession(std::nullopt);
    coordinator_.setRunningSession(session_);
    EXPECT_EQ(resolve()->fallbackReason, BrowserFallbackReason::awaitingFreshEvent);
    sendPage("github.com", "1");
    EXPECT_EQ(resolve()->kind, Kind::website);
}

TEST_F(BridgeTrackingCoordinatorTest, DiagnosticsKeepTheLastEventPerBrowser) {
    coordinator_.setRunningSession(session_);
    BrowserActivityEvent needsPermission;
    needsPermission.browserBundleIdentifier = kChromium;
    needsPermission.eventType = BrowserActivityEventType::heartbeat;
    needsPermission.hostname = "github.com";
    needsPermission.localFilePermission = BrowserLocalFilePermission::permissionRequired;
    send(needsPermission);
    coordinator_.setFrontmostBundleIdentifier(kChromium);
    resolve();
    auto live = coordinator_.liveDiagnostic(SupportedBrowser::chromium);
    ASSERT_TRUE(live);
    EXPECT_TRUE(live->accepted);
    EXPECT_EQ(live->resource, BrowserDiagnosticResource::website);
    EXPECT_EQ(live->issue, BrowserDiagnosticIssue::fileAccessNotGranted);
    EXPECT_EQ(coordinator_.localFilePermission(SupportedBrowser::chromium),
              BrowserLocalFilePermission::permissionRequired);
    EXPECT_EQ(coordinator_.lastEventReceived(SupportedBrowser::chromium), kStart);

    clock_.advance(5);
    sendPage("github.com", "1");
    clock_.advance(0.001);
    send(needsPermission, Uuid::generate());
    coordinator_.tick();
    live = coordinator_.liveDiagnostic(SupportedBrowser::chromium);
    EXPECT_FALSE(live->accepted);
    EXPECT_FALSE(live->sessionMatched);
    EXPECT_EQ(live->issue, BrowserDiagnosticIssue::sessionMismatch);
    EXPECT_EQ(coordinator_.lastEventReceived(SupportedBrowser::chromium), kStart.addingSeconds(5));
    EXPECT_EQ(resolve()->hostname, "github.com");
    EXPECT_EQ(coordinator_.eventLog().back().reason,
              "The browser event belongs to another session");
}

TEST_F(BridgeTrackingCoordinatorTest, AcceptedEventsShowTheExtensionConnectedUntilTheyGrowOld) {
    EXPECT_EQ(coordinator_.extensionStatus().status(SupportedBrowser::chromium).state,
              BrowserExtensionConnectionState::notInstalled);
    coordinator_.setRunningSession(session_);
    sendPage("github.com", "1");
    coordinator_.tick();
    const auto& status = coordinator_.extensionStatus().status(SupportedBrowser::chromium);
    EXPECT_EQ(status.state, BrowserExtensionConnectionState::connected);
    EXPECT_EQ(status.lastEventReceived, kStart);
    clock_.advance(kExtensionFreshSeconds + 1);
    EXPECT_EQ(coordinator_.extensionStatus().status(SupportedBrowser::chromium).state,
              BrowserExtensionConnectionState::installed)
        << "without a readiness file, an extension that fell silent is only known as installed";
}

TEST_F(BridgeTrackingCoordinatorTest, ABrowserInFrontWithoutFreshEventsIsReportedSilent) {
    coordinator_.setRunningSession(session_);
    coordinator_.setFrontmostBundleIdentifier(kChromium);
    clock_.advance(kBrowserSilenceDelaySeconds - 0.1);
    EXPECT_EQ(coordinator_.silentFrontmostBrowser(clock_.now()), std::nullopt)
        << "a working extension reports within a second of a switch";
    clock_.advance(0.1);
    EXPECT_EQ(coordinator_.silentFrontmostBrowser(clock_.now()), SupportedBrowser::chromium);

    sendPage("github.com", "1");
    coordinator_.tick();
    EXPECT_EQ(coordinator_.silentFrontmostBrowser(clock_.now()), std::nullopt);
    clock_.advance(kBrowserEventFreshSeconds + 1);
    EXPECT_EQ(coordinator_.silentFrontmostBrowser(clock_.now()), SupportedBrowser::chromium);

    coordinator_.applySettings({.browserTrackingPaused = true});
    EXPECT_EQ(coordinator_.silentFrontmostBrowser(clock_.now()), std::nullopt);
    coordinator_.applySettings({});
    coordinator_.setFrontmostBundleIdentifier("org.gnome.TextEditor");
    EXPECT_EQ(coordinator_.silentFrontmostBrowser(clock_.now()), std::nullopt);
    coordinator_.setFrontmostBundleIdentifier(kChromium);
    EXPECT_EQ(coordinator_.silentFrontmostBrowser(clock_.now()), std::nullopt)
        << "the delay starts again with each switch";
    coordinator_.setRunningSession(std::nullopt);
    clock_.advance(kBrowserSilenceDelaySeconds);
    EXPECT_EQ(coordinator_.silentFrontmostBrowser(clock_.now()), std::nullopt);
}

TEST(BrowserSilenceSentenceTest, NamesTheFirstCause) {
    using State = BrowserExtensionConnectionState;
    const NativeHostSetupSnapshot registered{true, true, true, true, true};
    EXPECT_EQ(browserSilenceSentence(SupportedBrowser::chromium, {}, State::connected),
              "Websites in Chromium are not recorded: the native host is not registered "
              "(lumenote-cli browser register).");
    EXPECT_EQ(browserSilenceSentence(SupportedBrowser::firefox, registered, State::notInstalled),
              "Websites in Firefox are not recorded: the Lumenote extension is not installed "
              "(lumenote-cli extension path).");
    EXPECT_EQ(browserSilenceSentence(SupportedBrowser::brave, registered, State::connectionProblem),
              "Websites in Brave are not recorded: the Lumenote extension is disconnected.");
}

TEST_F(BridgeTrackingCoordinatorTest, FilenameLabelChangeIsPublishedAndToldToEveryBrowserSeen) {
    coordinator_.setRunningSession(session_);
    sendPage("github.com", "1");
    coordinator_.tick();
    BrowserTrackingSettings settings;
    settings.filenameLabelsEnabled = false;
    coordinator_.applySettings(settings);
    EXPECT_FALSE(store_.readPreferences()->filenameLabelsEnabled);
    const auto names = store_.queuedCommandNames();
    ASSERT_EQ(names.size(), 1u);
    const auto command = store_.readCommand(names[0]);
    ASSERT_TRUE(command);
    EXPECT_EQ(command->type, BrowserBridgeCommandType::setFilenameLabelsEnabled);
    EXPECT_EQ(command->browserBundleIdentifier, kChromium);
    EXPECT_EQ(command->filenameLabelsEnabled, false);
    EXPECT_EQ(command->sessionIdentifier, session_);

    const Uuid pdf = Uuid::generate();
    clock_.advance(0.001);
    ASSERT_TRUE(coordinator_.queueShowLocalPDF(kChromium, pdf));
    EXPECT_EQ(store_.readCommand(store_.queuedCommandNames().back())->pdfIdentifier, pdf);
}

TEST_F(BridgeTrackingCoordinatorTest, AFloodIsWorkedOffInBoundedDrainsOldestFirst) {
    coordinator_.setRunningSession(session_);
    const std::size_t events = kInboxFilesPerDrain * 2 + 10;
    for (std::size_t i = 0; i < events; ++i) {
        sendPage("host" + std::to_string(i) + ".example", "1");
        clock_.advance(0.001);
    }
    EXPECT_TRUE(coordinator_.tick());
    EXPECT_TRUE(coordinator_.tick());
    EXPECT_FALSE(coordinator_.tick());
    EXPECT_TRUE(namesIn(store_.inboxFolder()).empty());
    EXPECT_EQ(resolve()->hostname, "host" + std::to_string(events - 1) + ".example");
}

TEST(BridgeTrackingCoordinatorWithoutBridgeTest, AnUnusableDirectoryRecordsBrowsersAsApplications) {
    lumenote::testing::TemporaryHome home;
    lumenote::testing::writeFile(home.root() / "file", "not a folder");
    BrowserBridgeStore store(home.root() / "file" / "bridge");
    SteppedClock clock;
    BridgeTrackingCoordinator coordinator(store, clock, 1);
    const auto started = coordinator.start();
    ASSERT_FALSE(started);
    EXPECT_EQ(started.error(), BrowserBridgeStoreError::tokenUnavailable);
    coordinator.setRunningSession(Uuid::generate());
    EXPECT_FALSE(coordinator.resolution(kChromium, kStart, 0.0));
    EXPECT_FALSE(coordinator.tick());
}

}  // namespace
}  // namespace lumenote::bridge
