#include "insights/weekly_figures.hpp"

#include <gtest/gtest.h>

#include "insight_test_support.hpp"

namespace lumenote::insights {
namespace {

using recording::TrackingCalculationService::AccountedState;
using testing::at;
using testing::calendarNamed;
using testing::snapshot;

constexpr unsigned kMonday = 1;
constexpr unsigned kSunday = 0;

struct DaylightSavingWeek {
    const char* zone;
    unsigned firstWeekday;
    const char* inWeek;     // any moment of the week
    const char* weekStart;  // its first instant, with the local offset
    const char* weekEnd;
    double hours;                    // length of the week
    const char* lastMomentOfChange;  // a session just before the changed day ends
    int changedDay;                  // index of the 23- or 25-hour day
    const char* firstMomentAfter;    // the first instant of the following day
};

class DaylightSavingWeeks : public ::testing::TestWithParam<DaylightSavingWeek> {};

TEST_P(DaylightSavingWeeks, CountEachDayOnceWithItsOwnLength) {
    const DaylightSavingWeek& row = GetParam();
    const LocalCalendar calendar = calendarNamed(row.zone);
    const WeekPeriod week = weekContaining(at(row.inWeek), calendar, row.firstWeekday);
    EXPECT_EQ(week.start, at(row.weekStart));
    EXPECT_EQ(week.end, at(row.weekEnd));
    EXPECT_DOUBLE_EQ(week.end.secondsSince(week.start), row.hours * 3600);

    const std::vector<SessionSnapshot> sessions{snapshot(at(row.lastMomentOfChange), 600),
                                                snapshot(at(row.firstMomentAfter), 900)};
    const WeeklyFigures figures = computeWeeklyFigures(sessions, week, calendar, 0);
    std::set<std::string> keys;
    for (const DayFigures& day : figures.days) {
        keys.insert(day.dayKey);
    }
    EXPECT_EQ(keys.size(), 7U) << "a day counted twice or missing";
    EXPECT_EQ(figures.days[static_cast<std::size_t>(row.changedDay)].studyTime, 600);
    EXPECT_EQ(figures.sessions, 1) << "the next day belongs to the next week";
    EXPECT_EQ(figures.activeDays, 1);

    const WeekPeriod following =
        weekContaining(at(row.firstMomentAfter), calendar, row.firstWeekday);
    EXPECT_EQ(following.start, week.end);
    EXPECT_EQ(previousWeek(following, calendar, row.firstWeekday), week);
}

INSTANTIATE_TEST_SUITE_P(
    BerlinAndNewYork, DaylightSavingWeeks,
    ::testing::Values(
        // Spring: Sunday 29 March 2026 has 23 hours.
        DaylightSavingWeek{"Europe/Berlin", kMonday, "2026-03-25T12:00:00+01:00",
                           "2026-03-23T00:00:00+01:00", "2026-03-30T00:00:00+02:00", 167,
                           "2026-03-29T23:59:59+02:00", 6, "2026-03-30T00:00:00+02:00"},
        // Autumn: Sunday 25 October 2026 has 25 hours.
        DaylightSavingWeek{"Europe/Berlin", kMonday, "2026-10-21T12:00:00+02:00",
                           "2026-10-19T00:00:00+02:00", "2026-10-26T00:00:00+01:00", 169,
                           "2026-10-25T23:30:00+01:00", 6, "2026-10-26T00:00:00+01:00"},
        // A Sunday-first week that opens with the 25-hour day of 1 November 2026.
        DaylightSavingWeek{"America/New_York", kSunday, "2026-11-04T12:00:00-05:00",
                           "2026-11-01T00:00:00-04:00", "2026-11-08T00:00:00-05:00", 169,
                           "2026-11-01T23:59:59-05:00", 0, "2026-11-08T00:00:00-05:00"},
        // Spring in New York: Sunday 8 March 2026 has 23 hours.
        DaylightSavingWeek{"America/New_York", kMonday, "2026-03-04T12:00:00-05:00",
                           "2026-03-02T00:00:00-05:00", "2026-03-09T00:00:00-04:00", 167,
                           "2026-03-08T23:59:59-04:00", 6, "2026-03-09T00:00:00-04:00"}));

TEST(WeeklyFigures, ASessionBelongsWholeToTheDayItStarted) {
    const LocalCalendar calendar = calendarNamed("Europe/Berlin");
    const WeekPeriod week = weekContaining(at("2026-11-18T12:00:00+01:00"), calendar, kMonday);
    const std::vector<SessionSnapshot> sessions{
        // Midnight between Monday and Tuesday, from both sides.
        snapshot(at("2026-11-16T23:59:59+01:00"), 3600),
        snapshot(at("2026-11-17T00:00:00+01:00"), 60),
        // The first instant of the week and the last.
        snapshot(at("2026-11-16T00:00:00+01:00"), 120),
        snapshot(at("2026-11-22T23:59:59+01:00"), 240),
        // Just outside on both sides.
        snapshot(at("2026-11-15T23:59:59+01:00"), 1000),
        snapshot(at("2026-11-23T00:00:00+01:00"), 1000)};
    const WeeklyFigures figures = computeWeeklyFigures(sessions, week, calendar, 0);
    EXPECT_EQ(figures.days[0].studyTime, 3720);
    EXPECT_EQ(figures.days[0].sessions, 2);
    EXPECT_EQ(figures.days[1].studyTime, 60);
    EXPECT_EQ(figures.days[6].studyTime, 240);
    EXPECT_EQ(figures.sessions, 4);
    EXPECT_EQ(figures.studyTime, 4020);
    EXPECT_EQ(figures.activeDays, 3);
    EXPECT_EQ(figures.days[0].dayKey, "2026-11-16");
    EXPECT_EQ(figures.days[0].weekday, 1U);
}

TEST(WeeklyFigures, StudyTimeAddsConfirmedStudyAwayButTheScoreReadsOnlyEvidence) {
    const LocalCalendar calendar = LocalCalendar::utc();
    const WeekPeriod week = weekContaining(at("2026-11-18T12:00:00Z"), calendar, kMonday);
    SessionSnapshot away = snapshot(at("2026-11-17T09:00:00Z"), 45, 15);
    away.neutral = 100;
    away.unclassified = 20;
    away.passiveStudy = 600;
    away.studyTime = 45 + 15 + 100 + 20 + 600;
    SessionSnapshot later = snapshot(at("2026-11-17T20:00:00Z"), 5, 30);
    later.studyTime = 35;
    const WeeklyFigures figures = computeWeeklyFigures({away, later}, week, calendar, 0);
    EXPECT_EQ(figures.studyTime, 815);
    EXPECT_EQ(figures.computerStudy, 215);
    EXPECT_EQ(figures.passiveStudy, 600);
    // The day keeps each class apart, as a chart of the classes per day
    // piles them.
    const DayFigures& tuesday = figures.days[1];
    EXPECT_EQ(tuesday.focused, 50);
    EXPECT_EQ(tuesday.distracted, 45);
    EXPECT_EQ(tuesday.neutral, 100);
    EXPECT_EQ(tuesday.unclassified, 20);
    EXPECT_EQ(tuesday.passiveStudy, 600);
    EXPECT_EQ(figures.days[0].distracted, 0);
    ASSERT_TRUE(figures.focusScore.has_value());
    EXPECT_DOUBLE_EQ(*figures.focusScore, 50.0 / 95.0 * 100.0);
}

TEST(WeeklyFigures, TheWeeklyScoreNeedsAMinuteOfEvidenceAcrossSessions) {
    EXPECT_FALSE(weeklyFocusScore(59, 0).has_value());
    EXPECT_FALSE(weeklyFocusScore(29.5, 29.4).has_value());
    EXPECT_EQ(weeklyFocusScore(0, 60), 0.0);
    EXPECT_EQ(weeklyFocusScore(30, 30), 50.0);
    EXPECT_EQ(weeklyFocusScore(60, 0), 100.0);
}

TEST(WeeklyFigures, SubjectsAndActivitiesAreRankedLargestFirstTiesByLabel) {
    const LocalCalendar calendar = LocalCalendar::utc();
    const WeekPeriod week = weekContaining(at("2026-11-18T12:00:00Z"), calendar, kMonday);
    SessionSnapshot first = snapshot(at("2026-11-16T09:00:00Z"), 600, 0, "Physics");
    first.activities = {{"Editor", AccountedState::focused, 600, 1},
                        {"news.example", AccountedState::distracting, 90, 2}};
    SessionSnapshot second = snapshot(at("2026-11-17T09:00:00Z"), 300, 0, "Biology");
    second.activities = {{"Atlas.pdf", AccountedState::focused, 300, 1},
                         {"chat.example", AccountedState::distracting, 90, 1}};
    SessionSnapshot third = snapshot(at("2026-11-18T09:00:00Z"), 300, 0, "Chemistry");
    third.activities = {{"Atlas.pdf", AccountedState::focused, 400, 1}};
    const WeeklyFigures figures = computeWeeklyFigures({first, second, third}, week, calendar, 0);
    EXPECT_EQ(figures.subjects, (std::vector<LabelledDuration>{
                                    {"Physics", 600}, {"Biology", 300}, {"Chemistry", 300}}));
    EXPECT_EQ(figures.topFocused,
              (std::vector<LabelledDuration>{{"Atlas.pdf", 700}, {"Editor", 600}}));
    EXPECT_EQ(figures.topDistracting,
              (std::vector<LabelledDuration>{{"chat.example", 90}, {"news.example", 90}}));
}

TEST(WeeklyFigures, DailyGoalProgressIsClampedAndMetFromExactlyTheGoal) {
    const LocalCalendar calendar = LocalCalendar::utc();
    const WeekPeriod week = weekContaining(at("2026-11-18T12:00:00Z"), calendar, kMonday);
    const std::vector<SessionSnapshot> sessions{snapshot(at("2026-11-16T09:00:00Z"), 1800),
                                                snapshot(at("2026-11-17T09:00:00Z"), 1799.5),
                                                snapshot(at("2026-11-18T09:00:00Z"), 7200)};
    const WeeklyFigures figures = computeWeeklyFigures(sessions, week, calendar, 30);
    EXPECT_EQ(figures.dailyGoalSeconds, 1800.0);
    EXPECT_TRUE(figures.days[0].goalMet);
    EXPECT_FALSE(figures.days[1].goalMet);
    EXPECT_EQ(figures.days[2].goalProgressPercent, 100.0);
    EXPECT_EQ(figures.days[3].goalProgressPercent, 0.0);
    EXPECT_EQ(figures.daysGoalMet, 2);

    const WeeklyFigures noGoal = computeWeeklyFigures(sessions, week, calendar, 0);
    EXPECT_FALSE(noGoal.dailyGoalSeconds.has_value());
    EXPECT_FALSE(noGoal.days[0].goalProgressPercent.has_value());
    EXPECT_EQ(noGoal.daysGoalMet, 0);
}

TEST(StudyStreak, EndsTodayOrYesterdayAndCrossesDaylightSaving) {
    const LocalCalendar calendar = calendarNamed("Europe/Berlin");
    const std::set<std::string> days{"2026-03-27", "2026-03-28", "2026-03-29", "2026-03-30",
                                     "2026-03-25"};
    struct Row {
        const char* today;
        int streak;
    };
    for (const Row& row :
         {Row{"2026-03-30T08:00:00+02:00", 4},  // across the 23-hour Sunday
          Row{"2026-03-31T23:59:59+02:00", 4},  // nothing yet today
          Row{"2026-04-01T00:00:00+02:00", 0},  // a whole day missed
          Row{"2026-03-26T00:00:00+01:00", 1}, Row{"2026-03-24T12:00:00+01:00", 0}}) {
        EXPECT_EQ(currentStudyStreak(days, at(row.today), calendar), row.streak) << row.today;
    }
}

}  // namespace
}  // namespace lumenote::insights
