// The personal-bests check over the stored history: the records of the
// counted sessions and the day's study time from one streamed walk, the
// daily goal through the preferences' once-per-day gate.
//
// Cost over a long history: the walk reads the sessions' own fields only
// (no segments), so it is one pass over the session rows. The longest
// Focused run is the one figure that needs a session's segments; a session's
// run never exceeds its Focused total, so only the sessions whose Focused
// total could reach the new run are loaded and recalculated, largest total
// first, stopping at the first that holds the record. At most
// kMaximumFocusRunsChecked are loaded: when more could hold it, the record is
// left unsettled and no focus best is claimed (never a false one). The walk
// keeps only those candidates, so its memory does not grow with the history.
// Nothing is cached, so deleting or relabelling history is always reflected.
// Measured in bench/personal_bests_bench.cpp: 24 to 45 ms over 20,000
// sessions, once per session end.
#pragma once

#include "foundation/dates.hpp"
#include "insights/analytics_count_rule.hpp"
#include "insights/focus_candidates.hpp"
#include "insights/personal_bests.hpp"
#include "recording/personal_best.hpp"
#include "recording/recording_preferences.hpp"
#include "recording/recording_store.hpp"
#include "recording/session_history_reader.hpp"

namespace lumenote::insights {

struct HistoryPersonalBestsDependencies {
    recording::SessionHistoryReader& reader;
    // Loads the few sessions whose segments the longest run needs.
    recording::RecordingStore& store;
    // The daily goal and its once-per-day acknowledgement.
    recording::RecordingPreferences& preferences;
    // The local day of the daily goal.
    LocalCalendar calendar;
    SetupTestSessionPredicate isSetupTestSession;
};

class HistoryPersonalBests final : public recording::PersonalBestsCheck {
  public:
    explicit HistoryPersonalBests(HistoryPersonalBestsDependencies dependencies)
        : dependencies_(std::move(dependencies)) {}

    // Only a completed session that itself counts for analytics at `now`
    // earns a best. "Daily goal complete" comes when the study time of the
    // local day on which `finished` started (the day its time is counted on,
    // as the weekly figures count it) reaches the goal and the preferences
    // have not acknowledged that day and goal yet.
    Result<std::vector<recording::PersonalBest>, StoreError> personalBestsOf(
        const recording::StudySession& finished, Date now) override;

  private:
    HistoryPersonalBestsDependencies dependencies_;
};

}  // namespace lumenote::insights
