#include "insights/personal_bests.hpp"

namespace lumenote::insights {

using recording::PersonalBest;
using recording::PersonalBestKind;

bool beatsRecord(double value, double record, double margin) {
    return value >= record + margin;
}

std::vector<PersonalBest> recordBests(const SessionBestFigures& session,
                                      const EarlierRecords& earlier) {
    std::vector<PersonalBest> bests;
    if (earlier.sessions < kMinimumEarlierSessionsForBest) {
        return bests;
    }
    if (earlier.longestFocusedRun &&
        beatsRecord(session.longestFocusedRun, *earlier.longestFocusedRun,
                    kDurationBestMarginSeconds)) {
        bests.push_back({PersonalBestKind::longestFocus, session.longestFocusedRun});
    }
    if (session.focusScore && earlier.scoredSessions >= kMinimumEarlierSessionsForBest &&
        beatsRecord(*session.focusScore, earlier.highestFocusScore, kFocusScoreBestMarginPoints)) {
        bests.push_back({PersonalBestKind::highestFocusScore, *session.focusScore});
    }
    if (beatsRecord(session.duration, earlier.longestSession, kDurationBestMarginSeconds)) {
        bests.push_back({PersonalBestKind::longestSession, session.duration});
    }
    return bests;
}

}  // namespace lumenote::insights
