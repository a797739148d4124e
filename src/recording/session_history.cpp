#include "recording/session_history.hpp"

#include <fmt/format.h>

#include "foundation/text.hpp"
#include "recording/session_study_state_editor.hpp"
#include "recording/tracking_calculation.hpp"

namespace lumenote::recording {

namespace {

SessionError storeFailure(SessionFailure failure, const StoreError& error) {
    return SessionError{failure, error.description};
}

}  // namespace

SessionHistory::SessionHistory(SessionHistoryDependencies dependencies)
    : store_(dependencies.store),
      rules_(dependencies.rules),
      preferences_(dependencies.preferences),
      monotonicClock_(dependencies.monotonicClock),
      wallClock_(dependencies.wallClock),
      save_(saveOperationOr(std::move(dependencies.save), store_)) {}

Result<bool, SessionError> SessionHistory::holdsLiveSession(SessionFailure whenUnreadable) {
    auto live = store_.liveSessions();
    if (!live.ok()) {
        return fail(storeFailure(whenUnreadable, live.error()));
    }
    return !live->empty();
}

Result<void, SessionError> SessionHistory::bringTotalsUpToDate() {
    if (preferences_.derivedRevision() == kDerivedTotalsRevision) {
        return {};
    }
    if (auto recalculated = recalculateStoredTotals(); !recalculated.ok()) {
        return recalculated;
    }
    preferences_.setDerivedRevision(kDerivedTotalsRevision);
    return {};
}

Result<void, SessionError> SessionHistory::recalculateStoredTotals() {
    auto sessions =
        store_.listSessions(SessionQuery{.newestFirst = false, .includeChildren = true});
    if (!sessions.ok()) {
        return fail(SessionError{SessionFailure::totalsNotRecalculated, {}});
    }
    StoreChangeSet changes;
    changes.durable = true;
    for (StudySession& session : *sessions) {
        if (session.isLive()) {
            continue;
        }
        const auto version = TrackingCalculationService::effectiveCalculationVersion(session);
        if (version == TrackingCalculationVersion::v1) {
            // Sessions of the first method keep the totals they were shown with.
            continue;
        }
        const Date end = session.endDate.value_or(session.startDate);
        TrackingCalculationService::applyTotals(
            TrackingCalculationService::calculateSessionTotals(session, end, version), session);
        session.segments.clear();
        session.confirmedNoInputIntervals.clear();
        changes.sessions.push_back(std::move(session));
    }
    if (changes.empty()) {
        return {};
    }
    if (!save_(changes).ok()) {
        return fail(SessionError{SessionFailure::totalsNotRecalculated, {}});
    }
    return {};
}

Result<void, SessionError> SessionHistory::editSession(const Uuid& id, const std::string& subject,
                                                       const std::string& goal,
                                                       const std::optional<std::string>& notes) {
    const std::string newSubject = text::trimmed(subject);
    const std::string newGoal = text::trimmed(goal);
    std::optional<std::string> newNotes;
    if (notes) {
        newNotes = text::trimmed(*notes);
        if (newNotes->empty()) {
            newNotes.reset();
        }
    }
    if (newSubject.empty()) {
        return fail(SessionError{SessionFailure::subjectEmpty, {}});
    }
    if (auto tooLong = subjectLengthRefusal(newSubject)) {
        return fail(std::move(*tooLong));
    }
    if (text::characterCount(newGoal) > kGoalCharacterLimit) {
        return fail(SessionError{SessionFailure::goalTooLong, std::to_string(kGoalCharacterLimit)});
    }
    if (newNotes && text::characterCount(*newNotes) > kNotesCharacterLimit) {
        return fail(
            SessionError{SessionFailure::notesTooLong, std::to_string(kNotesCharacterLimit)});
    }
    auto loaded = store_.loadSession(id);
    if (!loaded.ok()) {
        return fail(storeFailure(SessionFailure::activityNotSaved, loaded.error()));
    }
    if (!loaded->has_value()) {
        return fail(SessionError{SessionFailure::sessionNotFound, {}});
    }
    StudySession session = std::move(**loaded);
    if (session.isLive()) {
        // The recorder rewrites a live session's row at every save, which
        // would silently undo the edit.
        return fail(SessionError{SessionFailure::editWhileActive, {}});
    }
    session.segments.clear();
    session.confirmedNoInputIntervals.clear();
    session.subject = newSubject;
    session.goal = newGoal;
    session.setNotes(newNotes);
    StoreChangeSet changes;
    changes.sessions.push_back(std::move(session));
    if (auto saved = save_(changes); !saved.ok()) {
        return fail(storeFailure(SessionFailure::activityNotSaved, saved.error()));
    }
    return {};
}

Result<void, SessionError> SessionHistory::deleteSessions(const std::vector<Uuid>& ids) {
    auto live = holdsLiveSession(SessionFailure::deleteFailed);
    if (!live.ok()) {
        return fail(live.error());
    }
    if (*live) {
        return fail(SessionError{SessionFailure::deleteWhileActive, {}});
    }
    SessionDeletionBatch batch{Uuid::generate(), {}};
    StoreChangeSet changes;
    changes.durable = true;
    for (const Uuid& id : ids) {
        auto loaded = store_.loadSession(id);
        if (!loaded.ok()) {
            return fail(storeFailure(SessionFailure::deleteFailed, loaded.error()));
        }
        if (!loaded->has_value()) {
            continue;
        }
        auto pdfs = store_.pdfIdentities(id);
        if (!pdfs.ok()) {
            return fail(storeFailure(SessionFailure::deleteFailed, pdfs.error()));
        }
        batch.snapshots.push_back({std::move(**loaded), std::move(*pdfs)});
        changes.deletedSessions.push_back(id);
    }
    if (batch.snapshots.empty()) {
        return fail(SessionError{SessionFailure::sessionNotFound, {}});
    }
    if (auto saved = save_(changes); !saved.ok()) {
        return fail(storeFailure(SessionFailure::deleteFailed, saved.error()));
    }
    sessionDeletionUndoDescription_ = fmt::format("{} sessions deleted", batch.snapshots.size());
    pendingSessionDeletion_ = std::move(batch);
    deletionUndoDeadline_ = monotonicClock_.now() + kDeletionUndoSeconds;
    deletionUndoChanged_.notify();
    return {};
}

Result<void, SessionError> SessionHistory::undoSessionDeletion() {
    if (!pendingSessionDeletion_) {
        return fail(SessionError{SessionFailure::undoDeleteFailed, "nothing to restore"});
    }
    StoreChangeSet changes;
    changes.durable = true;
    for (const SessionDeletionSnapshot& snapshot : pendingSessionDeletion_->snapshots) {
        StudySession row = snapshot.session;
        changes.segments.insert(changes.segments.end(), row.segments.begin(), row.segments.end());
        changes.confirmedIntervals.insert(changes.confirmedIntervals.end(),
                                          row.confirmedNoInputIntervals.begin(),
                                          row.confirmedNoInputIntervals.end());
        changes.pdfIdentities.insert(changes.pdfIdentities.end(),
                                     snapshot.localPDFIdentities.begin(),
                                     snapshot.localPDFIdentities.end());
        row.segments.clear();
        row.confirmedNoInputIntervals.clear();
        changes.sessions.push_back(std::move(row));
    }
    if (auto saved = save_(changes); !saved.ok()) {
        return fail(storeFailure(SessionFailure::undoDeleteFailed, saved.error()));
    }
    endUndoOffer();
    return {};
}

void SessionHistory::tick() {
    if (deletionUndoDeadline_ && monotonicClock_.now() >= *deletionUndoDeadline_) {
        endUndoOffer();
    }
}

void SessionHistory::endUndoOffer() {
    const bool offered = pendingSessionDeletion_.has_value();
    pendingSessionDeletion_.reset();
    sessionDeletionUndoDescription_.reset();
    deletionUndoDeadline_.reset();
    if (offered) {
        deletionUndoChanged_.notify();
    }
}

Result<void, SessionError> SessionHistory::deleteAllSessions() {
    auto live = holdsLiveSession(SessionFailure::deleteAllFailed);
    if (!live.ok()) {
        return fail(live.error());
    }
    if (*live) {
        return fail(SessionError{SessionFailure::deleteAllWhileActive, {}});
    }
    if (auto deleted = store_.deleteAllSessions(); !deleted.ok()) {
        return fail(storeFailure(SessionFailure::deleteAllFailed, deleted.error()));
    }
    rules_.endSession();
    return {};
}

Result<void, SessionError> SessionHistory::resetAllData() {
    auto live = holdsLiveSession(SessionFailure::resetFailed);
    if (!live.ok()) {
        return fail(live.error());
    }
    if (*live) {
        return fail(SessionError{SessionFailure::resetWhileActive, {}});
    }
    if (auto deleted = store_.deleteAllSessions(); !deleted.ok()) {
        return fail(storeFailure(SessionFailure::resetFailed, deleted.error()));
    }
    if (auto cleared = rules_.clearAll(); !cleared.ok()) {
        // Clearing the rules has sentences of its own; the PDF records share
        // the reset's.
        if (cleared.error().failure ==
            classification::ClassificationFailure::pdfRecordsNotCleared) {
            return fail(SessionError{SessionFailure::resetFailed, cleared.error().detail});
        }
        return fail(SessionError{SessionFailure::rulesNotCleared, cleared.error().message()});
    }
    preferences_.resetApplicationPreferences();
    endUndoOffer();
    return {};
}

Result<StudyStateEdit, SessionError> SessionHistory::relabel(
    const Uuid& sessionID, Date from, Date to, std::optional<ConfirmedStudyState> state,
    ConfirmedStudyStateSource source) {
    auto loaded = store_.loadSession(sessionID);
    if (!loaded.ok()) {
        return fail(SessionError(SessionFailure::activityNotSaved, loaded.error().description));
    }
    auto outcome =
        SessionStudyStateEditor::applyEdit(*loaded, from, to, state, source, wallClock_.now());
    if (!outcome.ok()) {
        return fail(studyStateEditFailure(outcome.error()));
    }
    StoreChangeSet changes;
    changes.confirmedIntervals = confirmationsToSave(*outcome);
    StudySession row = outcome->session;
    row.segments.clear();
    row.confirmedNoInputIntervals.clear();
    changes.sessions.push_back(std::move(row));
    if (auto saved = save_(changes); !saved.ok()) {
        // A failed save leaves the previous confirmations as they were.
        return fail(SessionError(SessionFailure::activityNotSaved, saved.error().description));
    }
    return outcome->edit;
}

}  // namespace lumenote::recording
