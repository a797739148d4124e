// How the desktop writes a duration.
#pragma once

#include <string>

namespace lumenote::shell {

// A running clock: "4:05" below an hour, "1:02:03" from an hour on; whole
// seconds, rounded down. For the tray's title and the panel's timers.
std::string clockText(double seconds);

// A stretch of time in words: "1 h 05 min", "45 min", "38 s", rounded to the
// nearest second (then down to the minute from a minute on). For every
// figure the windows show.
std::string durationText(double seconds);

}  // namespace lumenote::shell
