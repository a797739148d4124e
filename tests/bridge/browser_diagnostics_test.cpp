#include "bridge/browser_diagnostics.hpp"

#include "bridge/browser_status_report.hpp"
#include "support/temporary_home.hpp"

#include <functional>

#include <gtest/gtest.h>

namespace lumenote::bridge {
namespace {

using Issue = BrowserDiagnosticIssue;
const Date kNow = *parseIso8601("2026-11-25T10:00:00Z");

// Everything working: Chromium in front, connected, a fresh event.
BrowserDiagnosticFacts healthy() {
    BrowserDiagnosticFacts facts;
    facts.browser = SupportedBrowser::chromium;
    facts.browserInstalled = true;
    facts.registration = {true, true, true, true, true};
    facts.extension.browser = SupportedBrowser::chromium;
    facts.extension.state = BrowserExtensionConnectionState::connected;
    facts.extension.lastEventReceived = kNow.addingSeconds(-2);
    facts.extension.extensionVersion = "1.0.0";
    facts.extension.nativeHostVersion = "0.1.0";
    facts.extension.protocolVersion = 1;
    facts.bridgeState = BrowserBridgeState{.appProcessIdentifier = 77,
                                           .sessionRunning = true,
                                           .sessionIdentifier = Uuid::generate(),
                                           .updatedAt = kNow.addingSeconds(-5)};
    facts.recorderProcessIdentifier = 77;
    facts.sessionRunning = true;
    facts.frontmostBundleIdentifier = "org.chromium.Chromium";
    facts.liveDiagnostic = BrowserLiveDiagnostic{.receivedAt = kNow.addingSeconds(-2),
                                                 .browser = SupportedBrowser::chromium,
                                                 .resource = BrowserDiagnosticResource::website,
                                                 .accepted = true,
                                                 .sessionMatched = true,
                                                 .browserFrontmost = true,
                                                 .eventFresh = true};
    facts.now = kNow;
    return facts;
}

struct Fault {
    const char* name;
    std::function<void(BrowserDiagnosticFacts&)> apply;
    Issue issue;
};

// In precedence order: each fault alone gives its issue, and together with
// every fault after it still wins.
const std::vector<Fault>& faults() {
    static const std::vector<Fault> list{
        {"origin not exact",
         [](auto& f) { f.registration.exactConfiguredOriginAuthorised = false; },
         Issue::nativeHostNotRegistered},
        {"old protocol",
         [](auto& f) { f.extension.state = BrowserExtensionConnectionState::unsupportedVersion; },
         Issue::extensionVersionMismatch},
        {"no session", [](auto& f) { f.sessionRunning = false; }, Issue::noActiveSession},
        {"paused", [](auto& f) { f.trackingPaused = true; }, Issue::trackingPaused},
        {"no state", [](auto& f) { f.bridgeState.reset(); }, Issue::bridgeMissing},
        {"old process", [](auto& f) { f.recorderProcessIdentifier = 78; }, Issue::appPIDMismatch},
        {"stale state",
         [](auto& f) {
             if (f.bridgeState)
                 f.bridgeState->updatedAt = kNow.addingSeconds(-45.001);
         },
         Issue::bridgeStale},
        {"another application in front", [](auto& f) { f.frontmostBundleIdentifier = "xterm"; },
         Issue::browserNotFrontmost},
        {"extension silent",
         [](auto& f) {
             if (f.extension.state == BrowserExtensionConnectionState::connected) {
                 f.extension.state = BrowserExtensionConnectionState::connectionProblem;
             }
         },
         Issue::extensionDisconnected},
        {"private page", [](auto& f) { f.liveDiagnostic->issue = Issue::privateBrowsing; },
         Issue::privateBrowsing},
        {"old event", [](auto& f) { f.extension.lastEventReceived = kNow.addingSeconds(-61); },
         Issue::eventStale},
    };
    return list;
}

TEST(BrowserDiagnosticsTest, HealthyFactsHaveNoIssue) {
    const auto status = diagnoseBrowser(healthy());
    EXPECT_EQ(status.issue, std::nullopt);
    EXPECT_TRUE(status.bridgeFresh);
    EXPECT_EQ(status.compatibility, BrowserVersionCompatibility::compatible);
    EXPECT_EQ(testConnection(status, BrowserExtensionConnectionState::connected),
              BrowserConnectionTestResult::successful);
}

TEST(BrowserDiagnosticsTest, EachFaultAloneGivesItsIssueAndOutranksEveryLaterOne) {
    const auto& all = faults();
    for (std::size_t i = 0; i < all.size(); ++i) {
        BrowserDiagnosticFacts alone = healthy();
        all[i].apply(alone);
        EXPECT_EQ(diagnoseBrowser(alone).issue, all[i].issue) << all[i].name << " alone";

        BrowserDiagnosticFacts together = healthy();
        for (std::size_t j = i; j < all.size(); ++j) {
            all[j].apply(together);
        }
        EXPECT_EQ(diagnoseBrowser(together).issue, all[i].issue) << all[i].name << " and later";
    }
}

TEST(BrowserDiagnosticsTest, TheConnectionTestStopsAtTheFirstFailingStep) {
    using R = BrowserConnectionTestResult;
    using S = BrowserExtensionConnectionState;
    auto status = diagnoseBrowser(healthy());
    EXPECT_EQ(testConnection(status, S::connecting), R::extensionDidNotRespond);
    EXPECT_EQ(testConnection(status, S::unsupportedVersion), R::versionMismatch);
    EXPECT_EQ(testConnection(status, S::permissionRequired), R::permissionRequired);
    status.bridgeAvailable = false;
    EXPECT_EQ(testConnection(status, S::unsupportedVersion), R::bridgeUnavailable);
    status.nativeHostRegistered = false;
    EXPECT_EQ(testConnection(status, S::connected), R::nativeHostMissing);
    status.browserInstalled = false;
    EXPECT_EQ(testConnection(status, S::connected), R::browserNotInstalled);
}

TEST(BrowserDiagnosticsTest, TheSummaryNamesTheBrowserAndTheIssue) {
    auto facts = healthy();
    facts.sessionRunning = false;
    EXPECT_EQ(diagnosticSummary(diagnoseBrowser(facts)),
              "Chromium: installed, native host registered, extension connected, Compatible. No "
              "active Lumenote session.");
}

TEST(BrowserStatusReportTest, RowsCoverTheRegistrableBrowsersWithTheRecordersLastEvent) {
    lumenote::testing::TemporaryHome home;
    const NativeHostRegistrationChecker checker(
        {home.root(), home.root() / ".config", home.root() / "missing-helper", "a", "b"});
    BrowserBridgeStore store(home.root() / "bridge");
    ASSERT_TRUE(store.prepare());
    BrowserExtensionStatusService extensions(store, kNow.addingSeconds(-600));
    extensions.recordEvent(SupportedBrowser::chromium, kNow.addingSeconds(-3), std::nullopt);
    extensions.refresh(kNow);
    const BrowserStatusSources sources{
        checker,
        extensions,
        {},
        healthy().bridgeState,
        77,
        true,
        false,
        std::string("org.chromium.Chromium"),
        false,
        [](SupportedBrowser browser) {
            return browser == SupportedBrowser::chromium ? healthy().liveDiagnostic : std::nullopt;
        },
        kNow};
    const auto rows = browserStatusRows(sources);
    ASSERT_EQ(rows.size(), 7u) << "all but Arc and Safari";
    const auto chromium = std::find_if(rows.begin(), rows.end(), [](const BrowserStatusRow& row) {
        return row.diagnosis.browser == SupportedBrowser::chromium;
    });
    ASSERT_NE(chromium, rows.end());
    const std::string text = browserStatusText(*chromium, *LocalCalendar::named("UTC"));
    EXPECT_EQ(text,
              "Chromium (org.chromium.Chromium): not installed\n"
              "  Native host:  not registered (run `lumenote-cli browser register`)\n"
              "  Extension:    connected\n"
              "  Last event:   2026-11-25 09:59:57 (Website)\n"
              "  Connection:   the browser is not installed\n"
              "  Issue:        The native host is not registered\n");
}

}  // namespace
}  // namespace lumenote::bridge
