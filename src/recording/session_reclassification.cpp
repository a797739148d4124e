#include "recording/session_reclassification.hpp"

#include "recording/replay_rows.hpp"
#include "recording/tracking_calculation.hpp"

namespace lumenote::recording {

namespace Tracking = TrackingCalculationService;

std::optional<ClassifiedActivity> classifiedActivityOf(const ActivitySegment& segment) {
    if (segment.isInactive) {
        return std::nullopt;
    }
    ClassifiedActivity activity;
    activity.bundleIdentifier = segment.bundleIdentifier;
    activity.name = segmentTitle(segment);
    switch (segment.activitySource()) {
        case ActivitySourceType::system:
            return std::nullopt;
        case ActivitySourceType::website:
            if (!segment.hostname || segment.hostname->empty()) {
                return std::nullopt;
            }
            activity.kind = ClassifiedActivity::Kind::website;
            activity.hostname = segment.hostname;
            return activity;
        case ActivitySourceType::localPDF:
            if (!segment.pdfIdentifier) {
                return std::nullopt;
            }
            activity.kind = ClassifiedActivity::Kind::localPDF;
            activity.pdfIdentifier = segment.pdfIdentifier;
            return activity;
        case ActivitySourceType::application:
        case ActivitySourceType::browserFallback:
            break;
    }
    if (activity.bundleIdentifier.empty()) {
        return std::nullopt;
    }
    activity.kind = ClassifiedActivity::Kind::application;
    return activity;
}

namespace {

// Whether `segment` is computer activity of `activity`, keyed as its rule
// would be: a website or a PDF is the same activity in any browser, and the
// name is how the activity is shown, not what identifies it.
bool recordsActivity(const ActivitySegment& segment, const ClassifiedActivity& activity) {
    const auto own = classifiedActivityOf(segment);
    if (!own || own->kind != activity.kind) {
        return false;
    }
    switch (activity.kind) {
        case ClassifiedActivity::Kind::website:
            return own->hostname == activity.hostname;
        case ClassifiedActivity::Kind::localPDF:
            return own->pdfIdentifier == activity.pdfIdentifier;
        case ClassifiedActivity::Kind::application:
            break;
    }
    return own->bundleIdentifier == activity.bundleIdentifier;
}

}  // namespace

Result<StudySession, ReclassificationError> reclassifyActivity(
    StudySession session, const ClassifiedActivity& activity,
    classification::ActivityClassification classification) {
    const auto version = Tracking::effectiveCalculationVersion(session);
    if (version == TrackingCalculationVersion::v1) {
        return fail(ReclassificationError::firstMethodSession);
    }
    for (ActivitySegment& segment : session.segments) {
        if (recordsActivity(segment, activity)) {
            segment.setClassification(classification);
        }
    }
    const Date end =
        session.endDate.value_or(session.startDate.addingSeconds(session.timerDuration));
    Tracking::applyTotals(Tracking::calculateSessionTotals(session, end, version), session);
    return session;
}

}  // namespace lumenote::recording
