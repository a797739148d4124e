#include "ui/models/onboarding.hpp"

#include <gtest/gtest.h>

namespace lumenote::ui::models {
namespace {

TEST(OnboardingTest, ItResumesWhereItWasLeftUntilFinished) {
    EXPECT_TRUE(onboardingDueAtStart(0));
    EXPECT_FALSE(onboardingDueAtStart(kOnboardingVersion));
    EXPECT_FALSE(onboardingDueAtStart(kOnboardingVersion + 1));

    EXPECT_EQ(onboardingResumeStep(0, 0), OnboardingStep::welcome);
    EXPECT_EQ(onboardingResumeStep(2, 0), OnboardingStep::browsers);
    EXPECT_EQ(onboardingResumeStep(5, 0), OnboardingStep::done);
    // Out of range (another version's, or edited by hand): from the start.
    EXPECT_EQ(onboardingResumeStep(6, 0), OnboardingStep::welcome);
    EXPECT_EQ(onboardingResumeStep(-1, 0), OnboardingStep::welcome);
    // Once finished, running it again starts with the welcome.
    EXPECT_EQ(onboardingResumeStep(3, kOnboardingVersion), OnboardingStep::welcome);
}

TEST(OnboardingTest, EveryStepHasATitleAndItsPlace) {
    for (const OnboardingStep step : kOnboardingSteps) {
        EXPECT_FALSE(onboardingStepTitle(step).empty());
    }
    EXPECT_EQ(onboardingProgressText(OnboardingStep::welcome), "Step 1 of 6");
    EXPECT_EQ(onboardingProgressText(OnboardingStep::done), "Step 6 of 6");
}

TEST(OnboardingTest, TheDesktopCheckReadsAsMarkedLines) {
    EXPECT_EQ(observationLines(""), std::vector<ObservationLine>{});
    EXPECT_EQ(observationLines("ok   The frontmost application is observed.\n"
                               "\n"
                               "gap  No notification server answers.\n"
                               "something unexpected"),
              (std::vector<ObservationLine>{{true, "The frontmost application is observed."},
                                            {false, "No notification server answers."},
                                            {false, "something unexpected"}}));
}

bridge::BrowserStatusRow statusRow(bridge::SupportedBrowser browser, bool installed,
                                   bool registered, bool connected) {
    bridge::BrowserStatusRow row;
    row.diagnosis.browser = browser;
    row.diagnosis.browserInstalled = installed;
    row.diagnosis.extensionConnected = connected;
    row.registration.manifestPresent = registered;
    row.registration.manifestValid = registered;
    row.registration.helperPresent = true;
    row.registration.helperExecutable = true;
    row.registration.exactConfiguredOriginAuthorised = registered;
    return row;
}

TEST(OnboardingTest, TheBrowserStepListsOnlyInstalledBrowsersWithTheirState) {
    using bridge::SupportedBrowser;
    const auto rows = onboardingBrowserRows({
        statusRow(SupportedBrowser::googleChrome, false, false, false),
        statusRow(SupportedBrowser::chromium, true, false, false),
        statusRow(SupportedBrowser::firefox, true, true, false),
        statusRow(SupportedBrowser::brave, true, true, true),
    });
    ASSERT_EQ(rows.size(), 3u);
    EXPECT_EQ(rows[0].name, "Chromium");
    EXPECT_FALSE(rows[0].registered);
    EXPECT_EQ(rows[0].state,
              "Not registered yet: choose Register so that Chromium can reach Lumenote.");
    EXPECT_EQ(rows[1].state,
              "Registered. Add the Lumenote extension to Firefox, then choose Test Again.");
    EXPECT_TRUE(rows[2].connected);
    EXPECT_EQ(rows[2].state, "Registered and connected: the extension is talking to Lumenote.");
}

}  // namespace
}  // namespace lumenote::ui::models
