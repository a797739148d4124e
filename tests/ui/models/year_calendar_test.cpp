// The year calendar: which weeks and days it covers (twelve months up to
// today, each local day once across daylight-saving changes), the shade of
// each day at the steps' edges, the month labels and the text alternative.
#include "ui/models/year_calendar.hpp"

#include <gtest/gtest.h>

#include <set>

#include "ui/models/receipt_test_sessions.hpp"

namespace lumenote::ui::models {
namespace {

using testing::at;

constexpr unsigned kMonday = 1;
constexpr unsigned kSunday = 0;

std::vector<insights::WeeklyFigures> emptyYear(Date today, const LocalCalendar& calendar,
                                               unsigned firstWeekday) {
    std::vector<insights::WeeklyFigures> figures;
    for (const auto& week : yearCalendarWeeks(today, calendar, firstWeekday)) {
        figures.push_back(insights::computeWeeklyFigures({}, week, calendar, 0));
    }
    return figures;
}

TEST(YearCalendarLevel, StepsAtHalfAnHourAnHourAndTwoHours) {
    const struct {
        double seconds;
        int level;
    } rows[] = {{0, 0},    {0.5, 0},  {1, 1},    {1799, 1}, {1800, 2},
                {3599, 2}, {3600, 3}, {7199, 3}, {7200, 4}, {86400, 4}};
    for (const auto& row : rows) {
        EXPECT_EQ(yearCalendarLevel(row.seconds), row.level) << row.seconds;
    }
}

TEST(YearCalendar, ShowsEachDayOfTheTwelveMonthsOnceUpToToday) {
    const LocalCalendar calendar = testing::calendarNamed("Europe/Berlin");
    for (const unsigned firstWeekday : {kMonday, kSunday}) {
        SCOPED_TRACE(firstWeekday);
        const Date today = at("2026-11-26T10:00:00+01:00");  // a Thursday
        const YearCalendar year =
            makeYearCalendar(emptyYear(today, calendar, firstWeekday), today, 0, calendar);
        std::set<std::string> shown;
        int blank = 0;
        for (const YearCalendarWeek& week : year.weeks) {
            for (const YearCalendarDay& day : week.days) {
                if (day.shown) {
                    EXPECT_TRUE(shown.insert(day.dayKey).second) << day.dayKey;
                } else {
                    ++blank;
                }
            }
        }
        // 27 November 2025 to 26 November 2026, across both changes of 2026.
        EXPECT_EQ(shown.size(), 365U);
        EXPECT_EQ(*shown.begin(), "2025-11-27");
        EXPECT_EQ(*shown.rbegin(), "2026-11-26");
        EXPECT_EQ(year.weeks.size() * 7 - 365, static_cast<std::size_t>(blank));
        EXPECT_EQ(year.rowLabels[0], firstWeekday == kMonday ? "Mon" : "Sun");
        EXPECT_EQ(year.weeks.front().monthLabel, "Nov");
        EXPECT_EQ(year.summaryText, "No study in the last 12 months");
    }
}

TEST(YearCalendar, MonthLabelsSitOnTheWeekThatBeginsTheMonth) {
    const LocalCalendar calendar = LocalCalendar::utc();
    const Date today = at("2026-11-26T10:00:00Z");
    const YearCalendar year =
        makeYearCalendar(emptyYear(today, calendar, kMonday), today, 0, calendar);
    std::vector<std::string> labels;
    for (const YearCalendarWeek& week : year.weeks) {
        if (!week.monthLabel.empty()) {
            labels.push_back(week.monthLabel);
            // The week holds the month's first day (or is the first week).
            bool holdsFirst = &week == &year.weeks.front();
            for (const YearCalendarDay& day : week.days) {
                holdsFirst = holdsFirst || (day.shown && day.dayKey.substr(8) == "01");
            }
            EXPECT_TRUE(holdsFirst) << week.monthLabel;
        }
    }
    EXPECT_EQ(labels, (std::vector<std::string>{"Nov", "Dec", "Jan", "Feb", "Mar", "Apr", "May",
                                                "Jun", "Jul", "Aug", "Sep", "Oct", "Nov"}));
}

TEST(YearCalendar, DaysWithStudyAreShadedListedAndCounted) {
    const LocalCalendar calendar = LocalCalendar::utc();
    const Date today = at("2026-11-26T10:00:00Z");
    std::vector<insights::WeeklyFigures> weeks = emptyYear(today, calendar, kMonday);
    // Study on today (last week, Thursday), and a day before the twelve
    // months that the first week happens to hold: it is not shown.
    weeks.back().days[3].studyTime = 3900;
    weeks.front().days[0].studyTime = 600;
    const YearCalendar year = makeYearCalendar(weeks, today, 1, calendar);
    const YearCalendarDay& todayCell = year.weeks.back().days[3];
    EXPECT_TRUE(todayCell.shown);
    EXPECT_EQ(todayCell.level, 3);
    EXPECT_EQ(todayCell.text, "Thursday 26 November 2026: 1 h 05 min");
    EXPECT_FALSE(year.weeks.back().days[4].shown);  // tomorrow
    EXPECT_FALSE(year.weeks.front().days[0].shown);
    EXPECT_EQ(year.activeDays, 1);
    EXPECT_EQ(year.summaryText, "Studied on 1 day in the last 12 months");
    EXPECT_EQ(year.streakText, "1-day streak");
    EXPECT_EQ(year.table,
              (ChartTable{{"Day", "Study time"}, {{"Thursday 26 November 2026", "1 h 05 min"}}}));
}

}  // namespace
}  // namespace lumenote::ui::models
