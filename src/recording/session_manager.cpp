#include "recording/session_manager.hpp"

#include <cmath>

#include "foundation/text.hpp"
#include "recording/recording_preferences.hpp"
#include "recording/tracking_calculation.hpp"

namespace lumenote::recording {

SessionManager::SessionManager(SessionManagerDependencies dependencies)
    : store_(dependencies.store),
      preferences_(dependencies.preferences),
      idleTimeProvider_(dependencies.idleTimeProvider),
      monotonicTimeProvider_(dependencies.monotonicTimeProvider),
      wallClock_(dependencies.wallClock),
      frontmostApplication_(dependencies.frontmostApplication),
      notificationService_(dependencies.notificationService),
      browserTrackingCoordinator_(dependencies.browserTrackingCoordinator),
      checkpointStore_(dependencies.checkpointStore),
      rules_(dependencies.rules),
      history_(dependencies.history),
      persistenceSaveOperation_(saveOperationOr(std::move(dependencies.save), store_)),
      personalBests_(dependencies.personalBests) {
    // A rule or override chosen while recording applies from that moment.
    rulesObservation_ = rules_.changed().add([this] { applicationActivated(); });
}

SessionManager::~SessionManager() {
    rules_.changed().remove(rulesObservation_);
}

TrackingInstant SessionManager::nowInstant() {
    return TrackingInstant{wallClock_.now(), monotonicTimeProvider_.now()};
}

double SessionManager::timerValueAt(double monotonicTime) const {
    if (!timerAnchor_) {
        return timerBaseDuration_;
    }
    return timerBaseDuration_ + std::max(0.0, monotonicTime - *timerAnchor_);
}

double SessionManager::currentTimerValue() {
    return timerValueAt(monotonicTimeProvider_.now());
}

void SessionManager::publish(ObservedField field) {
    observers_.notify(field);
}

void SessionManager::reportProblem(SessionFailure failure, std::string detail) {
    problems_.notify(SessionError(failure, std::move(detail)));
}

void SessionManager::postNotice(const SessionNotice& notice) {
    if (preferences_.notificationsEnabled()) {
        notificationService_.post(notice.title, notice.body);
    }
}

void SessionManager::clearPendingPostSession() {
    if (pendingPostSession_) {
        pendingPostSession_.reset();
        pendingPostSessionAllowsCelebration_ = false;
        pendingPostSessionPersonalBests_.clear();
        publish(ObservedField::pendingPostSession);
    }
}

Result<void, SessionError> SessionManager::checkStartRequest(const SessionStartRequest& request) {
    const std::string subject = text::trimmed(request.subject);
    if (subject.empty()) {
        return fail(SessionFailure::subjectMissing);
    }
    if (auto tooLong = subjectLengthRefusal(subject)) {
        return fail(std::move(*tooLong));
    }
    const double planned = request.plannedDuration;
    if (!std::isfinite(planned) || planned <= 0.0 || planned > kMaximumPlannedDuration) {
        return fail(SessionFailure::invalidDuration);
    }
    return {};
}

Result<void, SessionError> SessionManager::start(const SessionStartRequest& request) {
    auto refuse = [](SessionFailure failure) -> Result<void, SessionError> {
        return fail(failure);
    };
    if (activeSession_) {
        return refuse(SessionFailure::sessionAlreadyActive);
    }
    if (pendingRecoverySession_) {
        // Ending the unfinished session later would remove the new session's
        // checkpoint: the question is settled first.
        return refuse(SessionFailure::recoveryPending);
    }
    if (auto refused = checkStartRequest(request); !refused.ok()) {
        return refused;
    }
    const std::string subject = text::trimmed(request.subject);
    const double planned = request.plannedDuration;

    const TrackingInstant instant = nowInstant();
    StudySession session(Uuid::generate(), subject, text::trimmed(request.goal), planned,
                         instant.wallDate);
    session.setTimingMode(request.timingMode);
    session.setStudyMode(request.studyMode);
    session.setOriginatingTemplateID(request.templateID);
    session.setSchemaVersion(kCurrentSessionSchemaVersion);
    session.setCalculationVersion(kCurrentTrackingCalculationVersion);

    StoreChangeSet insert;
    insert.sessions.push_back(session);
    if (auto saved = persistenceSaveOperation_(insert); !saved.ok()) {
        // Nothing can be recorded without a store: refuse rather than record
        // a session that would vanish.
        return fail(SessionError(SessionFailure::activityNotSaved, saved.error().description));
    }

    activeSession_ = std::move(session);
    sessionSegments_.clear();
    sessionConfirmations_.clear();
    openPassiveStudyInterval_.reset();
    noInputRunStart_.reset();
    pendingNoInputPrompt_.reset();
    openPersistedSegment_.reset();
    openSegmentWritten_ = false;
    timerBaseDuration_ = 0.0;
    timerAnchor_ = instant.monotonicTime;
    beginObservation(instant);
    pauseAnchor_.reset();
    currentPauseDuration_ = 0.0;
    saveTick_ = 0;
    accumulatedPauseDuration_ = 0.0;
    confirmedBoundary_ = {instant.wallDate, 0.0};
    unsavedBoundary_.reset();
    rules_.beginSession(activeSession_->id);
    browserTrackingCoordinator_.setRunningSession(activeSession_->id);
    writeCheckpoint(instant);
    publish(ObservedField::activeSession);
    sampleAndRecord(instant);
    return {};
}

Result<void, SessionError> SessionManager::pause() {
    if (!activeSession_) {
        return fail(SessionFailure::noActiveSession);
    }
    if (activeSession_->status() != StudySessionStatus::running) {
        return fail(SessionFailure::sessionNotRunning);
    }
    const TrackingInstant instant = nowInstant();
    pauseAt(instant, timerValueAt(instant.monotonicTime));
    return {};
}

// A pause given while the computer sleeps closes the sleep stretch there and
// ends the sleep for the session: the wake that follows finds a paused
// session and changes nothing.
void SessionManager::pauseAt(TrackingInstant instant, double timerValue) {
    closeLivePassiveStudy(instant.wallDate);
    noInputRunStart_.reset();
    isSleeping_ = false;
    sleepStartedAt_.reset();
    sleepStartedTimerDuration_.reset();
    if (auto closed = timelineEngine_.finalize(instant)) {
        recordClosedInterval(*closed);
    }
    mirrorOpenInterval();
    timerBaseDuration_ = timerValue;
    timerAnchor_.reset();
    pauseAnchor_ = instant.monotonicTime;
    currentPauseDuration_ = std::max(0.0, monotonicTimeProvider_.now() - instant.monotonicTime);
    activeSession_->setStatus(StudySessionStatus::paused);
    activeSession_->timerDuration = timerBaseDuration_;
    queueSession();
    save();
    writeCheckpoint(nowInstant());
    browserTrackingCoordinator_.setRunningSession(std::nullopt);
    publish(ObservedField::activeSession);
    publish(ObservedField::currentPauseDuration);
}

Result<void, SessionError> SessionManager::resume() {
    if (!activeSession_) {
        return fail(SessionFailure::noActiveSession);
    }
    if (activeSession_->status() != StudySessionStatus::paused) {
        return fail(SessionFailure::sessionNotPaused);
    }
    const TrackingInstant instant = nowInstant();
    accumulatedPauseDuration_ += std::max(0.0, instant.monotonicTime - pauseAnchor_.value_or(0.0));
    timerAnchor_ = instant.monotonicTime;
    beginObservation(instant);
    pauseAnchor_.reset();
    currentPauseDuration_ = 0.0;
    activeSession_->setStatus(StudySessionStatus::running);
    queueSession();
    save();
    writeCheckpoint(instant);
    browserTrackingCoordinator_.setRunningSession(activeSession_->id);
    publish(ObservedField::activeSession);
    publish(ObservedField::currentPauseDuration);
    sampleAndRecord(instant);
    return {};
}

Result<void, SessionError> SessionManager::end() {
    if (!activeSession_) {
        return fail(SessionFailure::noActiveSession);
    }
    const TrackingInstant instant = nowInstant();
    finishSession(instant, timerValueAt(instant.monotonicTime), StudySessionStatus::completed);
    return {};
}

Result<void, SessionError> SessionManager::endAsInterrupted() {
    if (!activeSession_) {
        return fail(SessionFailure::noActiveSession);
    }
    const TrackingInstant instant = nowInstant();
    finishSession(instant, timerValueAt(instant.monotonicTime), StudySessionStatus::interrupted);
    return {};
}

void SessionManager::tick() {
    const TrackingInstant instant = nowInstant();
    history_.tick();
    if (!activeSession_) {
        if (!pendingChanges_.empty()) {
            save(pendingChanges_.durable);
        }
        return;
    }
    if (isSleeping_ || isPreparingForTermination_) {
        return;
    }
    if (activeSession_->status() == StudySessionStatus::paused) {
        currentPauseDuration_ = std::max(0.0, instant.monotonicTime - pauseAnchor_.value_or(0.0));
        publish(ObservedField::currentPauseDuration);
        return;
    }
    completeTimerIfReached(instant);
    if (!activeSession_) {
        return;
    }
    sampleAndRecord(instant);
    if (++saveTick_ >= kSaveCadenceTicks) {
        saveTick_ = 0;
        activeSession_->timerDuration = timerValueAt(instant.monotonicTime);
        queueSession();
        queueOpenSegment(instant);
        save();
    }
}

void SessionManager::applicationActivated() {
    if (activeSession_ && activeSession_->status() == StudySessionStatus::running && !isSleeping_ &&
        !isPreparingForTermination_) {
        sampleAndRecord(nowInstant());
    }
}

void SessionManager::completeTimerIfReached(TrackingInstant instant) {
    if (activeSession_->timingMode() != SessionTimingMode::timer || !timerAnchor_) {
        return;
    }
    const double planned = activeSession_->plannedDuration;
    const double timer = timerValueAt(instant.monotonicTime);
    if (timer < planned) {
        return;
    }
    // The instant at which the timer reached the planned duration, which lies
    // up to one tick (or a late tick's delay) in the past.
    const double overshoot = timer - planned;
    const TrackingInstant completion{instant.wallDate.addingSeconds(-overshoot),
                                     instant.monotonicTime - overshoot};
    const std::string subject = activeSession_->subject;
    finishSession(completion, planned, StudySessionStatus::completed);
    postNotice(timerCompletionNotice(subject, planned, preferences_.notificationsIncludeSubject()));
}

void SessionManager::finishSession(TrackingInstant endInstant, double timerDuration,
                                   StudySessionStatus status) {
    closeLivePassiveStudy(endInstant.wallDate);
    if (auto closed = timelineEngine_.finalize(endInstant)) {
        recordClosedInterval(*closed);
    }
    isSleeping_ = false;
    sleepStartedAt_.reset();
    sleepStartedTimerDuration_.reset();
    noInputRunStart_.reset();
    pendingNoInputPrompt_.reset();
    StudySession& session = *activeSession_;
    session.timerDuration = timerDuration;
    session.endDate = endInstant.wallDate;
    session.setStatus(status);

    StudySession withChildren = session;
    withChildren.segments = sessionSegments_;
    withChildren.confirmedNoInputIntervals = sessionConfirmations_;
    // A session is finished under its own version: one recovered from an
    // earlier release keeps the method it was recorded with.
    const auto version = TrackingCalculationService::effectiveCalculationVersion(session);
    const auto totals = TrackingCalculationService::calculateSessionTotals(
        withChildren, endInstant.wallDate, version);
    TrackingCalculationService::applyTotals(totals, session);
    queueSession();
    if (save(true)) {
        removeCheckpoint();
    }

    StudySession finished = std::move(session);
    finished.segments = std::move(sessionSegments_);
    finished.confirmedNoInputIntervals = std::move(sessionConfirmations_);
    sessionConfirmations_.clear();
    activeSession_.reset();
    sessionSegments_.clear();
    openPersistedSegment_.reset();
    openSegmentWritten_ = false;
    timerAnchor_.reset();
    pauseAnchor_.reset();
    timerBaseDuration_ = 0.0;
    currentPauseDuration_ = 0.0;
    rules_.endSession();
    browserTrackingCoordinator_.setRunningSession(std::nullopt);
    const Date now = wallClock_.now();
    pendingPostSessionAllowsCelebration_ =
        status == StudySessionStatus::completed && preferences_.shouldCelebrate(finished, now);
    pendingPostSessionPersonalBests_ = personalBestsOf(finished, now);
    pendingPostSession_ = std::move(finished);
    publish(ObservedField::activeSession);
    publish(ObservedField::pendingPostSession);
}

// Only a completed session sets bests: an interrupted one ended where the
// recorder lost it, not where the user chose.
std::vector<PersonalBest> SessionManager::personalBestsOf(const StudySession& finished, Date now) {
    if (personalBests_ == nullptr || finished.status() != StudySessionStatus::completed) {
        return {};
    }
    auto found = personalBests_->personalBestsOf(finished, now);
    if (!found) {
        reportProblem(SessionFailure::personalBestsNotChecked, found.error().description);
        return {};
    }
    return std::move(found).value();
}

}  // namespace lumenote::recording
