// Figures of a session as every front end shows them: the clock form of a
// duration, the coverage of stored totals and the runs of its activity.
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

// The runs of a session's activity: the longest Focused run (seconds) and the
// meaningful interruptions (focus_runs.hpp).
struct SessionRuns {
    double longestFocusedRun = 0.0;
    int meaningfulInterruptions = 0;
};

// The runs read from the session's calculation under its own version, so
// that every front end and every export shows the same figures. Needs the
// session's segments and confirmations; a live session is read up to its
// start plus its timer duration.
SessionRuns sessionRuns(const StudySession& session);

}  // namespace lumenote::recording
