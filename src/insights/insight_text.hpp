// How durations, weekdays and focus-score points read inside insight
// statements.
#pragma once

#include <string>
#include <string_view>

namespace lumenote::insights {

// A duration in words: under 59.5 seconds the whole seconds ("40 s"),
// otherwise whole minutes rounded half away from zero, as hours and minutes
// ("1 h 25 min", "2 h", "45 min"). Negative or non-finite values read "0 s".
std::string insightDurationText(double seconds);

// The English name of a weekday, 0 Sunday ... 6 Saturday ("Monday"): the
// statements are English, so their weekday names are too.
std::string_view weekdayName(unsigned weekday);

// The magnitude of a focus-score difference as printed: rounded half away
// from zero (1.2 -> 1, -2.5 -> 3).
long long printedPoints(double difference);

}  // namespace lumenote::insights
