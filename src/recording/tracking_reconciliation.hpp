// Reconciliation of overlapping activity: places recorded stretches on the time
// line and gives every moment to exactly one of them.
//
// Placement: a stretch starts at its wall-clock start date and lasts its
// measured (monotonic) duration, so it occupies [startDate, startDate +
// duration]. The end date is not used: after a wall-clock jump it lies too far
// from the start (or even before it) while the measured length stays true.
// A stretch whose start date is not finite cannot be placed and is left out; a
// duration that is negative or not finite counts 0 (nothing is placed).
//
// Who keeps a moment that several stretches claim:
//   1. a system stretch (computer asleep, locked, another user) always wins:
//      nothing could be observed then, whatever another record claims;
//   2. otherwise the stretch that started later wins. A stretch begins when a
//      change is observed, while an overlap means that an earlier record's end
//      ran on past that change; so the newer observation describes the moment.
//      The earlier stretch keeps the time before, and resumes after the later
//      one ends if it still runs:
//
//          A focused     |=====================|         A: 0-10 and 20-100
//          B distracting       |=====|                   B: 10-20
//                        0     10    20        100
//
//   3. equal starts: Distracting, Focused, Neutral, Unclassified, Ignored, no
//      input, in this order. The score is never flattered by a tie, and a
//      record of observed activity outranks one of no input;
//   4. then the one ending later (the time stays in one piece), then source,
//      stable identifier and finally list position. List position only ever
//      decides between intervals equal in every field, so the result does not
//      depend on the order of the input.
#pragma once

#include <vector>

#include "recording/tracking_calculation_types.hpp"

namespace lumenote::recording::TrackingCalculationService {

// A working interval: one placed sample. `measuredDuration` is the sample's
// length in seconds, credited exactly when the interval loses no time.
struct Interval {
    Date start;
    Date end;
    AccountedState classification = AccountedState::unclassified;
    ActivitySourceType source = ActivitySourceType::application;
    std::string stableIdentifier;
    double measuredDuration = 0.0;
};

// What a sample counts as: system-excluded for source `system`, else no input
// when inactive, else its classification.
AccountedState accountedState(const SessionAccountingSample& sample);

// One interval per placeable sample of positive length, in start order (ties
// keep the input order).
std::vector<Interval> placeIntervals(const std::vector<SessionAccountingSample>& samples);

// Gives each moment covered by the intervals to exactly one of them (rules
// above) and returns the pieces in time order; consecutive moments kept by the
// same interval form one piece. An interval that loses no time gives one piece
// whose duration is exactly its measured duration.
std::vector<TrackingActivityContribution> reconcileIntervals(
    const std::vector<Interval>& intervals);

}  // namespace lumenote::recording::TrackingCalculationService
