// The rules of the personal bests a finished session can set: which of its
// figures beat the user's own counted history, and by how much they must.
// Pure functions over plain values.
//
// - A record is compared only against at least kMinimumEarlierSessionsForBest
//   other counted sessions that have the figure: beating one or two sessions
//   is not yet a best worth showing (the first sessions earn none).
// - It must beat the highest earlier figure by at least a margin (one second,
//   half a point of focus score): a tie, or a difference that is rounding
//   in the summary, earns nothing.
// - A session without a focus score (too little Focused and Distracting
//   time) sets no score best, and earlier sessions without one do not count
//   towards that record.
#pragma once

#include <optional>
#include <vector>

#include "recording/personal_best.hpp"

namespace lumenote::insights {

inline constexpr int kMinimumEarlierSessionsForBest = 3;
inline constexpr double kDurationBestMarginSeconds = 1.0;
inline constexpr double kFocusScoreBestMarginPoints = 0.5;

// The figures of one session that records are kept of.
struct SessionBestFigures {
    double longestFocusedRun = 0.0;  // seconds
    std::optional<double> focusScore;
    double duration = 0.0;  // timer seconds
};

// The highest figures of the counted sessions other than the one judged.
struct EarlierRecords {
    int sessions = 0;
    // nullopt when the longest Focused run could not be settled (see
    // history_personal_bests.hpp): no focus best is then claimed.
    std::optional<double> longestFocusedRun = 0.0;
    int scoredSessions = 0;
    double highestFocusScore = 0.0;
    double longestSession = 0.0;
};

// True when `value` beats `record` by at least `margin`.
bool beatsRecord(double value, double record, double margin);

// The records `session` beats, in PersonalBestKind order (never the daily
// goal, which is no record).
std::vector<recording::PersonalBest> recordBests(const SessionBestFigures& session,
                                                 const EarlierRecords& earlier);

}  // namespace lumenote::insights
