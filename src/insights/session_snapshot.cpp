#include "insights/session_snapshot.hpp"

#include <algorithm>
#include <map>
#include <unordered_map>
#include <utility>

#include "foundation/numeric.hpp"
#include "recording/focus_runs.hpp"
#include "recording/study_time.hpp"
#include "recording/tracking_calculation.hpp"

namespace lumenote::insights {

namespace {

namespace Tracking = recording::TrackingCalculationService;
using Tracking::AccountedState;

std::string activityLabel(const recording::ActivitySegment& segment) {
    switch (segment.activitySource()) {
        case recording::ActivitySourceType::website:
            if (segment.hostname && !segment.hostname->empty()) {
                return *segment.hostname;
            }
            break;
        case recording::ActivitySourceType::localPDF:
            if (segment.pdfDisplayLabel() && !segment.pdfDisplayLabel()->empty()) {
                return *segment.pdfDisplayLabel();
            }
            break;
        default:
            break;
    }
    return segment.applicationName.empty() ? segment.bundleIdentifier : segment.applicationName;
}

recording::TrackingCalculationService::TrackingCalculationResult calculated(
    const recording::StudySession& session) {
    return Tracking::calculateSessionTotals(
        session, session.endDate.value_or(session.startDate.addingSeconds(session.timerDuration)),
        Tracking::effectiveCalculationVersion(session));
}

}  // namespace

double longestFocusedRunOf(const recording::StudySession& session) {
    return Tracking::longestFocusedRun(calculated(session).contributions);
}

SessionSnapshot makeSessionSnapshot(const recording::StudySession& session, SnapshotDetail detail) {
    SessionSnapshot snapshot;
    snapshot.id = session.id;
    snapshot.subject = session.subject;
    snapshot.startDate = session.startDate;
    snapshot.duration = clampDuration(session.timerDuration);
    snapshot.calculationVersion = session.calculationVersion();
    snapshot.focused = clampDuration(session.focusedDuration);
    snapshot.distracted = clampDuration(session.distractedDuration);
    snapshot.neutral = clampDuration(session.neutralDuration);
    snapshot.unclassified = clampDuration(session.unclassifiedDuration());
    snapshot.passiveStudy = clampDuration(session.passiveStudyDuration());
    snapshot.studyTime = recording::studyTime(session);
    if (detail == SnapshotDetail::totals) {
        return snapshot;
    }

    const auto calculation = calculated(session);
    snapshot.longestFocusedRun = Tracking::longestFocusedRun(calculation.contributions);

    // The first segment with an identifier names it: later segments of the
    // same application may carry a renamed window title but the same id. Only
    // the segment is kept; the label is made for the activities listed.
    std::unordered_map<std::string, const recording::ActivitySegment*> namers;
    namers.reserve(session.segments.size());
    for (const recording::ActivitySegment& segment : session.segments) {
        namers.try_emplace(Tracking::makeAccountingSample(segment).stableIdentifier, &segment);
    }
    std::map<std::pair<std::string, AccountedState>, ActivityTime> byActivity;
    for (const auto& piece : calculation.contributions) {
        if (piece.classification != AccountedState::focused &&
            piece.classification != AccountedState::distracting) {
            continue;
        }
        if (!(piece.duration > 0.0)) {
            continue;
        }
        const auto found = namers.find(piece.stableIdentifier);
        std::string label =
            found == namers.end() ? piece.stableIdentifier : activityLabel(*found->second);
        ActivityTime& time = byActivity[{label, piece.classification}];
        time.label = std::move(label);
        time.classification = piece.classification;
        time.seconds = addClampedDuration(time.seconds, piece.duration);
        ++time.intervals;
    }
    for (auto& entry : byActivity) {
        snapshot.activities.push_back(std::move(entry.second));
    }
    std::stable_sort(
        snapshot.activities.begin(), snapshot.activities.end(),
        [](const ActivityTime& a, const ActivityTime& b) { return a.seconds > b.seconds; });
    return snapshot;
}

Result<std::vector<SessionSnapshot>, StoreError> readAnalyticsSnapshots(
    recording::SessionHistoryReader& reader, const recording::SessionRange& range, Date now,
    const SetupTestSessionPredicate& isSetupTestSession, SnapshotDetail detail) {
    std::vector<SessionSnapshot> snapshots;
    const bool withSegments = detail == SnapshotDetail::full;
    auto walked =
        reader.forEachSession({.range = range, .includeChildren = withSegments},
                              [&](const recording::StudySession& session) {
                                  if (countsForAnalytics(session, now, isSetupTestSession)) {
                                      snapshots.push_back(makeSessionSnapshot(session, detail));
                                  }
                                  return true;
                              });
    if (!walked) {
        return fail(walked.error());
    }
    return snapshots;
}

}  // namespace lumenote::insights
