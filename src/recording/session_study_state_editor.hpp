// SessionStudyStateEditor: relabels the time without input inside a range of a
// session as study away from the computer, as a break, or back to unconfirmed,
// and returns the confirmations to save with the session's new totals. Pure
// functions over plain values; the caller saves and publishes the outcome.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "foundation/dates.hpp"
#include "foundation/result.hpp"
#include "foundation/uuid.hpp"
#include "recording/enumerations.hpp"
#include "recording/session_messages.hpp"
#include "recording/session_records.hpp"
#include "recording/study_state_edit.hpp"

namespace lumenote::recording {

enum class SessionStudyStateEditError {
    sessionUnavailable,
    rangeOutsideSession,
    emptyRange,
    notANoInputPeriod,
    unsupportedCalculationVersion,
};

// The recorder's failure for `error`, whose sentence is the one shown.
SessionFailure studyStateEditFailure(SessionStudyStateEditError error);

// What an accepted edit changes. Recorded activity is never touched: only
// confirmations are added, and replaced ones are kept with `supersededAt`.
struct StudyStateEditOutcome {
    // The confirmations the edit replaced, each with `supersededAt` set to the
    // time of the edit.
    std::vector<ConfirmedNoInputInterval> superseded;
    // The new confirmations, in start order: one per run for the new state,
    // and the parts of replaced confirmations that lie outside the runs.
    std::vector<ConfirmedNoInputInterval> inserted;
    // The session with both lists applied to its confirmations and its stored
    // totals recomputed under its own calculation version.
    StudySession session;
    // The change, for the undo offer.
    StudyStateEdit edit;
};

// The confirmations an edit writes, in one list: those it superseded, then
// those it inserted.
std::vector<ConfirmedNoInputInterval> confirmationsToSave(const StudyStateEditOutcome& outcome);

namespace SessionStudyStateEditor {

// One contiguous stretch without input inside the edited range.
struct Run {
    Uuid id;
    Date start;
    Date end;
};

// The runs without input of `session` (noInputRuns of its segments) clipped to
// [rangeStart, rangeEnd], in time order. Clipped runs shorter than the
// boundary tolerance of no_input_periods.hpp are no time and left out; no other
// minimum length applies, so short gaps can be relabelled too.
std::vector<Run> runsInRange(const StudySession& session, Date rangeStart, Date rangeEnd);

// Relabels the time without input in [rangeStart, rangeEnd] of `session` (nullopt
// when it is no longer in the store) as `newState`, or returns it to
// unconfirmed when `newState` is empty. `source` is `replayEdit` for an edit in
// the replay and `returnPrompt` for an answer to the return prompt; `now` is the
// time of the edit. The same function undoes an edit: apply its previous state
// over its range.
//
// Checks, in this order; the first that fails is returned and nothing changes:
//   1. sessionUnavailable: no session;
//   2. unsupportedCalculationVersion: the session is read under v1 or v2
//      (also a session of a later release whose version is unknown here),
//      methods that do not know confirmed study;
//   3. emptyRange: the range is not longer than zero seconds (or not a number);
//   4. rangeOutsideSession: the range starts before the session's start or
//      ends after its end (for a live session, after `now`);
//   5. notANoInputPeriod: no run without input lies in the range.
//
// Then every confirmation in force that overlaps a run is superseded; the
// parts of it outside the runs are inserted again as new records with its
// state, source, creation time and session, so that exactly one current
// confirmation covers each moment it covered before (parts shorter than the
// boundary tolerance are dropped). Unless `newState` is empty, one
// confirmation per run is inserted with `newState`, `source` and creation time
// `now`. Active computer time in the range and confirmations that overlap no
// run are left alone.
//
// The returned edit spans from the first run's start to the last run's end
// (the same runs as the requested range). Its previous state is the state that
// covered all of the runs before; it is empty when they were unconfirmed or
// held more than one state (undo then returns the range to unconfirmed).
Result<StudyStateEditOutcome, SessionStudyStateEditError> applyEdit(
    const std::optional<StudySession>& session, Date rangeStart, Date rangeEnd,
    std::optional<ConfirmedStudyState> newState, ConfirmedStudyStateSource source, Date now);

}  // namespace SessionStudyStateEditor

}  // namespace lumenote::recording
