// The current streak read from a real store: it follows the history back
// past the four weeks read at a time, counts only sessions that count for
// analytics, and crosses a daylight-saving change.
#include "insights/study_streak.hpp"

#include <gtest/gtest.h>

#include "insights/insight_test_support.hpp"
#include "store/sqlite_recording_store.hpp"
#include "support/stored_sessions.hpp"

namespace lumenote::insights {
namespace {

using lumenote::testing::SessionPlan;
using testing::at;
using testing::calendarNamed;

class StudyStreakTest : public ::testing::Test {
  protected:
    void SetUp() override {
        auto opened = store::SqliteRecordingStore::openInMemory();
        ASSERT_TRUE(opened.ok());
        store_ = std::move(*opened);
    }

    // A ten-minute Focused session at 20:00 local time on each of `days`
    // consecutive days, the last one `endingDaysAgo` days before `today`.
    void studyOnDays(int days, int endingDaysAgo, Date today) {
        std::vector<SessionPlan> plans;
        const Date evening = calendar_.startOfDay(today).addingSeconds(20 * 3600.0);
        for (int day = 0; day < days; ++day) {
            plans.push_back({.start = calendar_.addingDays(evening, -endingDaysAgo - day),
                             .focusedRuns = {600}});
        }
        lumenote::testing::storeSessions(*store_, plans);
    }

    int streakAt(Date now) {
        auto streak = readCurrentStudyStreak(*store_, calendar_, now, {});
        EXPECT_TRUE(streak.ok());
        return streak.ok() ? *streak : -1;
    }

    LocalCalendar calendar_ = calendarNamed("Europe/Berlin");
    std::unique_ptr<store::SqliteRecordingStore> store_;
};

TEST_F(StudyStreakTest, FollowsTheHistoryBackBeyondTheFirstFourWeeks) {
    const Date now = at("2026-11-26T09:00:00+01:00");
    // 60 days ending yesterday: the walk needs three steps of 28 days, and
    // the 23-hour and 25-hour days of March and October lie inside.
    studyOnDays(60, 1, now);
    EXPECT_EQ(streakAt(now), 60);
    // A session today makes it 61 once it counts (five minutes after it began).
    lumenote::testing::storeSessions(
        *store_, {{.start = at("2026-11-26T07:00:00+01:00"), .focusedRuns = {120}}});
    EXPECT_EQ(streakAt(now), 61);
}

TEST_F(StudyStreakTest, EndsAtTheFirstDayWithoutACountingSession) {
    const Date now = at("2026-11-26T09:00:00+01:00");
    studyOnDays(3, 1, now);
    // Four days ago: too short to count (under a minute of timer time); the
    // day before it has a real session, which the gap keeps out.
    lumenote::testing::storeSessions(
        *store_, {{.start = at("2026-11-22T20:00:00+01:00"), .focusedRuns = {30}},
                  {.start = at("2026-11-21T20:00:00+01:00"), .focusedRuns = {600}}});
    EXPECT_EQ(streakAt(now), 3);
    // Two days without study: nothing is left of it.
    EXPECT_EQ(streakAt(at("2026-11-28T00:00:00+01:00")), 0);
}

TEST_F(StudyStreakTest, AnEmptyHistoryHasNoStreak) {
    EXPECT_EQ(streakAt(at("2026-11-26T09:00:00+01:00")), 0);
}

}  // namespace
}  // namespace lumenote::insights
