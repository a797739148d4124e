// System events: sleep and wake, the screen locking or the user session
// switching away (recorded exactly like sleep), and termination.
//
// While the computer sleeps a "Mac asleep" system stretch is open; its time is
// system-excluded in the totals. When the sleep lasted at least the long-sleep
// threshold, the pause takes effect at the sleep's start: the sleep stretch is
// dropped, the timer goes back to its value when sleep began and the pause
// covers the whole sleep, so sleep never counts toward the timer.
#include "recording/session_manager.hpp"

namespace lumenote::recording {

ActivityState systemSleepState() {
    ActivityState state;
    state.applicationName = kSystemSleepApplicationName;
    state.bundleIdentifier = std::string(classification::kSystemSleepBundleIdentifier);
    state.classification = classification::ActivityClassification::ignored;
    state.activitySource = ActivitySourceType::system;
    return state;
}

void SessionManager::willSleep() {
    if (isSleeping_ || isPreparingForTermination_ || !activeSession_ ||
        activeSession_->status() != StudySessionStatus::running) {
        return;
    }
    const TrackingInstant instant = nowInstant();
    closeLivePassiveStudy(instant.wallDate);
    isSleeping_ = true;
    sleepStartedAt_ = instant;
    sleepStartedTimerDuration_ = timerValueAt(instant.monotonicTime);
    noInputRunStart_.reset();
    if (auto closed = timelineEngine_.observe(systemSleepState(), instant)) {
        recordClosedInterval(*closed);
    }
    mirrorOpenInterval();
    publishCurrent(systemSleepState());
}

void SessionManager::didWake() {
    if (!isSleeping_) {
        return;
    }
    const TrackingInstant instant = nowInstant();
    const TrackingInstant sleepStart = *sleepStartedAt_;
    const double timerAtSleep = sleepStartedTimerDuration_.value_or(timerBaseDuration_);
    isSleeping_ = false;
    sleepStartedAt_.reset();
    sleepStartedTimerDuration_.reset();
    if (!activeSession_ || isPreparingForTermination_) {
        return;
    }
    const double slept = instant.monotonicTime - sleepStart.monotonicTime;
    const auto threshold = preferences_.longSleepThreshold();
    if (threshold && slept >= *threshold &&
        activeSession_->status() == StudySessionStatus::running) {
        pauseAt(sleepStart, timerAtSleep);
        postNotice(longSleepPauseNotice());
        return;
    }
    beginObservation(instant);
    sampleAndRecord(instant);
}

void SessionManager::willTerminate() {
    if (isPreparingForTermination_) {
        return;
    }
    isPreparingForTermination_ = true;
    if (!activeSession_) {
        return;
    }
    const TrackingInstant instant = nowInstant();
    closeLivePassiveStudy(instant.wallDate);
    if (activeSession_->status() == StudySessionStatus::running && !isSleeping_) {
        queueOpenSegment(instant);
        activeSession_->timerDuration = timerValueAt(instant.monotonicTime);
        queueSession();
    }
    save(true);
    writeCheckpoint(instant);
}

}  // namespace lumenote::recording
