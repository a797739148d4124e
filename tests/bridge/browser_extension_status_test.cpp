#include "bridge/browser_extension_status.hpp"

#include <gtest/gtest.h>

#include "support/temporary_home.hpp"

namespace lumenote::bridge {
namespace {

using State = BrowserExtensionConnectionState;

const Date kStart = *parseIso8601("2026-11-25T10:00:00Z");

BrowserBridgeReadiness readiness(bool connected, Date updatedAt, long long protocol = 1) {
    return {kBridgeDocumentVersion,
            "org.chromium.Chromium",
            "1.0.0",
            "0.1.0",
            protocol,
            connected,
            updatedAt};
}

State stateAt(const std::optional<BrowserBridgeReadiness>& ready, std::optional<Date> event,
              double secondsAfterStart) {
    return extensionStatus(SupportedBrowser::chromium, ready, event, std::nullopt,
                           kStart.addingSeconds(secondsAfterStart), kStart)
        .state;
}

TEST(BrowserExtensionStatusTest, EachStateFollowsItsRuleAtTheFreshnessBoundaries) {
    EXPECT_EQ(stateAt(std::nullopt, std::nullopt, 0), State::notInstalled);
    // A readiness exactly at the window is fresh; a millisecond older is not.
    EXPECT_EQ(stateAt(readiness(true, kStart), std::nullopt, 60), State::connected);
    EXPECT_EQ(stateAt(readiness(true, kStart), std::nullopt, 60.001), State::connectionProblem);
    // Just after start, an old "connected" readiness is still connecting.
    const auto old = readiness(true, kStart.addingSeconds(-600));
    EXPECT_EQ(stateAt(old, std::nullopt, 59), State::connecting);
    EXPECT_EQ(stateAt(old, std::nullopt, 61), State::connectionProblem);
    // A fresh accepted event wins over a readiness that said goodbye.
    EXPECT_EQ(stateAt(readiness(false, kStart), kStart.addingSeconds(100), 130), State::connected);
    EXPECT_EQ(stateAt(readiness(false, kStart), kStart.addingSeconds(100), 200), State::installed);
    EXPECT_EQ(stateAt(std::nullopt, kStart, 30), State::connected)
        << "events alone show a connection";
    EXPECT_EQ(stateAt(readiness(true, kStart, 2), std::nullopt, 1), State::unsupportedVersion);
}

TEST(BrowserExtensionStatusTest, CompatibilityComparesTheProtocols) {
    using C = BrowserVersionCompatibility;
    EXPECT_EQ(versionCompatibility("1.0.0", "0.1.0", 1), C::compatible);
    EXPECT_EQ(versionCompatibility("1.0.0", "0.1.0", 0), C::extensionUpdateRequired);
    EXPECT_EQ(versionCompatibility("9.0.0", "0.1.0", 2), C::appUpdateRequired);
    EXPECT_EQ(versionCompatibility(std::nullopt, "0.1.0", 1), C::unknown);
    EXPECT_EQ(versionCompatibility("1.0.0", "0.1.0", std::nullopt), C::unknown);
    EXPECT_EQ(displayText(C::extensionUpdateRequired), "Extension update required");
    EXPECT_EQ(displayText(C::unknown), "Unknown version");
}

TEST(BrowserExtensionStatusTest, TheServiceReadsTheReadinessFilesAndTheEventsItWasTold) {
    lumenote::testing::TemporaryHome home;
    BrowserBridgeStore store(home.root() / "bridge");
    ASSERT_TRUE(store.prepare());
    ASSERT_TRUE(store.writeReadiness(readiness(true, kStart)));
    auto firefox = readiness(false, kStart);
    firefox.browserBundleIdentifier = "org.mozilla.firefox";
    ASSERT_TRUE(store.writeReadiness(firefox));

    BrowserExtensionStatusService service(store, kStart);
    ASSERT_EQ(service.statuses().size(), 9u);
    EXPECT_EQ(service.status(SupportedBrowser::chromium).state, State::notInstalled)
        << "nothing is read before the first refresh";
    service.refresh(kStart);
    EXPECT_EQ(service.status(SupportedBrowser::chromium).state, State::connected);
    EXPECT_EQ(service.status(SupportedBrowser::chromium).extensionVersion, "1.0.0");
    EXPECT_EQ(service.status(SupportedBrowser::firefox).state, State::installed);
    EXPECT_EQ(service.status(SupportedBrowser::brave).state, State::notInstalled);

    service.recordEvent(SupportedBrowser::brave, kStart.addingSeconds(5),
                        BrowserLocalFilePermission::permissionRequired);
    service.refresh(kStart.addingSeconds(10));
    const auto& brave = service.status(SupportedBrowser::brave);
    EXPECT_EQ(brave.state, State::connected);
    EXPECT_EQ(brave.localPDFPermission, BrowserLocalFilePermission::permissionRequired);
    EXPECT_EQ(brave.compatibility(), BrowserVersionCompatibility::unknown);

    service.refresh(kStart.addingSeconds(600));
    EXPECT_EQ(service.status(SupportedBrowser::chromium).state, State::connectionProblem);
}

}  // namespace
}  // namespace lumenote::bridge
