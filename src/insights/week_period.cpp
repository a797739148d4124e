#include "insights/week_period.hpp"

namespace lumenote::insights {

std::optional<int> WeekPeriod::dayIndex(Date date) const {
    if (!(date >= start && date < end)) {
        return std::nullopt;
    }
    for (int day = 0; day < kDaysPerWeek; ++day) {
        if (date < dayStarts[static_cast<std::size_t>(day) + 1]) {
            return day;
        }
    }
    return std::nullopt;
}

WeekPeriod weekContaining(Date date, const LocalCalendar& calendar, unsigned firstWeekday) {
    WeekPeriod week;
    week.start = calendar.startOfWeek(date, firstWeekday % kDaysPerWeek);
    // Each day's start is taken from the calendar on its own rather than by
    // adding 24 hours, which would drift by an hour across a change.
    for (int day = 0; day <= kDaysPerWeek; ++day) {
        week.dayStarts[static_cast<std::size_t>(day)] =
            calendar.startOfDay(calendar.addingDays(week.start, day));
    }
    week.end = week.dayStarts[kDaysPerWeek];
    return week;
}

WeekPeriod previousWeek(const WeekPeriod& week, const LocalCalendar& calendar,
                        unsigned firstWeekday) {
    // Noon of the day before: never ambiguous, whatever the change.
    return weekContaining(calendar.addingDays(week.start, -1).addingSeconds(12 * 3600), calendar,
                          firstWeekday);
}

}  // namespace lumenote::insights
