// The setup assistant under Qt's offscreen platform: each step reached is
// kept so that it resumes there, finishing keeps its version, the browser
// step registers the helper through the real manifest checker in a temporary
// home and then reports the browser registered, and the goal step writes the
// daily goal.
#include "ui/onboarding_dialog.hpp"

#include <QLabel>
#include <QPushButton>
#include <QSpinBox>
#include <QTest>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "settings/in_memory_defaults_domain.hpp"
#include "support/temporary_home.hpp"
#include "ui/accessibility.hpp"
#include "ui/design/row.hpp"
#include "ui/offscreen_application.hpp"
#include "ui/screenshots.hpp"

namespace lumenote::ui {
namespace {

using models::OnboardingStep;

class OnboardingDialogTest : public ::testing::Test {
  protected:
    static void SetUpTestSuite() { lumenote::testing::ensureOffscreenApplication(); }

    void SetUp() override {
        const std::filesystem::path helper = home_.root() / "TallywiseBrowserHost";
        std::ofstream(helper) << "#!/bin/sh\n";
        std::filesystem::permissions(helper, std::filesystem::perms::owner_all);
        checker_.emplace(bridge::NativeHostConfiguration{home_.root(), home_.paths().configHome,
                                                         helper, "abcdefghijklmnopabcdefghijklmnop",
                                                         "browser-host@example.org"});
    }

    OnboardingServices services() {
        OnboardingServices made;
        made.checkSetup = [] {
            return runtime::SetupCheck{
                "ok   The frontmost application is observed.\n"
                "gap  No notification server answers.\n",
                false};
        };
        made.browserStatus = [this] {
            bridge::BrowserStatusRow firefox;
            firefox.diagnosis.browser = bridge::SupportedBrowser::firefox;
            firefox.diagnosis.browserInstalled = true;
            firefox.registration = checker_->check(bridge::SupportedBrowser::firefox);
            return std::vector{firefox};
        };
        made.registerBrowser = [this](bridge::SupportedBrowser browser) {
            return checker_->repair(browser);
        };
        return made;
    }

