#include "insights/history_personal_bests.hpp"

#include <algorithm>
#include <utility>
#include <vector>

#include "foundation/numeric.hpp"
#include "insights/focus_candidates.hpp"
#include "insights/session_snapshot.hpp"
#include "recording/study_time.hpp"

namespace lumenote::insights {

namespace {

using recording::PersonalBest;
using recording::PersonalBestKind;
using recording::StudySession;

struct HistoryWalk {
    EarlierRecords records;
    double dayStudyTime = 0.0;
    FocusCandidates focusCandidates;
};

// The record `run` is judged against: the longest run among the candidates
// checked, which either holds the record or shows that none of them does.
// nullopt when more than kMaximumFocusRunsChecked would have to be loaded.
Result<std::optional<double>, StoreError> settleLongestRun(recording::RecordingStore& store,
                                                           FocusCandidates candidates, double run) {
    const std::size_t count = candidates.count();
    double longest = 0.0;
    for (const FocusCandidate& candidate : std::move(candidates).largestFirst()) {
        auto loaded = store.loadSession(candidate.id);
        if (!loaded) {
            return fail(loaded.error());
        }
        if (!*loaded) {
            continue;  // deleted since the walk
        }
        longest = std::max(longest, longestFocusedRunOf(**loaded));
        if (!beatsRecord(run, longest, kDurationBestMarginSeconds)) {
            return std::optional<double>(longest);  // the record holds
        }
    }
    if (count > kMaximumFocusRunsChecked) {
        return std::optional<double>();  // the rest were never checked
    }
    return std::optional<double>(longest);
}

}  // namespace

Result<std::vector<PersonalBest>, StoreError> HistoryPersonalBests::personalBestsOf(
    const StudySession& finished, Date now) {
    auto& d = dependencies_;
    if (finished.status() != recording::StudySessionStatus::completed ||
        !countsForAnalytics(finished, now, d.isSetupTestSession)) {
        return std::vector<PersonalBest>{};
    }
    const SessionBestFigures figures{longestFocusedRunOf(finished), finished.focusScore,
                                     clampDuration(finished.timerDuration)};
    const Date dayStart = d.calendar.startOfDay(finished.startDate);
    const recording::SessionRange day{dayStart, d.calendar.addingDays(dayStart, 1)};

    HistoryWalk walk;
    auto walked = d.reader.forEachSession({}, [&](const StudySession& session) {
        if (session.id == finished.id || !countsForAnalytics(session, now, d.isSetupTestSession)) {
            return true;
        }
        EarlierRecords& records = walk.records;
        ++records.sessions;
        records.longestSession =
            std::max(records.longestSession, clampDuration(session.timerDuration));
        if (session.focusScore) {
            ++records.scoredSessions;
            records.highestFocusScore = std::max(records.highestFocusScore, *session.focusScore);
        }
        // A session whose Focused total the new run beats cannot hold the record.
        const double focused = clampDuration(session.focusedDuration);
        if (!beatsRecord(figures.longestFocusedRun, focused, kDurationBestMarginSeconds)) {
            walk.focusCandidates.add({focused, session.id});
        }
        if (day.contains(session.startDate)) {
            walk.dayStudyTime += recording::studyTime(session);
        }
        return true;
    });
    if (!walked) {
        return fail(walked.error());
    }
    if (walk.records.sessions >= kMinimumEarlierSessionsForBest) {
        auto settled =
            settleLongestRun(d.store, std::move(walk.focusCandidates), figures.longestFocusedRun);
        if (!settled) {
            return fail(settled.error());
        }
        walk.records.longestFocusedRun = *settled;
    }

    std::vector<PersonalBest> bests;
    const long long goalMinutes = d.preferences.dailyStudyGoalMinutes();
    const double dayStudyTime = walk.dayStudyTime + recording::studyTime(finished);
    if (goalMinutes >= 1 && dayStudyTime >= static_cast<double>(goalMinutes) * 60.0 &&
        d.preferences.acknowledgeDailyGoalIfNeeded(finished.startDate, d.calendar)) {
        bests.push_back({PersonalBestKind::dailyGoalComplete, dayStudyTime});
    }
    const auto records = recordBests(figures, walk.records);
    bests.insert(bests.end(), records.begin(), records.end());
    return bests;
}

}  // namespace lumenote::insights
