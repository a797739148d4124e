// The recorder's user-facing failures: one case each, one fixed sentence each.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace lumenote::recording {

enum class SessionFailure {
    sessionAlreadyActive,
    subjectMissing,
    invalidDuration,
    activityNotSaved,  // {error}
    totalsNotRecalculated,
    subjectEmpty,
    subjectTooLong,  // the limit
    goalTooLong,     // the limit
    notesTooLong,    // the limit
    deleteWhileActive,
    deleteFailed,      // {error}
    undoDeleteFailed,  // {error}
    deleteAllWhileActive,
    deleteAllFailed,  // {error}
    resetWhileActive,
    resetFailed,  // {error}
    sessionNotFound,
    noActiveSession,
    sessionNotRunning,
    sessionNotPaused,
    noPassiveStudyPeriod,
    noPendingPrompt,
    noRecoverableSession,
    recoveryPending,     // a start while the recovery question is open
    endThereNotOffered,  // "end the session there" answered to a short run
    editWhileActive,     // editing the session that is being recorded
    rulesNotCleared,     // {error}: the rules' own sentence, as a reset reports it
    rulesNotLoaded,      // {error}: the rules' own sentence, as start-up reports it
    // Relabelling time without input (see session_study_state_editor.hpp).
    rangeOutsideSession,
    emptyRange,
    notANoInputPeriod,
    unsupportedCalculationVersion,
    noStudyStateEditToUndo,
    // The recovery checkpoint and the offer to recover.
    checkpointNotSaved,
    damagedCheckpointIsolated,
    recoveryFailed,  // {error}
    checkpointNotRemoved,
    personalBestsNotChecked,  // {error}
    // Changing the class of activity in a finished session.
    reclassifyFirstMethodSession,
    ruleNotSaved,  // {error}: the rules' own sentence
};

// The sentence shown for `failure`; `detail` fills its {error} or limit.
std::string sessionFailureMessage(SessionFailure failure, std::string_view detail = {});

// A failure with what fills its sentence (a store error, a limit): the one
// error type the recording services return. Front ends show message().
struct SessionError {
    SessionError(SessionFailure failureCase = SessionFailure::activityNotSaved,
                 std::string filling = {})
        : failure(failureCase), detail(std::move(filling)) {}

    SessionFailure failure;
    std::string detail;

    std::string message() const { return sessionFailureMessage(failure, detail); }
    // An error is of the failure it names, whatever its detail.
    friend bool operator==(const SessionError& error, SessionFailure failureCase) {
        return error.failure == failureCase;
    }
};

// Limits of the texts of a finished session, in characters (Unicode scalar values).
inline constexpr std::size_t kSubjectCharacterLimit = 200;
inline constexpr std::size_t kGoalCharacterLimit = 500;
inline constexpr std::size_t kNotesCharacterLimit = 5000;

// The refusal of a subject that has more than kSubjectCharacterLimit
// characters once trimmed; nullopt when it fits. A session is started and
// edited under the same limit, so that every stored subject can be edited.
std::optional<SessionError> subjectLengthRefusal(std::string_view subject);

}  // namespace lumenote::recording
