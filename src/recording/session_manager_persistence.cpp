// Persistence: saving the active session through the store, and start-up.
#include "recording/recording_preferences.hpp"
#include "recording/session_manager.hpp"
#include "recording/tracking_calculation.hpp"

namespace lumenote::recording {

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
    auto saved = persistenceSaveOperation_(pendingChanges_);
    if (!saved.ok()) {
        // The unsaved changes stay queued and go out with the next save.
        reportProblem(SessionFailure::activityNotSaved, saved.error().description);
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
    for (const classification::ClassificationError& problem : rules_.load()) {
        reportProblem(SessionFailure::rulesNotLoaded, problem.message());
    }
    if (auto upToDate = history_.bringTotalsUpToDate(); !upToDate.ok()) {
        problems_.notify(upToDate.error());
    }
    lookForUnfinishedSession();
}

}  // namespace lumenote::recording
