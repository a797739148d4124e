// The user's standing personal records over the whole counted history: the
// longest session, the longest Focused run and the highest focus score, each
// with the start of the session that holds it. The same figures the
// end-of-session check judges a new session against (personal_bests.hpp).
//
// Cost: one walk over the session rows (no segments); the longest Focused run
// then loads only the sessions whose Focused total could still beat the
// longest run found so far, largest total first (focus_candidates.hpp). When
// more than kMaximumFocusRunsChecked could hold it, the record is left out
// rather than guessed.
#pragma once

#include <optional>

#include "foundation/dates.hpp"
#include "foundation/result.hpp"
#include "foundation/store_error.hpp"
#include "insights/analytics_count_rule.hpp"
#include "recording/recording_store.hpp"
#include "recording/session_history_reader.hpp"

namespace lumenote::insights {

struct PersonalRecord {
    // Seconds (a session's timer time, a Focused run) or a focus score (0 ... 100).
    double value = 0.0;
    Date sessionStart;  // the session that holds the record

    friend bool operator==(const PersonalRecord&, const PersonalRecord&) = default;
};

struct PersonalRecords {
    int sessions = 0;  // counted sessions in the history
    std::optional<PersonalRecord> longestSession;
    // Absent when no session has a Focused run, or when it could not be
    // settled within kMaximumFocusRunsChecked loads.
    std::optional<PersonalRecord> longestFocusedRun;
    // Absent when no session has a focus score.
    std::optional<PersonalRecord> highestFocusScore;

    friend bool operator==(const PersonalRecords&, const PersonalRecords&) = default;
};

// The records of the sessions that count for analytics at `now`. A record
// held by several sessions is dated by the earliest, which set it first.
// Fails with the store's error.
Result<PersonalRecords, StoreError> readPersonalRecords(
    recording::SessionHistoryReader& reader, recording::RecordingStore& store, Date now,
    const SetupTestSessionPredicate& isSetupTestSession);

}  // namespace lumenote::insights
