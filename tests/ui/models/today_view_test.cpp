// What the Today page shows for a scripted history: the sessions of the day
// only (midnight is the boundary), study time and focus score from the
// sessions' own totals, time without input shown but never counted, and the
// goal's caption on each side of the goal.
#include "ui/models/today_view.hpp"

#include <gtest/gtest.h>

#include <algorithm>

#include "ui/models/receipt_test_sessions.hpp"
#include "ui/models/scripted_history.hpp"

namespace lumenote::ui::models {
namespace {

using testing::at;

class TodayViewTest : public ::testing::Test {
  protected:
    static void SetUpTestSuite() {
        history_ =
            new testing::ScriptedHistory("two_days_of_study.jsonl", at("2026-11-23T09:00:00Z"));
    }
    static void TearDownTestSuite() {
        delete history_;
        history_ = nullptr;
    }

    static TodayView today(const char* now, long long goalMinutes = 0) {
        auto view = readTodayView(history_->store(), LocalCalendar::utc(), at(now), goalMinutes);
        EXPECT_TRUE(view.ok());
        return view.ok() ? *view : TodayView{};
    }

    static std::vector<std::string> subjects(const TodayView& view) {
        std::vector<std::string> listed;
        for (const HistorySessionRow& row : view.sessions) {
            listed.push_back(row.subject);
        }
        return listed;
    }

    static inline testing::ScriptedHistory* history_ = nullptr;
};

TEST_F(TodayViewTest, ADayShowsItsOwnSessionsOldestFirstWithTheirFigures) {
    const TodayView monday = today("2026-11-23T23:59:59Z");
    EXPECT_EQ(subjects(monday), (std::vector<std::string>{"Organic chemistry", "Reading away"}));
    EXPECT_EQ(monday.dayStart, at("2026-11-23T00:00:00Z"));
    EXPECT_EQ(monday.dayEnd, at("2026-11-24T00:00:00Z"));
    // The session without input adds no study time and no evidence.
    EXPECT_EQ(monday.studyTimeText, "30 min");
    EXPECT_EQ(monday.focusScoreText, "80%");
    EXPECT_TRUE(monday.hasFocusScore);
    EXPECT_EQ(monday.focusScoreCaption, "focus score today");

    // Midnight starts the next day: only Tuesday's session.
    const TodayView tuesday = today("2026-11-24T00:00:00Z");
    EXPECT_EQ(subjects(tuesday), std::vector<std::string>{"Statistics"});
    EXPECT_EQ(tuesday.studyTimeText, "10 min");
    EXPECT_EQ(tuesday.focusScoreText, "100%");
}

TEST_F(TodayViewTest, TimeWithoutInputIsOnTheTimelineButNotStudy) {
    const TodayView monday = today("2026-11-23T12:00:00Z");
    const auto noInput = std::count_if(
        monday.timeline.begin(), monday.timeline.end(),
        [](const TimelineBlock& block) { return block.kind == TimelineBlockKind::noInput; });
    EXPECT_GE(noInput, 1);
    ASSERT_FALSE(monday.timeline.empty());
    EXPECT_EQ(monday.timeline.front().start, at("2026-11-23T09:00:00Z"));
    // The strip spans the hours recorded in: 09:00 to 10:00.
    ASSERT_TRUE(monday.timelineSpan.has_value());
    EXPECT_EQ(monday.timelineSpan->start, at("2026-11-23T09:00:00Z"));
    EXPECT_EQ(monday.timelineSpan->end, at("2026-11-23T10:00:00Z"));
    for (std::size_t index = 1; index < monday.timeline.size(); ++index) {
        EXPECT_LE(monday.timeline[index - 1].end, monday.timeline[index].start);
    }
}

TEST_F(TodayViewTest, ADayWithoutSessionsSaysSoInsteadOfAZeroScore) {
    const TodayView wednesday = today("2026-11-25T10:00:00Z", 60);
    EXPECT_TRUE(wednesday.sessions.empty());
    EXPECT_TRUE(wednesday.timeline.empty());
    EXPECT_FALSE(wednesday.timelineSpan.has_value());
    EXPECT_EQ(wednesday.studyTimeText, "0 s");
    EXPECT_EQ(wednesday.focusScoreText, "—");
    EXPECT_FALSE(wednesday.hasFocusScore);
    EXPECT_EQ(wednesday.focusScoreCaption,
              "Record at least one minute of Focused or Distracted activity to show a focus "
              "score.");
    EXPECT_EQ(wednesday.goalCaption, "of a 1 h 00 min daily goal");
    EXPECT_EQ(wednesday.goalProgress, 0.0);
}

TEST_F(TodayViewTest, TheGoalCaptionTurnsWhenTheGoalIsReached) {
    EXPECT_EQ(today("2026-11-23T20:00:00Z", 0).goalCaption, "No daily goal set");
    const TodayView halfway = today("2026-11-23T20:00:00Z", 60);
    EXPECT_EQ(halfway.goalCaption, "of a 1 h 00 min daily goal");
    EXPECT_DOUBLE_EQ(halfway.goalProgress, 0.5);
    const TodayView reached = today("2026-11-23T20:00:00Z", 30);
    EXPECT_EQ(reached.goalCaption, "Goal reached: 30 min");
    EXPECT_DOUBLE_EQ(reached.goalProgress, 1.0);
}

}  // namespace
}  // namespace lumenote::ui::models
