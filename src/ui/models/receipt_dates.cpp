#include "ui/models/receipt_dates.hpp"

#include <array>
#include <string_view>

#include "insights/insight_text.hpp"

namespace lumenote::ui::models {

namespace {

constexpr std::array<std::string_view, 12> kMonthNames = {
    "January", "February", "March",     "April",   "May",      "June",
    "July",    "August",   "September", "October", "November", "December"};

struct LocalDay {
    int year = 0;
    int month = 1;  // 1 ... 12
    int day = 1;
};

// The fields of the local day key "YYYY-MM-DD", which the calendar always
// writes in that form.
LocalDay localDay(Date date, const LocalCalendar& calendar) {
    const std::string key = calendar.dayKey(date);
    return {std::stoi(key.substr(0, 4)), std::stoi(key.substr(5, 2)), std::stoi(key.substr(8, 2))};
}

std::string monthName(const LocalDay& day) {
    return std::string(kMonthNames.at(static_cast<std::size_t>(day.month - 1)));
}

}  // namespace

std::string receiptDayText(Date date, const LocalCalendar& calendar) {
    const LocalDay day = localDay(date, calendar);
    return std::string(insights::weekdayName(calendar.weekday(date))) + ' ' +
           std::to_string(day.day) + ' ' + monthName(day) + ' ' + std::to_string(day.year);
}

std::string receiptTimeText(Date date, const LocalCalendar& calendar) {
    // "2026-11-16T09:05:00+01:00": the hours and minutes sit at 11 ... 15.
    return calendar.formatIso8601(date).substr(11, 5);
}

std::string receiptDayRangeText(Date first, Date last, const LocalCalendar& calendar) {
    const LocalDay from = localDay(first, calendar);
    const LocalDay to = localDay(last, calendar);
    const std::string end =
        std::to_string(to.day) + ' ' + monthName(to) + ' ' + std::to_string(to.year);
    std::string start = std::to_string(from.day);
    if (from.month != to.month || from.year != to.year) {
        start += ' ' + monthName(from);
    }
    if (from.year != to.year) {
        start += ' ' + std::to_string(from.year);
    }
    return start + " – " + end;
}

std::string receiptShortWeekday(unsigned weekday) {
    return std::string(insights::weekdayName(weekday).substr(0, 3));
}

}  // namespace lumenote::ui::models
