// A local-calendar week and its seven days, with their exact bounds: a day
// across a daylight-saving change is 23 or 25 hours long and still one day.
#pragma once

#include <array>
#include <optional>
#include <string>

#include "foundation/dates.hpp"
#include "recording/session_history_reader.hpp"

namespace lumenote::insights {

inline constexpr int kDaysPerWeek = 7;

struct WeekPeriod {
    Date start;  // first instant of the first day
    Date end;    // first instant of the next week (exclusive)
    // dayStarts[i] is the first instant of day i; dayStarts[7] == end.
    std::array<Date, kDaysPerWeek + 1> dayStarts{};

    // The index 0...6 of the day containing `date`; nullopt outside the week.
    std::optional<int> dayIndex(Date date) const;
    // The sessions this week reads: those starting in [start, end).
    recording::SessionRange range() const { return {start, end}; }

    friend bool operator==(const WeekPeriod&, const WeekPeriod&) = default;
};

// The week containing `date` in `calendar`, starting on `firstWeekday`
// (0 Sunday ... 6 Saturday).
WeekPeriod weekContaining(Date date, const LocalCalendar& calendar, unsigned firstWeekday);

// The week before `week`, in the same calendar and with the same first day.
WeekPeriod previousWeek(const WeekPeriod& week, const LocalCalendar& calendar,
                        unsigned firstWeekday);

}  // namespace lumenote::insights
