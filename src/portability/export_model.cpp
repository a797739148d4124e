#include "portability/export_model.hpp"

#include <algorithm>
#include <cmath>

#include "recording/focus_score_text.hpp"
#include "recording/session_figures.hpp"
#include "recording/study_time.hpp"

namespace lumenote::portability {

namespace {

namespace Tracking = recording::TrackingCalculationService;

std::optional<double> exportedScore(const recording::StudySession& session) {
    const auto score = Tracking::displayableFocusScore(
        session.focusScore, session.focusedDuration + session.distractedDuration);
    if (!score || !std::isfinite(*score)) {
        return std::nullopt;
    }
    return std::clamp(*score, 0.0, 100.0);
}

}  // namespace

ExportSegment makeExportSegment(const recording::ActivitySegment& segment) {
    ExportSegment exported;
    exported.startDate = segment.startDate;
    exported.endDate = segment.endDate;
    exported.duration = segment.duration;
    exported.resourceType = rawValue(segment.activitySource());
    exported.applicationDisplayName = segment.applicationName;
    if (segment.browserBundleIdentifier) {
        exported.browserDisplayName = segment.applicationName;
    }
    if (segment.hostname) {
        exported.hostname = *segment.hostname;
    }
    if (const auto& label = segment.pdfDisplayLabel()) {
        exported.pdfLabel = *label;
    }
    exported.classification = rawValue(segment.classification());
    exported.inactive = segment.isInactive;
    return exported;
}

ExportSession makeExportSession(const recording::StudySession& session, ExportContent content) {
    ExportSession exported;
    exported.id = session.id;
    exported.subject = session.subject;
    exported.goal = session.goal;
    if (const auto& notes = session.notes()) {
        exported.notes = *notes;
    }
    if (session.timingMode() == recording::SessionTimingMode::timer) {
        exported.plannedDuration = session.plannedDuration;
    }
    exported.startDate = session.startDate;
    exported.endDate = session.endDate;
    exported.status = rawValue(session.status());
    exported.timerDuration = session.timerDuration;
    exported.focusedDuration = session.focusedDuration;
    exported.distractedDuration = session.distractedDuration;
    exported.neutralDuration = session.neutralDuration;
    exported.unclassifiedDuration = session.unclassifiedDuration();
    exported.ignoredDuration = session.ignoredDuration();
    exported.inactiveDuration = session.inactiveDuration;
    exported.studyMode = rawValue(session.studyMode());
    exported.passiveStudyDuration = session.passiveStudyDuration();
    exported.confirmedBreakDuration = session.confirmedBreakDuration();
    exported.timingMode = rawValue(session.timingMode());
    exported.totalConfirmedStudyDuration = recording::studyTime(session);
    exported.focusScore = exportedScore(session);
    if (content == ExportContent::fieldsOnly) {
        return exported;
    }
    const recording::SessionRuns runs = recording::sessionRuns(session);
    exported.longestFocusBlock = runs.longestFocusedRun;
    exported.meaningfulInterruptions = runs.meaningfulInterruptions;
    if (content == ExportContent::segmentsAndRuns) {
        exported.segments.reserve(session.segments.size());
        for (const recording::ActivitySegment& segment : session.segments) {
            exported.segments.push_back(makeExportSegment(segment));
        }
    }
    return exported;
}

}  // namespace lumenote::portability
