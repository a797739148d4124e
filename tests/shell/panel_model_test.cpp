// What the panel shows during and after a session, and today's line.
#include "shell/panel_model.hpp"

#include <gtest/gtest.h>

#include "shell/panel_history.hpp"

namespace lumenote::shell {
namespace {

using classification::ActivityClassification;

recording::StudySession session(recording::SessionTimingMode timing, double planned) {
    recording::StudySession made(Uuid::generate(), "Biology", "Chapter 3", planned, Date{0.0});
    made.setTimingMode(timing);
    return made;
}

recording::ActivitySegment segment(double seconds, ActivityClassification classification,
                                   bool inactive = false) {
    return recording::ActivitySegment(Uuid::generate(), Date{0.0}, Date{seconds}, seconds, "App",
                                      "app", classification, inactive);
}

TEST(LiveSessionPanelText, TimerModeShowsTimeLeftRoundedUp) {
    LiveSessionValues values;
    values.timerValue = 754.2;
    values.activityName = "Text Editor";
    values.classification = ActivityClassification::focused;
    const LiveSessionPanel panel =
        liveSessionPanel(session(recording::SessionTimingMode::timer, 1500.0), values);
    EXPECT_EQ(panel.elapsedText, "12:34");
    EXPECT_EQ(panel.remainingText, "12:26 left");
    EXPECT_EQ(panel.activityText, "Text Editor");
    EXPECT_EQ(panel.classification, ActivityClassification::focused);
    EXPECT_EQ(panel.pauseTitle, "Pause");
    EXPECT_EQ(panel.awayTitle, "Study away from Mac");
    // Past the planned time nothing negative is shown.
    values.timerValue = 1600.0;
    EXPECT_EQ(liveSessionPanel(session(recording::SessionTimingMode::timer, 1500.0), values)
                  .remainingText,
              "0:00 left");
    EXPECT_FALSE(liveSessionPanel(session(recording::SessionTimingMode::openEnded, 1500.0), values)
                     .remainingText);
}

TEST(LiveSessionPanelText, NoChipWhileNothingIsObserved) {
    auto running = session(recording::SessionTimingMode::openEnded, 0.0);
    LiveSessionValues values;
    EXPECT_EQ(liveSessionPanel(running, values).activityText, "Waiting for the first activity…");
    EXPECT_FALSE(liveSessionPanel(running, values).classification);
    values.activityName = "Browser";
    values.asleep = true;
    EXPECT_FALSE(liveSessionPanel(running, values).classification);
    values.asleep = false;
    values.studyState = recording::LiveStudyState::passiveStudy;
    const LiveSessionPanel away = liveSessionPanel(running, values);
    EXPECT_TRUE(away.away);
    EXPECT_EQ(away.activityText, "Studying away from Mac");
    EXPECT_EQ(away.awayTitle, "Return to Computer Study");
    EXPECT_FALSE(away.classification);
    running.setStatus(recording::StudySessionStatus::paused);
    const LiveSessionPanel paused = liveSessionPanel(running, values);
    EXPECT_TRUE(paused.paused);
    EXPECT_FALSE(paused.away);
    EXPECT_EQ(paused.pauseTitle, "Resume");
}

TEST(LiveSessionSplit, CountsActiveFocusedAndDistractingOnceEach) {
    const std::vector<recording::ActivitySegment> segments{
        segment(60.0, ActivityClassification::focused),
        segment(30.0, ActivityClassification::distracting),
        segment(500.0, ActivityClassification::focused, true),
        segment(40.0, ActivityClassification::neutral)};
    auto open = segment(15.0, ActivityClassification::focused);
    EXPECT_EQ(focusedAndDistractingSeconds(segments, std::nullopt), std::make_pair(60.0, 30.0));
    EXPECT_EQ(focusedAndDistractingSeconds(segments, open), std::make_pair(75.0, 30.0));
    // The open stretch saved among the closed ones is not counted twice.
    auto withOpen = segments;
    withOpen.push_back(open);
    EXPECT_EQ(focusedAndDistractingSeconds(withOpen, open), std::make_pair(75.0, 30.0));
}

TEST(PostSessionPanelText, ScoreOnlyWithAMinuteOfEvidenceAndPraiseOnlyWhenAllowed) {
    auto finished = session(recording::SessionTimingMode::timer, 1500.0);
    finished.setStatus(recording::StudySessionStatus::completed);
    finished.timerDuration = 1500.0;
    finished.focusedDuration = 1200.0;
    finished.distractedDuration = 300.0;
    finished.focusScore = 80.0;
    const std::vector<recording::PersonalBest> bests{
        {recording::PersonalBestKind::longestFocus, 1200.0}};
    PostSessionPanel panel = postSessionPanel(finished, bests, true);
    EXPECT_EQ(panel.subtitle, "Completed after 0:25:00");
    EXPECT_EQ(panel.focusScoreText, "Focus score 80%");
    EXPECT_FALSE(panel.coverageText.empty());
    ASSERT_EQ(panel.bests.size(), 1u);
    EXPECT_EQ(panel.bests[0], "New longest focus: 0:20:00");
    EXPECT_TRUE(panel.celebration);
    EXPECT_FALSE(postSessionPanel(finished, bests, false).celebration);
    EXPECT_FALSE(postSessionPanel(finished, {}, true).celebration);
    // Every line under a heading that is empty is left out.
    for (const SummaryLine& line : panel.totals) {
        EXPECT_TRUE(line.depth == 0 || line.value != "0:00:00") << line.name;
    }

    finished.focusedDuration = 40.0;
    finished.distractedDuration = 10.0;
    panel = postSessionPanel(finished, {}, false);
    EXPECT_EQ(panel.focusScoreText, "Not enough Focused + Distracted time to show a focus score.");
    EXPECT_TRUE(panel.coverageText.empty());
}

TEST(LiveClassification, TargetsTheTabInFrontElseTheApplicationAndNeverLumenote) {
    const std::string own = "com.tallywise.Lumenote";
    EXPECT_FALSE(liveClassificationTarget("", "", std::nullopt, own));
    EXPECT_FALSE(liveClassificationTarget(own, "Lumenote", std::nullopt, own));
    const auto editor =
        liveClassificationTarget("org.gnome.TextEditor", "Text Editor", std::nullopt, own);
    ASSERT_TRUE(editor);
    EXPECT_EQ(editor->bundleIdentifier, "org.gnome.TextEditor");
    EXPECT_FALSE(editor->tab);

    auto website = segment(30.0, ActivityClassification::unclassified);
    website.bundleIdentifier = "org.chromium.Chromium";
    website.browserBundleIdentifier = "org.chromium.Chromium";
    website.hostname = "example.org";
    website.tabSessionIdentifier = Uuid::generate();
    const auto tab = liveClassificationTarget("org.chromium.Chromium", "example.org", website, own);
    ASSERT_TRUE(tab);
    EXPECT_EQ(tab->tab, website.tabSessionIdentifier);
    // A stretch of another application, or one without input, names no tab.
    EXPECT_FALSE(
        liveClassificationTarget("org.gnome.TextEditor", "Text Editor", website, own)->tab);
    website.isInactive = true;
    EXPECT_FALSE(liveClassificationTarget("org.chromium.Chromium", "Chromium", website, own)->tab);
}

TEST(TodaysStudyLine, SaysTheFigureAndTheGoal) {
    EXPECT_EQ(todaysStudyText(0.0, 0), "Nothing studied yet today");
    EXPECT_EQ(todaysStudyText(0.0, 120), "Nothing studied yet today (goal: 2 h 00 min)");
    EXPECT_EQ(todaysStudyText(38.0, 0), "38 s studied today");
    EXPECT_EQ(todaysStudyText(2700.0, 0), "45 min studied today");
    EXPECT_EQ(todaysStudyText(3900.0, 90), "1 h 05 min of 1 h 30 min studied today");
    EXPECT_DOUBLE_EQ(dailyGoalProgress(2700.0, 90), 0.5);
    EXPECT_DOUBLE_EQ(dailyGoalProgress(9999.0, 90), 1.0);
    EXPECT_DOUBLE_EQ(dailyGoalProgress(100.0, 0), 0.0);
}

}  // namespace
}  // namespace lumenote::shell
