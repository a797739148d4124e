#include "bridge/browser_activity_resolution.hpp"

#include <gtest/gtest.h>

namespace lumenote::bridge {
namespace {

using recording::BrowserFallbackReason;
using Kind = recording::BrowserResolution::Kind;

const Date kNow = *parseIso8601("2026-11-25T10:00:00Z");
const Uuid kTab = *Uuid::parse("11111111-1111-4111-8111-111111111111");

BrowserActivityEvent pageEvent() {
    BrowserActivityEvent event;
    event.browserBundleIdentifier = "org.mozilla.firefox";
    event.eventType = BrowserActivityEventType::tabActivated;
    event.hostname = "overleaf.com";
    event.temporaryTabIdentifier = "12";
    event.timestamp = kNow.addingSeconds(-5);
    return event;
}

BrowserActivityEvent pdfEvent(BrowserPDFLabelSource source) {
    BrowserActivityEvent event = pageEvent();
    event.hostname.reset();
    event.resourceType = BrowserActivityResourceType::localPDF;
    event.pdfIdentifier = "0b9b5c52-33a4-4c1e-9d0c-6a1f3f1f0a77";
    event.pdfLabel = "thesis.pdf";
    event.pdfLabelSource = source;
    return event;
}

BrowserActivityFacts factsFor(std::optional<BrowserActivityEvent> event, double age = 5.0) {
    BrowserActivityFacts facts;
    facts.frontmostBundleIdentifier = "org.mozilla.firefox";
    if (event) {
        facts.last = ReceivedBrowserEvent{*event, kNow.addingSeconds(-age)};
    }
    facts.tabSessionIdentifier = kTab;
    facts.now = kNow;
    return facts;
}

std::optional<BrowserFallbackReason> reasonFor(const BrowserActivityFacts& facts) {
    const auto resolution = resolveBrowserActivity(facts);
    return resolution.kind == Kind::fallback ? resolution.fallbackReason : std::nullopt;
}

TEST(BrowserActivityResolutionTest, FreshWebsiteEventNamesItsHostAndTab) {
    const auto resolution = resolveBrowserActivity(factsFor(pageEvent()));
    EXPECT_EQ(resolution.kind, Kind::website);
    EXPECT_EQ(resolution.hostname, "overleaf.com");
    EXPECT_EQ(resolution.browserBundleIdentifier, "org.mozilla.firefox");
    EXPECT_EQ(resolution.tabSessionIdentifier, kTab);
    EXPECT_FALSE(resolution.isPrivate);
}

TEST(BrowserActivityResolutionTest, FallbackReasonsInTheirOrder) {
    auto withType = [](BrowserActivityEventType type) {
        BrowserActivityEvent event = pageEvent();
        event.eventType = type;
        event.hostname.reset();
        return event;
    };
    auto paused = factsFor(withType(BrowserActivityEventType::extensionDisconnected));
    paused.settings.browserTrackingPaused = true;
    EXPECT_EQ(reasonFor(paused), BrowserFallbackReason::paused);

    EXPECT_EQ(reasonFor(factsFor(std::nullopt)), BrowserFallbackReason::awaitingFreshEvent);
    EXPECT_EQ(reasonFor(factsFor(withType(BrowserActivityEventType::tabClosed))),
              BrowserFallbackReason::awaitingFreshEvent);
    // A disconnect or a blur is known for what it is even when it is old.
    EXPECT_EQ(reasonFor(factsFor(withType(BrowserActivityEventType::extensionDisconnected), 600)),
              BrowserFallbackReason::extensionDisconnected);
    EXPECT_EQ(reasonFor(factsFor(withType(BrowserActivityEventType::browserWindowBlurred), 600)),
              BrowserFallbackReason::applicationSwitch);

    BrowserActivityEvent privateEvent = pageEvent();
    privateEvent.isPrivate = true;
    privateEvent.hostname.reset();
    privateEvent.temporaryTabIdentifier.reset();
    EXPECT_EQ(reasonFor(factsFor(privateEvent, 61)), BrowserFallbackReason::staleEvent);
}

TEST(BrowserActivityResolutionTest, AnEventIsFreshForExactlyOneMinute) {
    EXPECT_EQ(resolveBrowserActivity(factsFor(pageEvent(), 60.0)).kind, Kind::website);
    EXPECT_EQ(reasonFor(factsFor(pageEvent(), 60.001)), BrowserFallbackReason::staleEvent);
    // Sub-millisecond fractions of the clocks do not move the boundary.
    EXPECT_TRUE(isFreshBrowserEvent(kNow.addingSeconds(-60.0004), kNow));
}

TEST(BrowserActivityResolutionTest, QuietBecauseTheUserWasAwayIsInactivity) {
    auto facts = factsFor(pageEvent(), 90.0);
    facts.idleSeconds = 90.0;
    EXPECT_EQ(reasonFor(facts), BrowserFallbackReason::inactivity);
    facts.idleSeconds = 89.0;  // input after the event: the extension should have spoken
    EXPECT_EQ(reasonFor(facts), BrowserFallbackReason::staleEvent);
}

TEST(BrowserActivityResolutionTest, PrivateActivityIsMarkedAndLosesItsTab) {
    BrowserActivityEvent event = pageEvent();
    event.isPrivate = true;
    event.hostname.reset();
    event.temporaryTabIdentifier.reset();
    const auto resolution = resolveBrowserActivity(factsFor(event));
    EXPECT_EQ(resolution.fallbackReason, BrowserFallbackReason::privateOrRestricted);
    EXPECT_TRUE(resolution.isPrivate);
    EXPECT_FALSE(resolution.tabSessionIdentifier);
    EXPECT_FALSE(resolution.hostname);
}

TEST(BrowserActivityResolutionTest, PagesKeptOutByThePageOrByTheSettingsAreRestricted) {
    BrowserActivityEvent restricted = pageEvent();
    restricted.hostname.reset();
    const auto page = resolveBrowserActivity(factsFor(restricted));
    EXPECT_EQ(page.fallbackReason, BrowserFallbackReason::privateOrRestricted);
    EXPECT_FALSE(page.isPrivate);
    EXPECT_EQ(page.tabSessionIdentifier, kTab);

    auto noHostnames = factsFor(pageEvent());
    noHostnames.settings.hostnameTrackingEnabled = false;
    EXPECT_EQ(reasonFor(noHostnames), BrowserFallbackReason::privateOrRestricted);

    auto noPDFs = factsFor(pdfEvent(BrowserPDFLabelSource::filename));
    noPDFs.settings.localPDFDetectionEnabled = false;
    EXPECT_EQ(reasonFor(noPDFs), BrowserFallbackReason::privateOrRestricted);
    noPDFs.settings.localPDFDetectionEnabled = true;
    noPDFs.settings.hostnameTrackingEnabled = false;
    EXPECT_EQ(resolveBrowserActivity(noPDFs).kind, Kind::localPDF);
}

TEST(BrowserActivityResolutionTest, PDFLabelsComeOnlyFromAllowedSources) {
    for (const auto source : {BrowserPDFLabelSource::filename, BrowserPDFLabelSource::manual}) {
        auto facts = factsFor(pdfEvent(source));
        auto resolution = resolveBrowserActivity(facts);
        EXPECT_EQ(resolution.kind, Kind::localPDF);
        EXPECT_EQ(resolution.pdfIdentifier, Uuid::parse("0b9b5c52-33a4-4c1e-9d0c-6a1f3f1f0a77"));
        EXPECT_EQ(resolution.pdfDisplayLabel, "thesis.pdf");
        EXPECT_EQ(resolution.pdfLabelSource, source);

        facts.settings.filenameLabelsEnabled = false;
        facts.settings.manualPDFLabelsEnabled = source == BrowserPDFLabelSource::filename;
        resolution = resolveBrowserActivity(facts);
        EXPECT_EQ(resolution.kind, Kind::localPDF);
        EXPECT_FALSE(resolution.pdfDisplayLabel);
        EXPECT_FALSE(resolution.pdfLabelSource);
    }
}

}  // namespace
}  // namespace lumenote::bridge
