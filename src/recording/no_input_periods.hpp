// The stretches of a session without keyboard or mouse input, derived from its
// inactive segments, and what the confirmations in force say about each.
//
// Runs: each inactive segment is placed at its wall-clock start date and lasts
// its measured (monotonic) duration, as the totals calculation places it, so a
// wall-clock jump cannot stretch a run. Overlapping or adjacent inactive
// segments join into one run. Segments of source `system` (computer asleep,
// locked, another user active) are left out: nothing could be observed then,
// which is not the same as the user giving no input.
//
// Boundaries of one moment can differ by rounding because they are read from
// two clocks (a segment's placed end from the monotonic clock, the next
// segment's start and a confirmation's dates from the wall clock). Gaps and
// pieces shorter than kNoInputBoundaryToleranceSeconds are therefore treated as
// no time at all.
#pragma once

#include <optional>
#include <vector>

#include "foundation/dates.hpp"
#include "foundation/uuid.hpp"
#include "recording/enumerations.hpp"
#include "recording/session_records.hpp"

namespace lumenote::recording {

// One millisecond, the precision of every stored boundary comparison here.
inline constexpr double kNoInputBoundaryToleranceSeconds = 0.001;

// A stretch of wall-clock time from `start` to `end`.
struct DateSpan {
    Date start;
    Date end;

    // Seconds from start to end; 0 when the end is not after the start.
    double length() const;

    friend bool operator==(const DateSpan&, const DateSpan&) = default;
};

// A stretch without input as shown to the user. An unconfirmed period has no
// state, source or confirmation.
struct NoInputPeriod {
    Date startDate;
    Date endDate;
    std::optional<ConfirmedStudyState> confirmedState;
    std::optional<ConfirmedStudyStateSource> source;
    // The ConfirmedNoInputInterval that answers this period.
    std::optional<Uuid> confirmationID;

    friend bool operator==(const NoInputPeriod&, const NoInputPeriod&) = default;
};

// The runs without input of `segments`, in time order, disjoint. Segments whose
// start date is not finite or whose duration is not positive give no time.
std::vector<DateSpan> noInputRuns(const std::vector<ActivitySegment>& segments);

// Cuts each run at the boundaries of the confirmations in force (superseded
// ones are ignored) and labels each piece with the confirmation that covers it.
// Where confirmations in force overlap, the one created last covers the moment
// (on equal creation times, the later one in the list). Consecutive pieces with
// the same label form one period; pieces shorter than the tolerance are
// dropped. Periods come in time order.
std::vector<NoInputPeriod> noInputPeriodsOfRuns(
    const std::vector<DateSpan>& runs, const std::vector<ConfirmedNoInputInterval>& confirmations);

// The no-input periods of a session: its runs labelled by its confirmations.
std::vector<NoInputPeriod> noInputPeriods(const StudySession& session);

}  // namespace lumenote::recording
