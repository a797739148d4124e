// SessionSnapshot: the plain value of one finished session that the weekly
// figures and the insights read, so that their calculators hold no store and
// no live record.
//
// Totals come from the session's stored fields, which the history keeps up to
// date under the session's own calculation version (v1 sessions keep the
// totals they were shown with). The longest Focused run and the time per
// activity come from the contributions of the session's own calculation
// (TrackingCalculationService under its effective version), as `show` reads
// them, so that every figure of a session agrees wherever it is shown.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "foundation/dates.hpp"
#include "foundation/result.hpp"
#include "foundation/store_error.hpp"
#include "foundation/uuid.hpp"
#include "insights/analytics_count_rule.hpp"
#include "recording/session_history_reader.hpp"
#include "recording/session_records.hpp"
#include "recording/tracking_calculation_types.hpp"

namespace lumenote::insights {

// Seconds one activity spent in one class within a session.
struct ActivityTime {
    // What the user recognises: the application's name, the website's
    // hostname or the PDF's label (never a URL, path or page title).
    std::string label;
    recording::TrackingCalculationService::AccountedState classification =
        recording::TrackingCalculationService::AccountedState::unclassified;
    double seconds = 0.0;
    // Reconciled pieces of this activity in this class.
    int intervals = 0;

    friend bool operator==(const ActivityTime&, const ActivityTime&) = default;
};

struct SessionSnapshot {
    Uuid id;
    std::string subject;
    Date startDate;
    // Timer seconds (pauses excluded): the session's duration.
    double duration = 0.0;
    // The stored version; nullopt for a session computed before versions
    // existed (read as v1).
    std::optional<recording::TrackingCalculationVersion> calculationVersion;
    double focused = 0.0;
    double distracted = 0.0;
    double neutral = 0.0;
    double unclassified = 0.0;
    double passiveStudy = 0.0;  // confirmed study away from the computer
    // Computer study plus confirmed study away (recording/study_time.hpp).
    double studyTime = 0.0;
    double longestFocusedRun = 0.0;
    // Focused and Distracting activities only, largest first; equal times in
    // label order.
    std::vector<ActivityTime> activities;

    recording::TrackingCalculationVersion effectiveVersion() const {
        return calculationVersion.value_or(recording::TrackingCalculationVersion::v1);
    }

    friend bool operator==(const SessionSnapshot&, const SessionSnapshot&) = default;
};

// How much of each session a snapshot reads.
enum class SnapshotDetail {
    // Every figure: the session's segments are read and recalculated for the
    // longest Focused run and the time per activity.
    full,
    // The session's own fields only, without its segments: longestFocusedRun
    // is 0 and activities is empty. Enough for a week that is compared by its
    // totals alone (the previous week of the insights), at a fraction of the
    // cost: reading the segments is most of the cost of a week.
    totals,
};

// Seconds of the longest Focused run of a session loaded with its segments,
// under its own calculation version (as its snapshot reads it).
double longestFocusedRunOf(const recording::StudySession& session);

// The snapshot of a finished session loaded with its segments and
// confirmations.
// With SnapshotDetail::totals the segments are not looked at.
SessionSnapshot makeSessionSnapshot(const recording::StudySession& session,
                                    SnapshotDetail detail = SnapshotDetail::full);

// The snapshots of the sessions in `range` that count for analytics at `now`,
// in start order, read through the store's streamed walk one session at a
// time. Fails with the store's error.
Result<std::vector<SessionSnapshot>, StoreError> readAnalyticsSnapshots(
    recording::SessionHistoryReader& reader, const recording::SessionRange& range, Date now,
    const SetupTestSessionPredicate& isSetupTestSession,
    SnapshotDetail detail = SnapshotDetail::full);

}  // namespace lumenote::insights
