// Answers to the no-input question and relabelling of time without input, in
// the running session or (through the history) a finished one. Recorded
// activity stays as it is: only confirmations are added and replaced ones are
// stamped superseded.
#include "recording/session_manager.hpp"
#include "recording/session_study_state_editor.hpp"

namespace lumenote::recording {

Result<StudyStateEdit, SessionError> SessionManager::relabel(
    const Uuid& sessionID, Date from, Date to, std::optional<ConfirmedStudyState> state,
    ConfirmedStudyStateSource source) {
    auto outcome = activeSession_ && activeSession_->id == sessionID
                       ? relabelActiveSession(from, to, state, source)
                       : history_.relabel(sessionID, from, to, state, source);
    if (!outcome.ok()) {
        return outcome;
    }
    lastStudyStateEdit_ = *outcome;
    publish(ObservedField::lastStudyStateEdit);
    return outcome;
}

// The active session's confirmations live here until it ends: they are edited
// in memory and the changes saved, the session's row staying the recorder's.
Result<StudyStateEdit, SessionError> SessionManager::relabelActiveSession(
    Date from, Date to, std::optional<ConfirmedStudyState> state,
    ConfirmedStudyStateSource source) {
    StudySession session = *activeSession_;
    session.segments = sessionSegments_;
    session.confirmedNoInputIntervals = sessionConfirmations_;
    auto outcome =
        SessionStudyStateEditor::applyEdit(session, from, to, state, source, wallClock_.now());
    if (!outcome.ok()) {
        return fail(studyStateEditFailure(outcome.error()));
    }
    StoreChangeSet changes;
    changes.confirmedIntervals = confirmationsToSave(*outcome);
    if (auto saved = persistenceSaveOperation_(changes); !saved.ok()) {
        // A failed save leaves the previous confirmations as they were.
        return fail(SessionError(SessionFailure::activityNotSaved, saved.error().description));
    }
    sessionConfirmations_ = outcome->session.confirmedNoInputIntervals;
    return outcome->edit;
}

Result<StudyStateEdit, SessionError> SessionManager::undoLastStudyStateEdit() {
    if (!lastStudyStateEdit_) {
        return fail(SessionFailure::noStudyStateEditToUndo);
    }
    const StudyStateEdit edit = *lastStudyStateEdit_;
    return relabel(edit.sessionID, edit.startDate, edit.endDate, edit.previousState);
}

Result<void, SessionError> SessionManager::answerNoInputPrompt(NoInputPromptAnswer answer,
                                                               std::optional<Date> from,
                                                               std::optional<Date> to) {
    if (!pendingNoInputPrompt_) {
        return fail(SessionFailure::noPendingPrompt);
    }
    const NoInputClassificationPrompt prompt = *pendingNoInputPrompt_;
    switch (answer) {
        case NoInputPromptAnswer::leaveUnconfirmed:
            break;
        case NoInputPromptAnswer::passiveStudy:
        case NoInputPromptAnswer::confirmedBreak: {
            const auto state = answer == NoInputPromptAnswer::passiveStudy
                                   ? ConfirmedStudyState::passiveStudy
                                   : ConfirmedStudyState::confirmedBreak;
            auto edited = relabel(prompt.sessionID, from.value_or(prompt.startDate),
                                  to.value_or(prompt.endDate), state,
                                  ConfirmedStudyStateSource::returnPrompt);
            if (!edited.ok()) {
                return fail(edited.error());
            }
            break;
        }
        case NoInputPromptAnswer::endThere:
            if (!asksToEndSession(prompt)) {
                return fail(SessionFailure::endThereNotOffered);
            }
            if (!activeSession_ || activeSession_->id != prompt.sessionID ||
                !pendingNoInputPromptStart_) {
                return fail(SessionFailure::noActiveSession);
            }
            endAt(*pendingNoInputPromptStart_,
                  prompt.timerDurationAtStartDate.value_or(
                      timerValueAt(pendingNoInputPromptStart_->monotonicTime)));
            break;
    }
    pendingNoInputPrompt_.reset();
    pendingNoInputPromptStart_.reset();
    publish(ObservedField::pendingNoInputPrompt);
    return {};
}

// Ending there keeps everything recorded: the open stretch is closed now and
// stored like any other, so the no-input stretch and the activity after input
// returned stay in the session's raw activity. The session's end date and
// timer go back to the run's start; the totals count no time after that end
// (the calculation takes time placed after the end date out first).
void SessionManager::endAt(TrackingInstant instant, double timerValue) {
    if (auto closed = timelineEngine_.finalize(nowInstant())) {
        recordClosedInterval(*closed);
    }
    finishSession(instant, timerValue, StudySessionStatus::completed);
}

}  // namespace lumenote::recording
