// What the tray's status item shows for each state of the recorder, and the
// rule that nothing is redrawn while nothing observable changed.
#include "shell/menu_bar_status.hpp"

#include <gtest/gtest.h>

namespace lumenote::shell {
namespace {

using recording::LiveStudyState;
using recording::StudySessionStatus;
using Activity = MenuBarStatus::Activity;

TEST(MenuBarStatusBuilding, FollowsTheActiveSessionsStatus) {
    EXPECT_EQ(menuBarStatus(std::nullopt, 12.0, LiveStudyState::computerActivity), MenuBarStatus{});
    EXPECT_EQ(menuBarStatus(StudySessionStatus::running, 12.5, LiveStudyState::passiveStudy),
              (MenuBarStatus{Activity::recording, 12.5, LiveStudyState::passiveStudy}));
    // A paused session carries no study state: nothing is being observed.
    EXPECT_EQ(menuBarStatus(StudySessionStatus::paused, 60.0, LiveStudyState::passiveStudy),
              (MenuBarStatus{Activity::paused, 60.0, std::nullopt}));
    // A finished session is no longer active.
    for (const auto finished : {StudySessionStatus::completed, StudySessionStatus::interrupted}) {
        EXPECT_EQ(menuBarStatus(finished, 60.0, LiveStudyState::computerActivity), MenuBarStatus{});
    }
}

TEST(MenuBarStatusImage, ChosenByActivityAndStudyingAway) {
    EXPECT_EQ(menuBarImage({}), MenuBarImage::applicationImage);
    EXPECT_EQ(menuBarImage({Activity::recording, 1.0, LiveStudyState::computerActivity}),
              MenuBarImage::recordCircleFill);
    EXPECT_EQ(menuBarImage({Activity::recording, 1.0, LiveStudyState::unconfirmedNoInput}),
              MenuBarImage::recordCircleFill);
    EXPECT_EQ(menuBarImage({Activity::recording, 1.0, LiveStudyState::passiveStudy}),
              MenuBarImage::bookClosedFill);
    EXPECT_EQ(menuBarImage({Activity::paused, 1.0, std::nullopt}), MenuBarImage::pauseCircleFill);
    EXPECT_EQ(menuBarImageName(MenuBarImage::applicationImage), "LumenoteMenuBarIcon");
    EXPECT_EQ(menuBarImageName(MenuBarImage::bookClosedFill), "book.closed.fill");
}

TEST(MenuBarStatusTitle, EmptyWhenIdleAndAClockOtherwise) {
    EXPECT_EQ(menuBarTitle({}), "");
    const auto recording = [](double seconds) {
        return menuBarTitle({Activity::recording, seconds, LiveStudyState::computerActivity});
    };
    EXPECT_EQ(recording(0.0), "0:00");
    EXPECT_EQ(recording(59.99), "0:59");
    EXPECT_EQ(recording(3599.0), "59:59");
    EXPECT_EQ(recording(3600.0), "1:00:00");
    EXPECT_EQ(recording(90061.0), "25:01:01");
    EXPECT_EQ(recording(-5.0), "0:00");
    EXPECT_EQ(menuBarTitle({Activity::paused, 245.0, std::nullopt}), "4:05");
}

TEST(MenuBarStatusAccessibility, EachStateHasItsSentence) {
    EXPECT_EQ(menuBarAccessibilityText({}), "Lumenote. No session running.");
    EXPECT_EQ(
        menuBarAccessibilityText({Activity::recording, 1500.0, LiveStudyState::computerActivity}),
        "Lumenote. Recording, 25 minutes.");
    EXPECT_EQ(menuBarAccessibilityText({Activity::recording, 3900.0, LiveStudyState::passiveStudy}),
              "Lumenote. Recording, Studying away from Mac, 1 hour 5 minutes.");
    EXPECT_EQ(menuBarAccessibilityText({Activity::paused, 61.0, std::nullopt}),
              "Lumenote. Paused at 1 minute.");
    // Zero elapsed time, however it is reached, is spoken as no time.
    EXPECT_EQ(
        menuBarAccessibilityText({Activity::recording, 0.4, LiveStudyState::computerActivity}),
        "Lumenote. Recording, no time recorded.");
    EXPECT_EQ(menuBarAccessibilityText({Activity::paused, 0.0, std::nullopt}),
              "Lumenote. Paused at no time recorded.");
}

TEST(MenuBarStatusAccessibility, ElapsedTimeInWords) {
    EXPECT_EQ(spokenElapsedTime(0.99), "no time recorded");
    EXPECT_EQ(spokenElapsedTime(1.0), "1 second");
    EXPECT_EQ(spokenElapsedTime(59.9), "59 seconds");
    EXPECT_EQ(spokenElapsedTime(60.0), "1 minute");
    EXPECT_EQ(spokenElapsedTime(119.0), "1 minute");
    EXPECT_EQ(spokenElapsedTime(3600.0), "1 hour");
    EXPECT_EQ(spokenElapsedTime(7260.0), "2 hours 1 minute");
    EXPECT_EQ(spokenElapsedTime(96000.0), "26 hours 40 minutes");
    EXPECT_EQ(spokenElapsedTime(std::numeric_limits<double>::quiet_NaN()), "no time recorded");
}

TEST(StatusItemRedraw, OnlyWhenSomethingObservableChanged) {
    StatusItemRendering rendering;
    const MenuBarStatus running{Activity::recording, 10.0, LiveStudyState::computerActivity};
    EXPECT_TRUE(rendering.needsRedraw({}));
    EXPECT_FALSE(rendering.needsRedraw({}));
    EXPECT_TRUE(rendering.needsRedraw(running));
    EXPECT_FALSE(rendering.needsRedraw(running));
    // Each observable part on its own causes a redraw.
    MenuBarStatus later = running;
    later.elapsed = 11.0;
    EXPECT_TRUE(rendering.needsRedraw(later));
    later.studyState = LiveStudyState::passiveStudy;
    EXPECT_TRUE(rendering.needsRedraw(later));
    later.activity = Activity::paused;
    EXPECT_TRUE(rendering.needsRedraw(later));
    EXPECT_FALSE(rendering.needsRedraw(later));
    ASSERT_TRUE(rendering.lastRendered());
    EXPECT_EQ(*rendering.lastRendered(), later);
    // A tray host that came back needs the status drawn again.
    rendering.forget();
    EXPECT_TRUE(rendering.needsRedraw(later));
}

}  // namespace
}  // namespace lumenote::shell
