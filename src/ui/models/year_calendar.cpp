#include "ui/models/year_calendar.hpp"

#include <string_view>

#include "shell/duration_text.hpp"
#include "ui/models/receipt_dates.hpp"

namespace lumenote::ui::models {

namespace {

constexpr std::array<std::string_view, 12> kShortMonthNames = {
    "Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

constexpr double kMinutes = 60.0;
constexpr std::array<double, kYearCalendarTopLevel> kLevelFloors = {1.0, 30 * kMinutes,
                                                                    60 * kMinutes, 120 * kMinutes};

// "Nov" for the day key "2026-11-23".
std::string shortMonth(std::string_view dayKey) {
    const int month = std::stoi(std::string(dayKey.substr(5, 2)));
    return std::string(kShortMonthNames.at(static_cast<std::size_t>(month - 1)));
}

bool startsMonth(std::string_view dayKey) {
    return dayKey.substr(8, 2) == "01";
}

}  // namespace

int yearCalendarLevel(double seconds) {
    int level = 0;
    for (double floor : kLevelFloors) {
        level += seconds >= floor ? 1 : 0;
    }
    return level;
}

std::vector<insights::WeekPeriod> yearCalendarWeeks(Date today, const LocalCalendar& calendar,
                                                    unsigned firstWeekday) {
    const Date noon = calendar.startOfDay(today).addingSeconds(12 * 3600.0);
    // 364 days back: with today, the twelve months' 365 days.
    const Date firstDay = calendar.addingDays(noon, -364);
    const insights::WeekPeriod last = insights::weekContaining(today, calendar, firstWeekday);
    std::vector<insights::WeekPeriod> weeks;
    for (insights::WeekPeriod week = insights::weekContaining(firstDay, calendar, firstWeekday);
         week.start <= last.start;
         week = insights::weekContaining(week.end, calendar, firstWeekday)) {
        weeks.push_back(week);
    }
    return weeks;
}

YearCalendar makeYearCalendar(const std::vector<insights::WeeklyFigures>& weeks, Date today,
                              int currentStreak, const LocalCalendar& calendar) {
    YearCalendar year;
    year.table.header = {"Day", "Study time"};
    const Date todayStart = calendar.startOfDay(today);
    const Date firstShown =
        calendar.startOfDay(calendar.addingDays(todayStart.addingSeconds(12 * 3600.0), -364));
    for (const insights::WeeklyFigures& figures : weeks) {
        YearCalendarWeek week;
        for (std::size_t index = 0; index < figures.days.size(); ++index) {
            const insights::DayFigures& day = figures.days[index];
            YearCalendarDay& cell = week.days[index];
            cell.dayKey = day.dayKey;
            cell.shown = day.start >= firstShown && day.start <= todayStart;
            if (!cell.shown) {
                continue;
            }
            cell.seconds = day.studyTime;
            cell.level = yearCalendarLevel(day.studyTime);
            const std::string dayText = receiptDayText(day.start, calendar);
            const std::string timeText =
                day.studyTime > 0.0 ? shell::durationText(day.studyTime) : "no study";
            cell.text = dayText + ": " + timeText;
            if (day.studyTime > 0.0) {
                ++year.activeDays;
                year.table.rows.push_back({dayText, timeText});
            }
            if (week.monthLabel.empty() && (startsMonth(day.dayKey) || year.weeks.empty())) {
                week.monthLabel = shortMonth(day.dayKey);
            }
        }
        year.weeks.push_back(std::move(week));
    }
    if (!weeks.empty()) {
        for (std::size_t index = 0; index < year.rowLabels.size(); ++index) {
            year.rowLabels[index] = receiptShortWeekday(weeks.front().days[index].weekday);
        }
    }
    year.streakText = currentStreak > 0 ? std::to_string(currentStreak) + "-day streak"
                                        : std::string("No current streak");
    year.summaryText = year.activeDays == 0 ? std::string("No study in the last 12 months")
                                            : "Studied on " + std::to_string(year.activeDays) +
                                                  (year.activeDays == 1 ? " day" : " days") +
                                                  " in the last 12 months";
    return year;
}

}  // namespace lumenote::ui::models
