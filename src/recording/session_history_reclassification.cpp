// SessionHistory: changing the class of an activity from a session's replay,
// for that session only or as a rule.
#include "recording/session_history.hpp"

namespace lumenote::recording {

Result<void, SessionError> SessionHistory::reclassifyInSession(
    const Uuid& sessionID, const ClassifiedActivity& activity,
    classification::ActivityClassification choice) {
    auto loaded = store_.loadSession(sessionID);
    if (!loaded.ok()) {
        return fail(SessionError{SessionFailure::activityNotSaved, loaded.error().description});
    }
    if (!loaded->has_value()) {
        return fail(SessionError{SessionFailure::sessionNotFound, {}});
    }
    if ((*loaded)->isLive()) {
        // The recorder rewrites a live session at every save.
        return fail(SessionError{SessionFailure::editWhileActive, {}});
    }
    auto changed = reclassifyActivity(std::move(**loaded), activity, choice);
    if (!changed.ok()) {
        return fail(SessionError{SessionFailure::reclassifyFirstMethodSession, {}});
    }
    StoreChangeSet changes;
    for (ActivitySegment& segment : changed->segments) {
        segment.session = sessionID;
        changes.segments.push_back(std::move(segment));
    }
    StudySession row = std::move(*changed);
    row.segments.clear();
    row.confirmedNoInputIntervals.clear();
    changes.sessions.push_back(std::move(row));
    if (auto saved = save_(changes); !saved.ok()) {
        // One transaction: the segments and the totals stay as they were.
        return fail(SessionError{SessionFailure::activityNotSaved, saved.error().description});
    }
    return {};
}

Result<void, SessionError> SessionHistory::classifyAlways(
    const Uuid& sessionID, const ClassifiedActivity& activity,
    classification::ActivityClassification choice) {
    Result<void, classification::ClassificationError> rule;
    switch (activity.kind) {
        case ClassifiedActivity::Kind::website:
            rule = rules_.saveWebsiteClassification(activity.hostname.value_or(""), choice);
            break;
        case ClassifiedActivity::Kind::localPDF:
            rule = rules_.classifyLocalPDF(
                activity.pdfIdentifier.value_or(Uuid{}), choice,
                classification::LocalPDFClassificationScope::thisPDFInSession);
            break;
        case ClassifiedActivity::Kind::application:
            rule = rules_.saveApplicationClassification(activity.bundleIdentifier, activity.name,
                                                        choice);
            break;
    }
    if (!rule.ok()) {
        return fail(SessionError{SessionFailure::ruleNotSaved, rule.error().message()});
    }
    auto reclassified = reclassifyInSession(sessionID, activity, choice);
    if (!reclassified.ok() &&
        reclassified.error() == SessionFailure::reclassifyFirstMethodSession) {
        return {};
    }
    return reclassified;
}

}  // namespace lumenote::recording