    lumenote::testing::TemporaryHome home_;
    std::optional<bridge::NativeHostRegistrationChecker> checker_;
    settings::InMemoryDefaultsDomain defaults_;
    settings::PreferencesStore preferences_{defaults_};
};

TEST_F(OnboardingDialogTest, ItResumesAtTheStepLeftAndFinishingKeepsItsVersion) {
    {
        OnboardingDialog dialog(preferences_, services());
        EXPECT_EQ(dialog.step(), OnboardingStep::welcome);
        EXPECT_FALSE(dialog.findChild<QPushButton*>("onboardingBack")->isEnabled());
        QTest::mouseClick(dialog.findChild<QPushButton*>("onboardingNext"), Qt::LeftButton);
        EXPECT_EQ(dialog.step(), OnboardingStep::observation);
        EXPECT_TRUE(dialog.findChild<QLabel*>("observationReport")
                        ->text()
                        .contains(QStringLiteral("No notification server answers.")));
        dialog.goForward();
    }
    EXPECT_EQ(preferences_.onboardingLastStep(), 2);
    OnboardingDialog resumed(preferences_, services());
    EXPECT_EQ(resumed.step(), OnboardingStep::browsers);
    resumed.goBack();
    EXPECT_EQ(resumed.step(), OnboardingStep::observation);
    while (resumed.step() != OnboardingStep::done) {
        resumed.goForward();
    }
    EXPECT_EQ(preferences_.onboardingCompletedVersion(), 0);
    resumed.goForward();
    EXPECT_EQ(resumed.result(), QDialog::Accepted);
    EXPECT_EQ(preferences_.onboardingCompletedVersion(), models::kOnboardingVersion);
    // Run again, it starts with the welcome.
    OnboardingDialog again(preferences_, services());
    EXPECT_EQ(again.step(), OnboardingStep::welcome);
}

TEST_F(OnboardingDialogTest, TheBrowserStepRegistersTheHelperAndSaysSo) {
    OnboardingDialog dialog(preferences_, services());
    dialog.resize(640, 520);
    dialog.show();
    dialog.showStep(OnboardingStep::browsers);
    ASSERT_EQ(dialog.browserRows().size(), 1u);
    EXPECT_FALSE(dialog.browserRows()[0].registered);
    auto* registration = dialog.findChild<QPushButton*>();
    for (QPushButton* button : dialog.findChildren<QPushButton*>()) {
        if (button->text() == QStringLiteral("Register")) {
            registration = button;
        }
    }
    ASSERT_EQ(registration->text(), QStringLiteral("Register"));
    lumenote::testing::saveScreenshots(dialog, "onboarding-browsers");
    QTest::mouseClick(registration, Qt::LeftButton);
    ASSERT_EQ(dialog.browserRows().size(), 1u);
    EXPECT_TRUE(dialog.browserRows()[0].registered);
    EXPECT_TRUE(
        std::filesystem::exists(*checker_->manifestPath(bridge::SupportedBrowser::firefox)));
    EXPECT_EQ(dialog.browserRows()[0].state,
              "Registered. Add the Lumenote extension to Firefox, then choose Test Again.");
}

TEST_F(OnboardingDialogTest, TheGoalStepWritesTheDailyGoal) {
    OnboardingDialog dialog(preferences_, services());
    dialog.resize(640, 520);
    dialog.show();
    dialog.showStep(OnboardingStep::goal);
    auto* goal = dialog.findChild<QSpinBox*>("onboardingGoal");
    goal->setValue(90);
    EXPECT_EQ(preferences_.dailyStudyGoalMinutes(), 90);
    goal->setValue(0);
    EXPECT_EQ(preferences_.dailyStudyGoalMinutes(), 0);
    EXPECT_EQ(goal->text(), QStringLiteral("No goal"));
    lumenote::testing::saveScreenshots(dialog, "onboarding-goal");
    dialog.showStep(OnboardingStep::welcome);
    lumenote::testing::saveScreenshots(dialog, "onboarding-welcome");
    dialog.showStep(OnboardingStep::classifications);
    lumenote::testing::saveScreenshots(dialog, "onboarding-classifications");
}

TEST_F(OnboardingDialogTest, TheObservationStepInstallsTheGnomeExtensionOnlyWhereGnomeNeedsIt) {
    using platform::observation::WaylandSetupStep;
    WaylandSetupStep step = WaylandSetupStep::installGnomeExtension;
    std::vector<runtime::GnomeExtensionSetup> outcomes{
        {false, {"GNOME Shell could not be run, so the extension was not installed."}},
        {true,
         {"The GNOME Shell extension is installed and enabled.",
          "Log out and log in again: GNOME Shell on Wayland loads new extensions only at "
          "login."}}};
    int installs = 0;
    OnboardingServices made = services();
    made.checkSetup = [&step] {
        return runtime::SetupCheck{
            "gap  On GNOME, Lumenote sees the application in front through its GNOME Shell "
            "extension, which is not running.\n",
            false, step};
    };
    made.installGnomeExtension = [&] { return outcomes.at(std::size_t(installs++)); };
    OnboardingDialog dialog(preferences_, made);
    dialog.show();
    dialog.showStep(OnboardingStep::observation);
    auto* install = dialog.findChild<QPushButton*>("observationInstallExtension");
    auto* result = dialog.findChild<QLabel*>("observationInstallResult");
    ASSERT_TRUE(install->isVisible());
    EXPECT_FALSE(result->isVisible());
    lumenote::testing::saveScreenshots(dialog, "onboarding-gnome-extension");

    // A failure says why and leaves the button for another try.
    QTest::mouseClick(install, Qt::LeftButton);
    EXPECT_EQ(installs, 1);
    EXPECT_TRUE(result->isVisible());
    EXPECT_EQ(result->text(), "GNOME Shell could not be run, so the extension was not installed.");
    EXPECT_TRUE(install->isVisible());

    // Installed, the extension waits for the next login: the check still
    // shows the gap, and the button goes.
    QTest::mouseClick(install, Qt::LeftButton);
    EXPECT_EQ(installs, 2);
    EXPECT_TRUE(
        result->text().startsWith("The GNOME Shell extension is installed and enabled.\n"
                                  "Log out and log in again"));
    EXPECT_FALSE(install->isVisible());
    lumenote::testing::saveScreenshots(dialog, "onboarding-gnome-extension-installed");

    // Elsewhere there is nothing to install.
    for (const auto other : {WaylandSetupStep::notWayland, WaylandSetupStep::nothingToInstall,
                             WaylandSetupStep::startKwin}) {
        step = other;
        dialog.showStep(OnboardingStep::observation);
        EXPECT_FALSE(install->isVisible());
    }
    step = WaylandSetupStep::installGnomeExtension;
    made.installGnomeExtension = nullptr;
    OnboardingDialog withoutInstaller(preferences_, made);
    withoutInstaller.show();
    withoutInstaller.showStep(OnboardingStep::observation);
    EXPECT_FALSE(
        withoutInstaller.findChild<QPushButton*>("observationInstallExtension")->isVisible());
}

TEST_F(OnboardingDialogTest, EveryStepsControlsHaveNames) {
    OnboardingDialog dialog(preferences_, services());
    dialog.show();
    for (const OnboardingStep step : models::kOnboardingSteps) {
        dialog.showStep(step);
        const QStringList unnamed = lumenote::testing::unnamedKeyboardControls(dialog);
        EXPECT_TRUE(unnamed.isEmpty())
            << models::onboardingStepTitle(step) << ": " << unnamed.join(", ").toStdString();
    }
}

}  // namespace
}  // namespace lumenote::ui
