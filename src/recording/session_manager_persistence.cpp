// Persistence: saving through the store, recalculation, editing, deletion with
// undo, and reset.
#include <fmt/format.h>

#include "foundation/text.hpp"
#include "recording/recording_preferences.hpp"
#include "recording/session_manager.hpp"
#include "recording/tracking_calculation.hpp"

namespace lumenote {

void SessionManager::queueSession() {
    StudySession row = *activeSession_;
    row.segments.clear();
    row.confirmedNoInputIntervals.clear();
    pendingChanges_.sessions.push_back(std::move(row));
}

void SessionManager::queueOpenSegment(TrackingInstant instant) {
    const auto& open = timelineEngine_.openInterval();
    if (!open || !openPersistedSegment_) {
        return;
    }
    const double duration = std::max(0.0, instant.monotonicTime - open->start.monotonicTime);
    if (duration <= 0.0) {
        return;
    }
    openPersistedSegment_->endDate = instant.wallDate;
    openPersistedSegment_->duration = duration;
    pendingChanges_.segments.push_back(*openPersistedSegment_);
    openSegmentWritten_ = true;
    noteQueuedBoundary(instant);
}

bool SessionManager::save(bool durable) {
    if (pendingChanges_.empty()) {
        return true;
    }
    pendingChanges_.durable = pendingChanges_.durable || durable;
    auto saved = persistenceSaveOperation(pendingChanges_);
    if (!saved.ok()) {
        // The unsaved changes stay queued and go out with the next save.
        reportFailure(SessionFailure::activityNotSaved, saved.error().description);
        return false;
    }
    pendingChanges_ = StoreChangeSet{};
    if (unsavedBoundary_) {
        confirmedBoundary_ = *unsavedBoundary_;
        unsavedBoundary_.reset();
        writeCheckpoint(nowInstant());
    }
    return true;
}

void SessionManager::startUp() {
    for (const ClassificationError& problem : rules_.load()) {
        lastError_ = problem.message();
    }
    if (preferences_.derivedRevision() != kDerivedTotalsRevision) {
        if (recalculateStoredTotals().ok()) {
            preferences_.setDerivedRevision(kDerivedTotalsRevision);
        }
    }
    lookForUnfinishedSession();
    if (lastError_) {
        publish(ObservedField::lastError);
    }
}

Result<void, SessionFailure> SessionManager::recalculateStoredTotals() {
    auto sessions =
        store_.listSessions(SessionQuery{.newestFirst = false, .includeChildren = true});
    if (!sessions.ok()) {
        reportFailure(SessionFailure::totalsNotRecalculated);
        return fail(SessionFailure::totalsNotRecalculated);
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
    if (!persistenceSaveOperation(changes).ok()) {
        reportFailure(SessionFailure::totalsNotRecalculated);
        return fail(SessionFailure::totalsNotRecalculated);
    }
    return {};
}

Result<void, SessionFailure> SessionManager::editSession(const Uuid& id, const std::string& subject,
                                                         const std::string& goal,
                                                         const std::optional<std::string>& notes) {
    auto refuse = [this](SessionFailure failure,
                         std::string_view detail = {}) -> Result<void, SessionFailure> {
        reportFailure(failure, detail);
        return fail(failure);
    };
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
        return refuse(SessionFailure::subjectEmpty);
    }
    if (text::characterCount(newSubject) > kSubjectCharacterLimit) {
        return refuse(SessionFailure::subjectTooLong, std::to_string(kSubjectCharacterLimit));
    }
    if (text::characterCount(newGoal) > kGoalCharacterLimit) {
        return refuse(SessionFailure::goalTooLong, std::to_string(kGoalCharacterLimit));
    }
    if (newNotes && text::characterCount(*newNotes) > kNotesCharacterLimit) {
        return refuse(SessionFailure::notesTooLong, std::to_string(kNotesCharacterLimit));
    }
    auto loaded = store_.loadSession(id);
    if (!loaded.ok()) {
        return refuse(SessionFailure::activityNotSaved, loaded.error().description);
    }
    if (!loaded->has_value()) {
        return refuse(SessionFailure::sessionNotFound);
    }
    StudySession session = std::move(**loaded);
    session.segments.clear();
    session.confirmedNoInputIntervals.clear();
    session.subject = newSubject;
    session.goal = newGoal;
    session.setNotes(newNotes);
    StoreChangeSet changes;
    changes.sessions.push_back(session);
    if (auto saved = persistenceSaveOperation(changes); !saved.ok()) {
        return refuse(SessionFailure::activityNotSaved, saved.error().description);
    }
    if (activeSession_ && activeSession_->id == id) {
        activeSession_->subject = newSubject;
        activeSession_->goal = newGoal;
        activeSession_->setNotes(newNotes);
        publish(ObservedField::activeSession);
    }
    return {};
}

Result<void, SessionFailure> SessionManager::deleteSessions(const std::vector<Uuid>& ids) {
    if (activeSession_) {
        reportFailure(SessionFailure::deleteWhileActive);
        return fail(SessionFailure::deleteWhileActive);
    }
    SessionDeletionBatch batch{Uuid::generate(), {}};
    StoreChangeSet changes;
    changes.durable = true;
    for (const Uuid& id : ids) {
        auto loaded = store_.loadSession(id);
        if (!loaded.ok()) {
            reportFailure(SessionFailure::deleteFailed, loaded.error().description);
            return fail(SessionFailure::deleteFailed);
        }
        if (!loaded->has_value()) {
            continue;
        }
        auto pdfs = store_.pdfIdentities(id);
        if (!pdfs.ok()) {
            reportFailure(SessionFailure::deleteFailed, pdfs.error().description);
            return fail(SessionFailure::deleteFailed);
        }
        batch.snapshots.push_back({std::move(**loaded), std::move(*pdfs)});
        changes.deletedSessions.push_back(id);
    }
    if (batch.snapshots.empty()) {
        reportFailure(SessionFailure::sessionNotFound);
        return fail(SessionFailure::sessionNotFound);
    }
    if (auto saved = persistenceSaveOperation(changes); !saved.ok()) {
        reportFailure(SessionFailure::deleteFailed, saved.error().description);
        return fail(SessionFailure::deleteFailed);
    }
    sessionDeletionUndoDescription_ = fmt::format("{} sessions deleted", batch.snapshots.size());
    pendingSessionDeletion_ = std::move(batch);
    deletionUndoDeadline_ = monotonicTimeProvider_.now() + kDeletionUndoSeconds;
    publish(ObservedField::sessionDeletionUndo);
    return {};
}

Result<void, SessionFailure> SessionManager::undoSessionDeletion() {
    if (!pendingSessionDeletion_) {
        reportFailure(SessionFailure::undoDeleteFailed, "nothing to restore");
        return fail(SessionFailure::undoDeleteFailed);
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
    if (auto saved = persistenceSaveOperation(changes); !saved.ok()) {
        reportFailure(SessionFailure::undoDeleteFailed, saved.error().description);
        return fail(SessionFailure::undoDeleteFailed);
    }
    pendingSessionDeletion_.reset();
    sessionDeletionUndoDescription_.reset();
    deletionUndoDeadline_.reset();
    publish(ObservedField::sessionDeletionUndo);
    return {};
}

void SessionManager::expireDeletionUndo(double monotonicNow) {
    if (deletionUndoDeadline_ && monotonicNow >= *deletionUndoDeadline_) {
        pendingSessionDeletion_.reset();
        sessionDeletionUndoDescription_.reset();
        deletionUndoDeadline_.reset();
        publish(ObservedField::sessionDeletionUndo);
    }
}

Result<void, SessionFailure> SessionManager::deleteAllSessions() {
    if (activeSession_) {
        reportFailure(SessionFailure::deleteAllWhileActive);
        return fail(SessionFailure::deleteAllWhileActive);
    }
    if (auto deleted = store_.deleteAllSessions(); !deleted.ok()) {
        reportFailure(SessionFailure::deleteAllFailed, deleted.error().description);
        return fail(SessionFailure::deleteAllFailed);
    }
    rules_.endSession();
    return {};
}

Result<void, SessionFailure> SessionManager::resetAllData() {
    if (activeSession_) {
        reportFailure(SessionFailure::resetWhileActive);
        return fail(SessionFailure::resetWhileActive);
    }
    if (auto deleted = store_.deleteAllSessions(); !deleted.ok()) {
        reportFailure(SessionFailure::resetFailed, deleted.error().description);
        return fail(SessionFailure::resetFailed);
    }
    if (auto cleared = rules_.clearAll(); !cleared.ok()) {
        // Clearing the rules has sentences of its own; the PDF records share
        // the reset's.
        if (cleared.error().failure == ClassificationFailure::pdfRecordsNotCleared) {
            reportFailure(SessionFailure::resetFailed, cleared.error().detail);
        } else {
            report(cleared.error().message());
        }
        return fail(SessionFailure::resetFailed);
    }
    preferences_.resetApplicationPreferences();
    pendingSessionDeletion_.reset();
    sessionDeletionUndoDescription_.reset();
    deletionUndoDeadline_.reset();
    publish(ObservedField::sessionDeletionUndo);
    return {};
}

}  // namespace lumenote
