// The first day of the week: from the user's LC_TIME locale, Monday when the
// locale does not say.
//
// glibc describes a locale's week with two values: _NL_TIME_WEEK_1STDAY, a
// date (YYYYMMDD) that fell on the day numbered 1, and _NL_TIME_FIRST_WEEKDAY,
// the number (1...7) of the day that starts the week in calendars. The first
// weekday is the weekday of that date moved on by the number minus one
// (en_US: 19971130, a Sunday, and 1 -> Sunday; de_DE: 19971130 and 2 ->
// Monday). The C and POSIX locales carry no week convention of a region, so
// they, and any value out of range, give Monday, as ISO 8601 does.
#pragma once

#include <optional>

namespace lumenote::insights {

inline constexpr unsigned kDefaultFirstWeekday = 1;  // Monday

// The first weekday (0 Sunday ... 6 Saturday) from the two locale values;
// Monday when either is absent or out of range.
unsigned firstWeekdayFromLocaleValues(std::optional<long> week1stDay,
                                      std::optional<int> firstWeekdayNumber);

// The first weekday of the process environment's LC_TIME locale (LC_ALL,
// LC_TIME, LANG), read without changing the process's global locale.
unsigned localeFirstWeekday();

}  // namespace lumenote::insights
