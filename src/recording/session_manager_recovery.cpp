// The recovery checkpoint while recording, and recovery of an unfinished
// session at the next launch.
//
// The checkpoint is written right after every store save that moved the
// confirmed boundary (a segment closed, the growing segment written at the
// save cadence, start, pause, resume) and at termination, so the checkpoint
// and the store describe the same moment: nothing the checkpoint calls
// confirmed is missing from the store. The boundary is the end of the last
// saved stretch; confirmedDuration is the timer's value there.
#include "recording/session_manager.hpp"
#include "recording/tracking_calculation.hpp"

namespace lumenote::recording {

namespace {

// The fields of a checkpoint that come from the session record itself.
ActiveSessionCheckpoint checkpointFor(const StudySession& session) {
    ActiveSessionCheckpoint checkpoint;
    checkpoint.sessionID = session.id;
    checkpoint.startedAt = session.startDate;
    checkpoint.expectedEndAt = session.startDate.addingSeconds(session.plannedDuration);
    checkpoint.state = session.status() == StudySessionStatus::paused
                           ? ActiveSessionCheckpointState::paused
                           : ActiveSessionCheckpointState::recording;
    checkpoint.calculationVersion = static_cast<long long>(
        session.calculationVersion().value_or(kCurrentTrackingCalculationVersion));
    checkpoint.templateID = session.originatingTemplateID();
    return checkpoint;
}

}  // namespace

void SessionManager::noteQueuedBoundary(TrackingInstant boundary) {
    unsavedBoundary_ = ConfirmedBoundary{boundary.wallDate, timerValueAt(boundary.monotonicTime)};
}

void SessionManager::writeCheckpoint(TrackingInstant instant) {
    if (!activeSession_) {
        return;
    }
    const StudySession& session = *activeSession_;
    ActiveSessionCheckpoint checkpoint = checkpointFor(session);
    checkpoint.confirmedDuration = confirmedBoundary_.timerValue;
    checkpoint.accumulatedPauseDuration = accumulatedPauseDuration_;
    checkpoint.lastConfirmedActivityAt = confirmedBoundary_.date;
    checkpoint.lastPersistedSegmentBoundaryAt = confirmedBoundary_.date;
    checkpoint.savedAt = std::max(instant.wallDate, confirmedBoundary_.date);
    checkpoint.calculationVersion = static_cast<long long>(
        session.calculationVersion().value_or(kCurrentTrackingCalculationVersion));
    checkpoint.templateID = session.originatingTemplateID();
    if (!checkpointStore_.save(checkpoint).ok()) {
        // Recording goes on: the store stays the record of truth.
        reportProblem(SessionFailure::checkpointNotSaved);
    }
}

void SessionManager::removeCheckpoint() {
    if (!checkpointStore_.remove().ok()) {
        reportProblem(SessionFailure::checkpointNotRemoved);
    }
}

void SessionManager::lookForUnfinishedSession() {
    auto loaded = checkpointStore_.load();
    std::optional<ActiveSessionCheckpoint> checkpoint;
    // A checkpoint that cannot be read (too large, a link, not a regular
    // file) counts as missing: the store still marks the session it was kept
    // for as live, and that session is offered from the store. The failure is
    // told only when the store has nothing to offer either.
    std::optional<SessionError> unreadable;
    if (!loaded.ok()) {
        unreadable =
            SessionError(SessionFailure::recoveryFailed, std::string(describe(loaded.error())));
    } else {
        checkpoint = loaded->checkpoint;
        if (loaded->kind == SessionCheckpointLoadResult::Kind::corruptQuarantined) {
            reportProblem(SessionFailure::damagedCheckpointIsolated);
        }
    }
    auto live = store_.liveSessions();
    if (!live.ok()) {
        reportProblem(SessionFailure::recoveryFailed, live.error().description);
        return;
    }
    const StudySession* unfinished = nullptr;
    if (checkpoint) {
        for (const StudySession& session : *live) {
            if (session.id == checkpoint->sessionID) {
                unfinished = &session;
            }
        }
        if (unfinished == nullptr) {
            // The checkpoint's session is gone or already finished: nothing
            // to recover, so the checkpoint goes without a question.
            removeCheckpoint();
            checkpoint.reset();
        }
    }
    if (unfinished == nullptr && !live->empty()) {
        // A live session without a checkpoint (it could never be written):
        // recover it from what the store holds.
        unfinished = &live->front();
    }
    if (unfinished == nullptr) {
        if (unreadable) {
            reportProblem(unreadable->failure, unreadable->detail);
        }
        return;
    }
    auto full = store_.loadSession(unfinished->id);
    if (!full.ok() || !full->has_value()) {
        reportProblem(SessionFailure::recoveryFailed,
                      full.ok() ? "the session could not be read" : full.error().description);
        return;
    }
    StudySession session = std::move(**full);
    if (!checkpoint) {
        checkpoint = checkpointFromStore(session);
    }
    pendingRecoverySummary_ = makeRecoverySummary(*checkpoint, wallClock_.now());
    recoveredCheckpoint_ = std::move(checkpoint);
    pendingRecoverySession_ = std::move(session);
    publish(ObservedField::pendingRecovery);
}

ActiveSessionCheckpoint SessionManager::checkpointFromStore(const StudySession& session) const {
    ActiveSessionCheckpoint checkpoint = checkpointFor(session);
    Date boundary = session.startDate;
    double recorded = 0.0;
    for (const ActivitySegment& segment : session.segments) {
        boundary = std::max(boundary, segment.startDate.addingSeconds(segment.duration));
        recorded += segment.duration;
    }
    checkpoint.confirmedDuration = std::max(session.timerDuration, recorded);
    checkpoint.lastConfirmedActivityAt = boundary;
    checkpoint.lastPersistedSegmentBoundaryAt = boundary;
    checkpoint.savedAt = boundary;
    return checkpoint;
}

Result<void, SessionError> SessionManager::continueRecoveredSession() {
    if (!pendingRecoverySession_ || activeSession_) {
        return fail(SessionFailure::noRecoverableSession);
    }
    const TrackingInstant instant = nowInstant();
    StudySession session = std::move(*pendingRecoverySession_);
    const ActiveSessionCheckpoint checkpoint = *recoveredCheckpoint_;
    clearPendingRecovery();

    sessionSegments_ = std::move(session.segments);
    sessionConfirmations_ = std::move(session.confirmedNoInputIntervals);
    session.segments.clear();
    session.confirmedNoInputIntervals.clear();
    const bool paused = checkpoint.state == ActiveSessionCheckpointState::paused;
    session.setStatus(paused ? StudySessionStatus::paused : StudySessionStatus::running);
    session.timerDuration = checkpoint.confirmedDuration;
    activeSession_ = std::move(session);
    timerBaseDuration_ = checkpoint.confirmedDuration;
    timerAnchor_ = paused ? std::nullopt : std::optional<double>(instant.monotonicTime);
    beginObservation(instant);
    pauseAnchor_ = paused ? std::optional<double>(instant.monotonicTime) : std::nullopt;
    accumulatedPauseDuration_ = checkpoint.accumulatedPauseDuration;
    currentPauseDuration_ = 0.0;
    confirmedBoundary_ = {instant.wallDate, checkpoint.confirmedDuration};
    unsavedBoundary_.reset();
    openPersistedSegment_.reset();
    openSegmentWritten_ = false;
    saveTick_ = 0;
    queueSession();
    save();
    writeCheckpoint(instant);
    rules_.beginSession(activeSession_->id);
    if (!paused) {
        browserTrackingCoordinator_.setRunningSession(activeSession_->id);
    }
    publish(ObservedField::activeSession);
    if (!paused) {
        sampleAndRecord(instant);
    }
    return {};
}

Result<void, SessionError> SessionManager::endRecoveredSession() {
    if (!pendingRecoverySession_) {
        return fail(SessionFailure::noRecoverableSession);
    }
    StudySession session = std::move(*pendingRecoverySession_);
    const ActiveSessionCheckpoint checkpoint = *recoveredCheckpoint_;
    session.timerDuration = checkpoint.confirmedDuration;
    session.endDate = std::max(checkpoint.lastConfirmedActivityAt, session.startDate);
    session.setStatus(StudySessionStatus::interrupted);
    const auto version = TrackingCalculationService::effectiveCalculationVersion(session);
    TrackingCalculationService::applyTotals(
        TrackingCalculationService::calculateSessionTotals(session, *session.endDate, version),
        session);
    StoreChangeSet changes;
    changes.durable = true;
    StudySession row = session;
    row.segments.clear();
    row.confirmedNoInputIntervals.clear();
    changes.sessions.push_back(std::move(row));
    if (auto saved = persistenceSaveOperation_(changes); !saved.ok()) {
        pendingRecoverySession_ = std::move(session);
        return fail(SessionError(SessionFailure::recoveryFailed, saved.error().description));
    }
    clearPendingRecovery();
    removeCheckpoint();
    return {};
}

void SessionManager::clearPendingRecovery() {
    pendingRecoverySession_.reset();
    pendingRecoverySummary_.reset();
    recoveredCheckpoint_.reset();
    publish(ObservedField::pendingRecovery);
}

}  // namespace lumenote::recording
