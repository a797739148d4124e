// Durations typed on the command line ("25m", "90m", "1h30m", "45s", or a
// bare number of seconds such as "1500"), their short display form, and the
// spelled-out form of ranges in messages.
#pragma once

#include <string>
#include <string_view>

#include "foundation/result.hpp"

namespace lumenote::cli {

enum class DurationArgumentError {
    notADuration  // empty, an unknown unit, units out of order, or a fraction
};

// The sentence shown when a duration cannot be read.
std::string_view message(DurationArgumentError error);

// Reads a whole number of seconds, or one to three parts "<digits>h",
// "<digits>m", "<digits>s" in that order (units in either case) with no
// spaces; each part may exceed its unit ("90m", "5400s"). Returns seconds.
// Each part is at most nine digits, so the result is always finite.
Result<double, DurationArgumentError> parseDurationArgument(std::string_view text);

// The same notation for whole seconds (fractions are rounded): 1500 ->
// "25m", 5400 -> "1h30m", 45 -> "45s", 3605 -> "1h0m5s", 0 -> "0s".
std::string formatDurationArgument(double seconds);

// Words for messages: whole hours as "1 hour" or "24 hours", whole minutes as
// "25 minutes" or "1 hour 30 minutes", anything else as seconds ("90
// seconds", "1 second", "2.5 seconds").
std::string readableDuration(double seconds);

}  // namespace lumenote::cli
