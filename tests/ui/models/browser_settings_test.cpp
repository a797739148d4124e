#include "ui/models/browser_settings.hpp"

#include <gtest/gtest.h>

namespace lumenote::ui::models {
namespace {

using bridge::BrowserExtensionConnectionState;
using bridge::SupportedBrowser;

bridge::BrowserStatusRow rowOf(SupportedBrowser browser, bool installed) {
    bridge::BrowserStatusRow row;
    row.diagnosis.browser = browser;
    row.diagnosis.browserInstalled = installed;
    row.extension.browser = browser;
    return row;
}

std::string fact(const BrowserCard& card, std::string_view label) {
    for (const BrowserFact& each : card.facts) {
        if (each.label == label) {
            return each.value;
        }
    }
    return "(missing)";
}

TEST(BrowserSettings, AnInstalledBrowserWithoutManifestOffersOnlyRegister) {
    const BrowserCard card =
        browserCard(rowOf(SupportedBrowser::chromium, true), LocalCalendar::utc());
    EXPECT_EQ(card.title, "Chromium");
    EXPECT_EQ(fact(card, "Browser"), "Installed");
    EXPECT_EQ(fact(card, "Native host"), "Not registered");
    EXPECT_EQ(fact(card, "Extension"), "Not heard from yet");
    EXPECT_EQ(fact(card, "Last event"), "None yet");
    EXPECT_TRUE(card.canRegister);
    EXPECT_FALSE(card.canRepair);
    EXPECT_FALSE(card.canRemove);
    EXPECT_EQ(card.diagnosis, "Activity in Chromium is recorded by website.");
}

TEST(BrowserSettings, AManifestThatIsNotReadyOffersRepairAndRemove) {
    bridge::BrowserStatusRow row = rowOf(SupportedBrowser::firefox, true);
    row.diagnosis.browserVersion = "128.5.0esr";
    row.registration.manifestPresent = true;
    row.diagnosis.issue = bridge::BrowserDiagnosticIssue::nativeHostNotRegistered;
    row.diagnosis.lastEvent = Date::fromUnixSeconds(1'790'000'000.0);
    row.extension.state = BrowserExtensionConnectionState::connected;
    const BrowserCard card = browserCard(row, LocalCalendar::utc());
    EXPECT_EQ(fact(card, "Browser"), "Installed, version 128.5.0esr");
    EXPECT_EQ(fact(card, "Native host"), "Needs repair");
    EXPECT_EQ(fact(card, "Extension"), "Connected");
    EXPECT_EQ(fact(card, "Last event"), "Monday 21 September 2026 at 14:13");
    EXPECT_FALSE(card.canRegister);
    EXPECT_TRUE(card.canRepair);
    EXPECT_TRUE(card.canRemove);
    EXPECT_EQ(card.diagnosis,
              bridge::displayText(bridge::BrowserDiagnosticIssue::nativeHostNotRegistered));
}

TEST(BrowserSettings, BrowsersWithoutCardAreNamedInOneLine) {
    bridge::BrowserStatusRow leftover = rowOf(SupportedBrowser::brave, false);
    leftover.registration.manifestPresent = true;  // a manifest to remove earns a card
    const std::vector<bridge::BrowserStatusRow> rows{
        rowOf(SupportedBrowser::googleChrome, false), rowOf(SupportedBrowser::chromium, true),
        leftover, rowOf(SupportedBrowser::vivaldi, false)};
    EXPECT_TRUE(deservesCard(rows[1]));
    EXPECT_TRUE(deservesCard(rows[2]));
    EXPECT_EQ(notInstalledText(rows), "Not installed: Google Chrome, Vivaldi.");
    EXPECT_EQ(notInstalledText({rows[1]}), "");
}

TEST(BrowserSettings, PackagesAreNamedWhereTheyAreOrSaidToBeMissing) {
    const auto found =
        extensionPackagesLines(std::filesystem::path("/usr/share/lumenote/extension"));
    ASSERT_EQ(found.size(), 3u);
    EXPECT_NE(found[1].find("/usr/share/lumenote/extension/chromium"), std::string::npos);
    EXPECT_NE(found[2].find("/usr/share/lumenote/extension/lumenote-firefox.xpi"),
              std::string::npos);
    EXPECT_EQ(extensionPackagesLines(std::nullopt).size(), 1u);
}

TEST(BrowserSettings, SetupTestLinesFollowTheItemsThenTheAction) {
    bridge::SetupTestReport report;
    report.items = {{bridge::SetupTestKind::applicationTracking, "Application tracking",
                     bridge::SetupTestStatus::ready,
                     "Lumenote can see the frontmost application."}};
    EXPECT_EQ(setupTestLines(report),
              (std::vector<std::string>{"Application tracking: Ready \u2014 Lumenote can see the "
                                        "frontmost application."}));
    report.recommendedAction = bridge::SetupTestAction::openNotificationSettings;
    const auto lines = setupTestLines(report);
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[1], "Next: " + std::string(bridge::displayText(
                                       bridge::SetupTestAction::openNotificationSettings)));
}

}  // namespace
}  // namespace lumenote::ui::models
