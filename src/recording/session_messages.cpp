#include "recording/session_messages.hpp"

#include <fmt/format.h>

#include "foundation/text.hpp"

namespace lumenote::recording {

std::string sessionFailureMessage(SessionFailure failure, std::string_view detail) {
    switch (failure) {
        case SessionFailure::sessionAlreadyActive:
            return "A study session is already active.";
        case SessionFailure::subjectMissing:
            return "Add a subject.";
        case SessionFailure::invalidDuration:
            return "Choose a valid duration.";
        case SessionFailure::activityNotSaved:
            return fmt::format("Study activity could not be saved: {}", detail);
        case SessionFailure::totalsNotRecalculated:
            return "Study session totals could not be recalculated.";
        case SessionFailure::subjectEmpty:
            return "Subject cannot be empty.";
        case SessionFailure::subjectTooLong:
            return fmt::format("Subject must be {} characters or fewer.", detail);
        // Goal and notes over their limits are refused, never cut: a cut
        // would silently lose what the user wrote.
        case SessionFailure::goalTooLong:
            return fmt::format("Goal must be {} characters or fewer.", detail);
        case SessionFailure::notesTooLong:
            return fmt::format("Notes must be {} characters or fewer.", detail);
        case SessionFailure::deleteWhileActive:
            return "End the active session before deleting session history.";
        case SessionFailure::deleteFailed:
            return fmt::format("Lumenote could not delete the selected session(s): {}", detail);
        case SessionFailure::undoDeleteFailed:
            return fmt::format("Lumenote could not restore the deleted session(s): {}", detail);
        case SessionFailure::deleteAllWhileActive:
            return "End the active session before deleting all sessions.";
        case SessionFailure::deleteAllFailed:
            return fmt::format("Lumenote could not delete all sessions: {}", detail);
        case SessionFailure::resetWhileActive:
            return "End the active session before resetting Lumenote.";
        case SessionFailure::resetFailed:
            return fmt::format("Could not reset Lumenote data: {}", detail);
        case SessionFailure::sessionNotFound:
            return "This session is no longer available.";
        case SessionFailure::noActiveSession:
            return "No study session is active.";
        case SessionFailure::sessionNotRunning:
            return "The study session is not running.";
        case SessionFailure::sessionNotPaused:
            return "The study session is not paused.";
        case SessionFailure::noPassiveStudyPeriod:
            return "No Studying away from Mac period is running.";
        case SessionFailure::noPendingPrompt:
            return "There is no question about time without input to answer.";
        case SessionFailure::noRecoverableSession:
            return "There is no unfinished session to recover.";
        case SessionFailure::recoveryPending:
            return "Lumenote found an unfinished session. Continue it or end it before starting "
                   "a new one.";
        case SessionFailure::rulesNotCleared:
        case SessionFailure::rulesNotLoaded:
            return std::string(detail);
        case SessionFailure::editWhileActive:
            return "End the active session before editing it.";
        case SessionFailure::endThereNotOffered:
            return "Ending the session there is offered only after a run of 45 minutes or more "
                   "without input.";
        case SessionFailure::rangeOutsideSession:
            return "That time range falls outside this session.";
        case SessionFailure::emptyRange:
            return "Select a range longer than zero seconds.";
        case SessionFailure::notANoInputPeriod:
            return "Lumenote only relabels time when this Mac recorded no keyboard or mouse "
                   "input. Recorded computer activity is never rewritten.";
        case SessionFailure::unsupportedCalculationVersion:
            return "This session was recorded before confirmed off-Mac study existed, so "
                   "Lumenote keeps its original totals rather than reinterpreting them.";
        case SessionFailure::noStudyStateEditToUndo:
            return "There is no change of study state to undo.";
        case SessionFailure::checkpointNotSaved:
            return "The recovery checkpoint could not be saved. Persisted study activity "
                   "remains available.";
        case SessionFailure::damagedCheckpointIsolated:
            return "A damaged recovery checkpoint was isolated. Persisted study activity "
                   "remains available.";
        case SessionFailure::recoveryFailed:
            return fmt::format("Lumenote could not recover an unfinished session: {}", detail);
        case SessionFailure::checkpointNotRemoved:
            return "The completed recovery checkpoint could not be removed. It will be "
                   "reconciled safely on the next launch.";
        case SessionFailure::personalBestsNotChecked:
            return fmt::format("Lumenote could not compare this session with your history: {}",
                               detail);
        case SessionFailure::reclassifyFirstMethodSession:
            return "This session was recorded under the first calculation method, so Lumenote "
                   "keeps its original totals rather than reclassifying its activity.";
        case SessionFailure::ruleNotSaved:
            return std::string(detail);
    }
    return {};
}

std::optional<SessionError> subjectLengthRefusal(std::string_view subject) {
    if (text::characterCount(text::trimmed(subject)) <= kSubjectCharacterLimit) {
        return std::nullopt;
    }
    return SessionError{SessionFailure::subjectTooLong, std::to_string(kSubjectCharacterLimit)};
}

}  // namespace lumenote::recording
