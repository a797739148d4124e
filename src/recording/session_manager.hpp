// SessionManager: owns the one active study session, samples the computer on
// each tick, stores closed stretches as segments and computes the totals.
//
// All of its state lives on one thread. It starts no thread or timer: the host
// loop calls tick() once a second and delivers platform events on the same
// thread, so tests drive a whole day with a fake clock in milliseconds.
//
// Decisions the recorder makes (each covered by tests):
// - Inactivity splits a stretch where the idle time crossed the threshold
//   (now - idle + threshold), not at the tick that noticed it; a no-input
//   stretch ends where input resumed (now - idle).
// - Closed stretches of zero length that were never written are dropped.
// - Late or bunched ticks neither lose nor double time: every length comes
//   from the monotonic clock and consecutive stretches share their boundary.
// - In timer mode the session completes at exactly its planned duration: the
//   open stretch is closed at the instant the timer reached it.
// - Segments are written when they close; the growing open segment and the
//   session's timer are written every kSaveCadenceTicks ticks. A failed save
//   keeps the unsaved changes and retries them at the next save.
// - The deletion undo offer lasts kDeletionUndoSeconds on the monotonic clock,
//   checked by tick().
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "classification/classification_lookup.hpp"
#include "recording/activity_timeline.hpp"
#include "recording/platform_services.hpp"
#include "recording/recording_preferences.hpp"
#include "recording/recording_store.hpp"
#include "recording/session_messages.hpp"
#include "recording/session_records.hpp"
#include "recording/time_providers.hpp"
#include "recording/tracking_calculation_version.hpp"

namespace lumenote {

// The application's own identifier; its activity is recorded as ignored.
inline constexpr const char* kOwnBundleIdentifier = "com.tallywise.Lumenote";
// The label of a frontmost application that has no name.
inline constexpr const char* kUnknownApplicationName = "Unknown application";
// Ticks between saves of the growing open segment and the session's timer.
inline constexpr int kSaveCadenceTicks = 60;
inline constexpr double kDeletionUndoSeconds = 10.0;
// The longest accepted planned duration: 24 hours.
inline constexpr double kMaximumPlannedDuration = 86400.0;
// The revision of derived totals this build computes; stored sessions carrying
// another revision are recalculated at start-up.
inline constexpr long long kDerivedTotalsRevision = 1;

struct SessionStartRequest {
    std::string subject;
    std::string goal;
    double plannedDuration = 1500.0;  // seconds
    SessionTimingMode timingMode = SessionTimingMode::timer;
    StudySessionMode studyMode = StudySessionMode::computerBased;
    std::optional<Uuid> templateID;
};

// A full copy of deleted sessions, enough to insert them again unchanged.
struct SessionDeletionSnapshot {
    StudySession session;  // with segments and confirmations
    std::vector<LocalPDFIdentity> localPDFIdentities;
};

struct SessionDeletionBatch {
    Uuid id;
    std::vector<SessionDeletionSnapshot> snapshots;
};

// Observable fields; the change handler is told which one changed.
enum class ObservedField {
    activeSession,
    currentActivity,  // name, bundle identifier, classification, inactivity
    currentPauseDuration,
    lastError,
    sessionDeletionUndo,
    pendingPostSession,
};

struct SessionManagerDependencies {
    RecordingStore& store;
    RecordingPreferences& preferences;
    IdleTimeProvider& idleTimeProvider;
    MonotonicTimeProvider& monotonicTimeProvider;
    WallClock& wallClock;
    FrontmostApplicationSource& frontmostApplication;
    NotificationService& notificationService;
    BrowserTrackingCoordinator& browserTrackingCoordinator;
    std::string ownBundleIdentifier = kOwnBundleIdentifier;
};

class SessionManager {
  public:
    using SaveOperation = std::function<Result<void, StoreError>(const StoreChangeSet&)>;

    explicit SessionManager(SessionManagerDependencies dependencies);

    // Loads the rule caches and PDF preferences and recalculates stored totals
    // when the derived revision changed. Failures are reported in lastError().
    void startUp();

    // ---- lifecycle ----
    Result<void, SessionFailure> start(const SessionStartRequest& request);
    Result<void, SessionFailure> pause();
    Result<void, SessionFailure> resume();
    Result<void, SessionFailure> end();
    // Called once a second by the host loop, whether or not a session runs.
    void tick();
    // The frontmost application changed: sample at once instead of at the next tick.
    void applicationActivated();

    // ---- classification rules ----
    bool saveApplicationClassification(const std::string& bundleIdentifier,
                                       const std::string& applicationName,
                                       ActivityClassification classification);
    bool saveWebsiteClassification(const std::string& hostname,
                                   ActivityClassification classification);
    bool clearApplicationClassifications();
    bool clearWebsiteClassifications();
    void setSessionApplicationOverride(const std::string& bundleIdentifier,
                                       ActivityClassification classification);
    void setTabOverride(const Uuid& tabSessionIdentifier, ActivityClassification classification);
    const ClassificationLookup& classificationLookup() const { return lookup_; }

