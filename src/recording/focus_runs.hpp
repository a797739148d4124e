// Runs of Focused and Distracting time in a session's reconciled activity: the
// longest Focused run and the count of meaningful interruptions.
//
// Both read the contributions of a calculation (tracking_calculation.hpp) in
// time order, so each session is judged under its own calculation version.
// Two pieces are adjacent when nothing lies between them in the list and the
// second starts at most one second after the first ends: the sampling loop
// ticks once a second, so a shorter gap is tick jitter, while a longer one is
// a pause, a dropped stretch or a forward clock jump, and breaks the run. A
// piece that starts before the previous one ended (an unreconciled v1 overlap
// or a backward clock jump) is adjacent too. A run's length is the sum of its
// pieces' durations; gaps are never counted.
#pragma once

#include <vector>

#include "recording/tracking_calculation_types.hpp"

namespace lumenote::recording::TrackingCalculationService {

// Largest gap, in seconds, between two pieces that still join into one run.
inline constexpr double kRunJoinToleranceSeconds = 1.0;
// A Distracting run at least this long, in seconds, after Focused time is a
// meaningful interruption.
inline constexpr double kMeaningfulInterruptionSeconds = 30.0;

// Seconds of the longest run of adjacent Focused pieces; any other piece
// (no input and system time included) ends a run. 0 when there is none.
double longestFocusedRun(const std::vector<TrackingActivityContribution>& contributions);

// Meaningful interruptions: a run of adjacent Distracting pieces lasting at
// least 30 seconds, after Focused time, counted once per run. Once counted,
// another needs Focused time again first: going from one distraction to the
// next is still the same interruption of focus. Shorter Distracting runs (a
// glance at a message) neither count nor end the wait, and other pieces
// (Neutral, Unclassified, Ignored, no input, system) only separate runs.
int meaningfulInterruptionCount(const std::vector<TrackingActivityContribution>& contributions);

}  // namespace lumenote::recording::TrackingCalculationService
