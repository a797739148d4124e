// Time without input: raising the question when input returns after a long
// run, the live "Studying away from Mac" period, and no-input time that an
// offline session declares as study.
//
// A run without input is tracked only once it has become a no-input stretch
// (the idle time reached the inactivity threshold), since only such stretches
// can be confirmed; its start is the moment input stopped. When input returns
// after a run at least as long as the prompt threshold, the question is
// raised, unless a live away period is open or the session is an offline one.
// A run starts no earlier than the moment observation last (re)started (the
// session's start, a resume, a wake).
// Pausing, ending, sleep and termination close a live away period at that
// instant and forget the current run.
#include "recording/session_manager.hpp"

namespace lumenote::recording {

LiveStudyState SessionManager::liveStudyState() const {
    if (openPassiveStudyInterval_) {
        return LiveStudyState::passiveStudy;
    }
    if (currentIsInactive_ && activeSession_ &&
        activeSession_->status() == StudySessionStatus::running) {
        return LiveStudyState::unconfirmedNoInput;
    }
    return LiveStudyState::computerActivity;
}

Result<void, SessionError> SessionManager::startPassiveStudy() {
    if (!activeSession_) {
        return fail(SessionFailure::noActiveSession);
    }
    if (activeSession_->status() != StudySessionStatus::running || isSleeping_) {
        return fail(SessionFailure::sessionNotRunning);
    }
    if (openPassiveStudyInterval_) {
        return {};
    }
    const TrackingInstant instant = nowInstant();
    ConfirmedNoInputInterval interval(Uuid::generate(), instant.wallDate, instant.wallDate,
                                      ConfirmedStudyState::passiveStudy,
                                      ConfirmedStudyStateSource::sessionControl, instant.wallDate);
    interval.session = activeSession_->id;
    pendingChanges_.confirmedIntervals.push_back(interval);
    openPassiveStudyInterval_ = std::move(interval);
    noInputRunStart_.reset();
    save();
    publish(ObservedField::liveStudyState);
    return {};
}

Result<void, SessionError> SessionManager::endPassiveStudy() {
    if (!openPassiveStudyInterval_) {
        return fail(SessionFailure::noPassiveStudyPeriod);
    }
    closeLivePassiveStudy(wallClock_.now());
    // Input during the away period does not open a run of its own.
    noInputRunStart_.reset();
    applicationActivated();
    return {};
}

void SessionManager::closeLivePassiveStudy(Date at) {
    if (!openPassiveStudyInterval_) {
        return;
    }
    ConfirmedNoInputInterval interval = std::move(*openPassiveStudyInterval_);
    openPassiveStudyInterval_.reset();
    interval.endDate = std::max(at, interval.startDate);
    sessionConfirmations_.push_back(interval);
    pendingChanges_.confirmedIntervals.push_back(std::move(interval));
    save();
    publish(ObservedField::liveStudyState);
}

void SessionManager::trackNoInputRun(const ActivityState& next, TrackingInstant instant,
                                     double idleSeconds) {
    if (next.activitySource == ActivitySourceType::system) {
        return;
    }
    if (next.isInactive) {
        if (!noInputRunStart_) {
            // A run never reaches back before observation (re)started: input
            // may have stopped while paused, asleep or before the session.
            const double since =
                std::min(idleSeconds, instant.monotonicTime - observedSince_.monotonicTime);
            noInputRunStart_ = instant.monotonicTime - std::max(0.0, since);
            noInputRunStartDate_ = instant.wallDate.addingSeconds(-std::max(0.0, since));
        }
        return;
    }
    if (!noInputRunStart_) {
        return;
    }
    const double runStart = *noInputRunStart_;
    const Date runStartDate = *noInputRunStartDate_;
    noInputRunStart_.reset();
    noInputRunStartDate_.reset();
    const double runEnd = instant.monotonicTime - std::max(0.0, idleSeconds);
    const double length = runEnd - runStart;
    if (openPassiveStudyInterval_ ||
        activeSession_->studyMode() == StudySessionMode::offlineBookStudy ||
        length < preferences_.passiveStudyPromptThreshold()) {
        return;
    }
    NoInputClassificationPrompt prompt;
    prompt.id = Uuid::generate();
    prompt.sessionID = activeSession_->id;
    prompt.startDate = runStartDate;
    prompt.endDate = runStartDate.addingSeconds(length);
    prompt.timerDurationAtStartDate = timerValueAt(runStart);
    pendingNoInputPrompt_ = prompt;
    pendingNoInputPromptStart_ = TrackingInstant{runStartDate, runStart};
    publish(ObservedField::pendingNoInputPrompt);
}

void SessionManager::declareOfflineStudy(const FinalizedActivityInterval& interval) {
    if (activeSession_->studyMode() != StudySessionMode::offlineBookStudy ||
        !interval.state.isInactive || interval.duration <= 0.0) {
        return;
    }
    ConfirmedNoInputInterval confirmation(Uuid::generate(), interval.startDate,
                                          interval.startDate.addingSeconds(interval.duration),
                                          ConfirmedStudyState::passiveStudy,
                                          ConfirmedStudyStateSource::sessionMode, wallClock_.now());
    confirmation.session = activeSession_->id;
    sessionConfirmations_.push_back(confirmation);
    pendingChanges_.confirmedIntervals.push_back(std::move(confirmation));
}

}  // namespace lumenote::recording
