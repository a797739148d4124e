// The year calendar of the Insights page: the study time of every local day
// of the last twelve months as a grid, one column a week (in the user's week
// order) and one row a weekday, each day shaded by how long was studied; with
// its text alternative and the current streak. The days' study time is the
// weekly figures' own (insights/weekly_figures.hpp), never summed here.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "foundation/dates.hpp"
#include "insights/week_period.hpp"
#include "insights/weekly_figures.hpp"
#include "ui/models/chart_table.hpp"

namespace lumenote::ui::models {

// The darkest shade a day can have; 0 is a day without study.
inline constexpr int kYearCalendarTopLevel = 4;

// The shade of a day with `seconds` of study: 0 none, 1 under 30 minutes,
// 2 under an hour, 3 under two hours, 4 from two hours on. Fixed steps, so
// that a shade means the same time in every year and for every user.
int yearCalendarLevel(double seconds);

// The weeks the calendar covers: from the week holding the day one year
// before `today` (plus one day) to the week holding `today`, oldest first;
// 53 weeks, 54 when the year's days spill into one more.
std::vector<insights::WeekPeriod> yearCalendarWeeks(Date today, const LocalCalendar& calendar,
                                                    unsigned firstWeekday);

struct YearCalendarDay {
    std::string dayKey;  // local "YYYY-MM-DD"
    double seconds = 0.0;
    int level = 0;
    // False for the days of the first week before the twelve months begin
    // and the days after today: the grid leaves them blank.
    bool shown = false;
    // "Monday 23 November 2026: 1 h 05 min" or "…: no study".
    std::string text;

    friend bool operator==(const YearCalendarDay&, const YearCalendarDay&) = default;
};

struct YearCalendarWeek {
    // Days in the week's order, the user's first weekday first.
    std::array<YearCalendarDay, insights::kDaysPerWeek> days{};
    // "Jan" on the first week whose days begin a month, else empty.
    std::string monthLabel;

    friend bool operator==(const YearCalendarWeek&, const YearCalendarWeek&) = default;
};

struct YearCalendar {
    std::vector<YearCalendarWeek> weeks;  // oldest first
    // The short weekday names of the rows ("Mon"), in the weeks' order.
    std::array<std::string, insights::kDaysPerWeek> rowLabels{};
    int activeDays = 0;  // shown days with study
    // "3-day streak", "1-day streak" or "No current streak".
    std::string streakText;
    // "Studied on 42 days in the last 12 months" or "No study in the last 12 months".
    std::string summaryText;
    // The text alternative: {"Day", "Study time"}, a row per day with study.
    ChartTable table;

    friend bool operator==(const YearCalendar&, const YearCalendar&) = default;
};

// The calendar of `weeks`, the figures of yearCalendarWeeks(today, …) in
// their order. `currentStreak` is the streak ending today.
YearCalendar makeYearCalendar(const std::vector<insights::WeeklyFigures>& weeks, Date today,
                              int currentStreak, const LocalCalendar& calendar);

}  // namespace lumenote::ui::models
