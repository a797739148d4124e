// Figures of a session as every front end shows them: the clock form of a
// duration and the coverage of stored totals.
#pragma once

#include <optional>
#include <string>

#include "recording/session_records.hpp"

namespace lumenote::recording {

// "1:05:09": whole seconds as hours, minutes and seconds. Fractions of a
// second are dropped, as a running timer shows them; negative or non-finite
// values read 0:00:00.
std::string clockDurationText(double seconds);

// The coverage of a session's stored totals: Focused + Distracted as a
// percentage of Focused, Distracted, Neutral, Unclassified and no-input time;
// nullopt below one second of that time.
std::optional<double> storedCoverage(const StudySession& session);

}  // namespace lumenote::recording
