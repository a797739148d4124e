#include "insights/personal_records.hpp"

#include <utility>

#include "foundation/numeric.hpp"
#include "insights/focus_candidates.hpp"
#include "insights/session_snapshot.hpp"

namespace lumenote::insights {

namespace {

// Keeps `record` unless `value` is strictly higher: the walk goes in start
// order, so the earliest holder of a tie stays.
void raise(std::optional<PersonalRecord>& record, double value, Date start) {
    if (!record || value > record->value) {
        record = PersonalRecord{value, start};
    }
}

// The longest run among the candidates, loading them largest Focused total
// first until no later one could beat it. nullopt when the candidates kept
// could not settle it, or no session has a run.
Result<std::optional<PersonalRecord>, StoreError> longestRun(recording::RecordingStore& store,
                                                             FocusCandidates candidates) {
    const double largestDropped = candidates.largestDropped();
    std::optional<PersonalRecord> longest;
    for (const FocusCandidate& candidate : std::move(candidates).largestFirst()) {
        if (longest && candidate.focused < longest->value) {
            return longest;  // no later candidate's total reaches it
        }
        auto loaded = store.loadSession(candidate.id);
        if (!loaded) {
            return fail(loaded.error());
        }
        if (!*loaded) {
            continue;  // deleted since the walk
        }
        const double run = longestFocusedRunOf(**loaded);
        if (run > 0.0 &&
            (!longest || run > longest->value ||
             (run == longest->value && (*loaded)->startDate < longest->sessionStart))) {
            longest = PersonalRecord{run, (*loaded)->startDate};
        }
    }
    if (largestDropped > 0.0 && (!longest || largestDropped > longest->value)) {
        return std::optional<PersonalRecord>();
    }
    return longest;
}

}  // namespace

Result<PersonalRecords, StoreError> readPersonalRecords(
    recording::SessionHistoryReader& reader, recording::RecordingStore& store, Date now,
    const SetupTestSessionPredicate& isSetupTestSession) {
    PersonalRecords records;
    FocusCandidates candidates;
    auto walked = reader.forEachSession({}, [&](const recording::StudySession& session) {
        if (!countsForAnalytics(session, now, isSetupTestSession)) {
            return true;
        }
        ++records.sessions;
        raise(records.longestSession, clampDuration(session.timerDuration), session.startDate);
        if (session.focusScore) {
            raise(records.highestFocusScore, *session.focusScore, session.startDate);
        }
        const double focused = clampDuration(session.focusedDuration);
        if (focused > 0.0) {
            candidates.add({focused, session.id});
        }
        return true;
    });
    if (!walked) {
        return fail(walked.error());
    }
    auto run = longestRun(store, std::move(candidates));
    if (!run) {
        return fail(run.error());
    }
    records.longestFocusedRun = *run;
    return records;
}

}  // namespace lumenote::insights