    // ---- history ----
    Result<void, SessionFailure> editSession(const Uuid& id, const std::string& subject,
                                             const std::string& goal,
                                             const std::optional<std::string>& notes);
    Result<void, SessionFailure> deleteSessions(const std::vector<Uuid>& ids);
    Result<void, SessionFailure> undoSessionDeletion();
    Result<void, SessionFailure> deleteAllSessions();
    Result<void, SessionFailure> resetAllData();
    // Recomputes the stored totals of every finished session under its own version.
    Result<void, SessionFailure> recalculateStoredTotals();

    // ---- observable state ----
    const std::optional<StudySession>& activeSession() const { return activeSession_; }
    const std::string& currentApplicationName() const { return currentApplicationName_; }
    const std::string& currentBundleIdentifier() const { return currentBundleIdentifier_; }
    ActivityClassification currentClassification() const { return currentClassification_; }
    bool currentIsInactive() const { return currentIsInactive_; }
    double currentPauseDuration() const { return currentPauseDuration_; }
    const std::optional<std::string>& lastError() const { return lastError_; }
    bool canUndoSessionDeletion() const { return pendingSessionDeletion_.has_value(); }
    const std::optional<std::string>& sessionDeletionUndoDescription() const {
        return sessionDeletionUndoDescription_;
    }
    const std::optional<StudySession>& pendingPostSession() const { return pendingPostSession_; }
    void clearPendingPostSession();
    void clearLastError();
    void setChangeHandler(std::function<void(ObservedField)> handler) {
        changeHandler_ = std::move(handler);
    }

    // The timer value of the active session now: time counted while running.
    double currentTimerValue();
    // Segments of the active session closed so far (the open stretch excluded).
    const std::vector<ActivitySegment>& activeSessionSegments() const { return sessionSegments_; }
    const ActivityTimelineEngine& timelineEngine() const { return timelineEngine_; }
    const std::optional<ActivitySegment>& openPersistedSegment() const {
        return openPersistedSegment_;
    }

    // Replaceable so that tests can make saving fail.
    SaveOperation persistenceSaveOperation;

  private:
    TrackingInstant nowInstant();
    double timerValueAt(double monotonicTime) const;
    void publish(ObservedField field);
    void reportFailure(SessionFailure failure, std::string_view detail = {});

    // sampling (session_manager_sampling.cpp)
    ActivityState sampleState(double idleSeconds, Date wallNow);
    ActivityClassification pdfClassification(const BrowserResolution& pdf, Date wallNow);
    void sampleAndRecord(TrackingInstant instant);
    TrackingInstant boundaryFor(const ActivityState& next, TrackingInstant instant,
                                double idleSeconds) const;
    void recordClosedInterval(const FinalizedActivityInterval& interval);
    ActivitySegment segmentFor(const ActivityState& state, Date start) const;
    void mirrorOpenInterval();
    void publishCurrent(const ActivityState& state);
    void completeTimerIfReached(TrackingInstant instant);

    // persistence (session_manager_persistence.cpp)
    void queueSession();
    void queueOpenSegment(TrackingInstant instant);
    bool save(bool durable = false);
    void finishSession(TrackingInstant endInstant, double timerDuration, StudySessionStatus status);
    void expireDeletionUndo(double monotonicNow);

    RecordingStore& store_;
    RecordingPreferences& preferences_;
    IdleTimeProvider& idleTimeProvider_;
    MonotonicTimeProvider& monotonicTimeProvider_;
    WallClock& wallClock_;
    FrontmostApplicationSource& frontmostApplication_;
    NotificationService& notificationService_;
    BrowserTrackingCoordinator& browserTrackingCoordinator_;
    std::string ownBundleIdentifier_;

    std::optional<StudySession> activeSession_;
    std::string currentApplicationName_;
    std::string currentBundleIdentifier_;
    ActivityClassification currentClassification_ = ActivityClassification::unclassified;
    bool currentIsInactive_ = false;
    double currentPauseDuration_ = 0.0;
    std::optional<std::string> lastError_;
    std::optional<std::string> sessionDeletionUndoDescription_;
    std::optional<StudySession> pendingPostSession_;
    std::function<void(ObservedField)> changeHandler_;

    ActivityTimelineEngine timelineEngine_;
    ClassificationLookup lookup_;
    std::optional<LocalPDFPreferences> localPDFPreferences_;
    std::unordered_map<Uuid, LocalPDFIdentity> pdfIdentities_;
    std::vector<ActivitySegment> sessionSegments_;
    std::optional<ActivitySegment> openPersistedSegment_;
    bool openSegmentWritten_ = false;
    double timerBaseDuration_ = 0.0;
    std::optional<double> timerAnchor_;
    std::optional<double> pauseAnchor_;
    int saveTick_ = 0;
    StoreChangeSet pendingChanges_;
    std::optional<SessionDeletionBatch> pendingSessionDeletion_;
    std::optional<double> deletionUndoDeadline_;
};

}  // namespace lumenote
