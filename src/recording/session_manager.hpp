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
// - No stretch of zero length is ever stored: one that closes where it began
//   is dropped, and if the save cadence already wrote it (its end was later
//   placed back at its start) its row is deleted again.
// - A moment with no application in front (a window manager moving focus)
//   is the switch itself: the next application's stretch begins where the
//   moment began. Only when no application is named for a whole sampling
//   interval is it a stretch of "Unknown application", from where it began
//   (the rule and its cases: frontmost_gaps.hpp).
// - Late or bunched ticks neither lose nor double time: every length comes
//   from the monotonic clock and consecutive stretches share their boundary.
// - In timer mode the session completes at exactly its planned duration: the
//   open stretch is closed at the instant the timer reached it.
// - Segments are written when they close; the growing open segment and the
//   session's timer are written every kSaveCadenceTicks ticks. A failed save
//   keeps the unsaved changes and retries them at the next save.
// - History (editing, deleting with undo, resetting) and the classification
//   rules are services of their own that the manager shares with the front
//   ends; tick() also ends the history's undo offer when its time is up.
// - Notifications go out only while the notifications preference is on: the
//   pause after a long sleep, and a timer-mode session reaching its planned
//   duration. A session ended by hand, at a no-input run or as interrupted
//   posts nothing: the user is there, or it was not the timer that ended it.
// - Failures: an operation returns its SessionError and nothing else keeps
//   it. Failures that no call returns (a save during a tick, the checkpoint,
//   what start-up finds) go to problems(). Keeping a last error for display
//   is the front end's business.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "classification/classification_rules.hpp"
#include "recording/active_session_checkpoint.hpp"
#include "recording/activity_timeline.hpp"
#include "recording/frontmost_gaps.hpp"
#include "recording/no_input_prompt.hpp"
#include "recording/personal_best.hpp"
#include "recording/platform_services.hpp"
#include "recording/recording_preferences.hpp"
#include "recording/recording_store.hpp"
#include "recording/session_checkpoint_store.hpp"
#include "recording/session_history.hpp"
#include "recording/session_messages.hpp"
#include "recording/session_notices.hpp"
#include "recording/session_records.hpp"
#include "recording/study_state_edit.hpp"
#include "recording/time_providers.hpp"
#include "recording/tracking_calculation_version.hpp"

namespace lumenote::recording {

// The application's own identifier; its activity is recorded as ignored.
inline constexpr const char* kOwnBundleIdentifier = "com.tallywise.Lumenote";
// The system stretch recorded while the computer sleeps or cannot be observed;
// kept verbatim on every platform (they are stored values).
inline constexpr const char* kSystemSleepApplicationName = "Mac asleep";
// The label of a frontmost application that has no name.
inline constexpr const char* kUnknownApplicationName = "Unknown application";
// Ticks between saves of the growing open segment and the session's timer.
inline constexpr int kSaveCadenceTicks = 60;
// The longest accepted planned duration: 24 hours.
inline constexpr double kMaximumPlannedDuration = 86400.0;
struct SessionStartRequest {
    std::string subject;
    std::string goal;
    double plannedDuration = 1500.0;  // seconds
    SessionTimingMode timingMode = SessionTimingMode::timer;
    StudySessionMode studyMode = StudySessionMode::computerBased;
    std::optional<Uuid> templateID;
};

// Observable fields; observers are told which one changed.
enum class ObservedField {
    activeSession,
    currentActivity,  // name, bundle identifier, classification, inactivity
    currentPauseDuration,
    pendingPostSession,
    pendingNoInputPrompt,
    liveStudyState,
    lastStudyStateEdit,
    pendingRecovery,
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
    SessionCheckpointStore& checkpointStore;
    // Shared with the front ends that change rules; its ownBundleIdentifier
    // is the one whose activity is ignored.
    classification::ClassificationRules& rules;
    // Shared with the front ends that change history; the manager ticks it,
    // brings stored totals up to date at start-up and hands it study-state
    // edits of finished sessions.
    SessionHistory& history;
    // How changes are saved; empty saves straight through the store.
    StoreSaveOperation save;
    // Finds the bests a completed session sets; null finds none.
    PersonalBestsCheck* personalBests = nullptr;
};

class SessionManager {
  public:
    explicit SessionManager(SessionManagerDependencies dependencies);
    ~SessionManager();
    SessionManager(const SessionManager&) = delete;
    SessionManager& operator=(const SessionManager&) = delete;

    // Loads the rule caches and PDF preferences, recalculates stored totals
    // when the derived revision changed, and looks for an unfinished session
    // to offer for recovery. Failures go to problems().
    void startUp();

    // ---- recovery (session_manager_recovery.cpp) ----
    const std::optional<StudySession>& pendingRecoverySession() const {
        return pendingRecoverySession_;
    }
    const std::optional<ActiveSessionRecoverySummary>& pendingRecoverySummary() const {
        return pendingRecoverySummary_;
    }
    // "Continue From Now": the session goes on from now in the state it was
    // in; the time since its last confirmed boundary is left out.
    Result<void, SessionError> continueRecoveredSession();
    // Ends the unfinished session at its last confirmed boundary as
    // interrupted, keeping the confirmed duration.
    Result<void, SessionError> endRecoveredSession();

    // ---- lifecycle ----
    // The checks of a request that need no session: a subject (trimmed, at
    // most kSubjectCharacterLimit characters) and a planned duration of more
    // than 0 and at most kMaximumPlannedDuration seconds. A front end calls
    // it before it acts on anything else, such as a pending recovery.
    static Result<void, SessionError> checkStartRequest(const SessionStartRequest& request);
    // Refused while another session is active or a recovery offer waits, and
    // when checkStartRequest refuses the request.
    Result<void, SessionError> start(const SessionStartRequest& request);
    Result<void, SessionError> pause();
    Result<void, SessionError> resume();
    Result<void, SessionError> end();
    // Closes the active session now as interrupted (quitting without ending it).
    Result<void, SessionError> endAsInterrupted();
    // Called once a second by the recorder runtime, whether or not a session runs.
    void tick();
    // The frontmost application changed: sample at once instead of at the next tick.
    void applicationActivated();

    // ---- system events (session_manager_system_events.cpp) ----
    // The computer goes to sleep, the screen locks or sleeps, or the user
    // session is switched away: all are recorded as sleep.
    void willSleep();
    // The counterpart of each of those.
    void didWake();
    // The application is about to quit: the open stretch and the checkpoint
    // are written; the session stays unfinished for recovery.
    void willTerminate();
    bool isSleeping() const { return isSleeping_; }
    bool isPreparingForTermination() const { return isPreparingForTermination_; }

    // ---- time without input (session_manager_study_state.cpp) ----
    enum class NoInputPromptAnswer { passiveStudy, confirmedBreak, leaveUnconfirmed, endThere };
    // Answers the pending question; `from` and `to` narrow its range. Ending
    // there is accepted only for a run long enough to ask about it; it ends
    // the session at the run's start with the timer value then, and keeps
    // every recorded stretch (see endAt).
    Result<void, SessionError> answerNoInputPrompt(NoInputPromptAnswer answer,
                                                   std::optional<Date> from = std::nullopt,
                                                   std::optional<Date> to = std::nullopt);
    // Relabels the time without input in [from, to] of a session (running or
    // finished); an empty state returns it to unconfirmed.
    Result<StudyStateEdit, SessionError> relabel(
        const Uuid& sessionID, Date from, Date to, std::optional<ConfirmedStudyState> state,
        ConfirmedStudyStateSource source = ConfirmedStudyStateSource::replayEdit);
    const std::optional<StudyStateEdit>& lastStudyStateEdit() const { return lastStudyStateEdit_; }
    // Puts the previous state back over the last edit's range.
    Result<StudyStateEdit, SessionError> undoLastStudyStateEdit();

    // ---- away from the computer (session_manager_passive_study.cpp) ----
    Result<void, SessionError> startPassiveStudy();
    Result<void, SessionError> endPassiveStudy();
    LiveStudyState liveStudyState() const;

    // ---- observable state ----
    const std::optional<StudySession>& activeSession() const { return activeSession_; }
    const std::string& currentApplicationName() const { return currentApplicationName_; }
    const std::string& currentBundleIdentifier() const { return currentBundleIdentifier_; }
    classification::ActivityClassification currentClassification() const {
        return currentClassification_;
    }
    bool currentIsInactive() const { return currentIsInactive_; }
    double currentPauseDuration() const { return currentPauseDuration_; }
    const std::optional<StudySession>& pendingPostSession() const { return pendingPostSession_; }
    bool pendingPostSessionAllowsCelebration() const {
        return pendingPostSessionAllowsCelebration_;
    }
    // Bests set by the session just ended, in PersonalBestKind order; published
    // with pendingPostSession.
    const std::vector<PersonalBest>& pendingPostSessionPersonalBests() const {
        return pendingPostSessionPersonalBests_;
    }
    const std::optional<NoInputClassificationPrompt>& pendingNoInputPrompt() const {
        return pendingNoInputPrompt_;
    }
    // Confirmations of the active session (the open away period excluded).
    const std::vector<ConfirmedNoInputInterval>& activeSessionConfirmations() const {
        return sessionConfirmations_;
    }
    void clearPendingPostSession();
    // Told which observable field changed; any number may listen (a tray, a
    // window, the command service), each removing itself with its token.
    ObserverList<ObservedField>& observers() { return observers_; }
    // Told of each failure that no call returns.
    ObserverList<SessionError>& problems() { return problems_; }

    // The timer value of the active session now: time counted while running.
    double currentTimerValue();
    // Segments of the active session closed so far (the open stretch excluded).
    const std::vector<ActivitySegment>& activeSessionSegments() const { return sessionSegments_; }
    const ActivityTimelineEngine& timelineEngine() const { return timelineEngine_; }
    const std::optional<ActivitySegment>& openPersistedSegment() const {
        return openPersistedSegment_;
    }

  private:
    TrackingInstant nowInstant();
    double timerValueAt(double monotonicTime) const;
    void publish(ObservedField field);
    // Ends the session at `instant` (in the past) with `timerValue`, keeping
    // what was recorded after it.
    void endAt(TrackingInstant instant, double timerValue);
    // Pauses with the stretch closed at `instant` and the timer set to `timerValue`.
    void pauseAt(TrackingInstant instant, double timerValue);
    void reportProblem(SessionFailure failure, std::string detail = {});
    // Posts `notice` when the notifications preference is on; every notice
    // goes through here.
    void postNotice(const SessionNotice& notice);

    // sampling (session_manager_sampling.cpp)
    // Observation (re)starts at `instant` (a start, resume, wake or recovery).
    void beginObservation(TrackingInstant instant);
    ActivityState sampleState(const std::optional<FrontmostApplication>& frontmost,
                              double idleSeconds, Date wallNow);
    classification::ActivityClassification pdfClassification(const BrowserResolution& pdf);
    void sampleAndRecord(TrackingInstant instant);
    TrackingInstant boundaryFor(const ActivityState& next, TrackingInstant instant,
                                double idleSeconds) const;
    void recordClosedInterval(const FinalizedActivityInterval& interval);
    ActivitySegment segmentFor(const ActivityState& state, Date start) const;
    void mirrorOpenInterval();
    void publishCurrent(const ActivityState& state);
    void completeTimerIfReached(TrackingInstant instant);

    Result<StudyStateEdit, SessionError> relabelActiveSession(
        Date from, Date to, std::optional<ConfirmedStudyState> state,
        ConfirmedStudyStateSource source);

    // persistence (session_manager_persistence.cpp)
    void queueSession();
    void queueOpenSegment(TrackingInstant instant);
    bool save(bool durable = false);
    void finishSession(TrackingInstant endInstant, double timerDuration, StudySessionStatus status);
    std::vector<PersonalBest> personalBestsOf(const StudySession& finished, Date now);

    // away from the computer and no-input runs
    void closeLivePassiveStudy(Date at);
    void trackNoInputRun(const ActivityState& next, TrackingInstant instant, double idleSeconds);
    void declareOfflineStudy(const FinalizedActivityInterval& interval);

    // checkpoint and recovery (session_manager_recovery.cpp)
    void noteQueuedBoundary(TrackingInstant boundary);
    void writeCheckpoint(TrackingInstant instant);
    void removeCheckpoint();
    void lookForUnfinishedSession();
    ActiveSessionCheckpoint checkpointFromStore(const StudySession& session) const;
    void clearPendingRecovery();

    RecordingStore& store_;
    RecordingPreferences& preferences_;
    IdleTimeProvider& idleTimeProvider_;
    MonotonicTimeProvider& monotonicTimeProvider_;
    WallClock& wallClock_;
    FrontmostApplicationSource& frontmostApplication_;
    NotificationService& notificationService_;
    BrowserTrackingCoordinator& browserTrackingCoordinator_;
    SessionCheckpointStore& checkpointStore_;
    classification::ClassificationRules& rules_;
    SessionHistory& history_;
    StoreSaveOperation persistenceSaveOperation_;
    PersonalBestsCheck* personalBests_;
    ObserverList<>::Token rulesObservation_ = 0;

    std::optional<StudySession> activeSession_;
    std::string currentApplicationName_;
    std::string currentBundleIdentifier_;
    classification::ActivityClassification currentClassification_ =
        classification::ActivityClassification::unclassified;
    bool currentIsInactive_ = false;
    double currentPauseDuration_ = 0.0;
    std::optional<StudySession> pendingPostSession_;
    bool pendingPostSessionAllowsCelebration_ = false;
    std::vector<PersonalBest> pendingPostSessionPersonalBests_;
    ObserverList<ObservedField> observers_;
    ObserverList<SessionError> problems_;

    ActivityTimelineEngine timelineEngine_;
    std::vector<ActivitySegment> sessionSegments_;
    std::optional<ActivitySegment> openPersistedSegment_;
    bool openSegmentWritten_ = false;
    double timerBaseDuration_ = 0.0;
    std::optional<double> timerAnchor_;
    std::optional<double> pauseAnchor_;
    int saveTick_ = 0;
    StoreChangeSet pendingChanges_;

    bool isSleeping_ = false;
    std::optional<TrackingInstant> sleepStartedAt_;
    std::optional<double> sleepStartedTimerDuration_;
    bool isPreparingForTermination_ = false;

    std::vector<ConfirmedNoInputInterval> sessionConfirmations_;
    std::optional<ConfirmedNoInputInterval> openPassiveStudyInterval_;
    std::optional<double> noInputRunStart_;
    std::optional<Date> noInputRunStartDate_;
    // When observation last (re)started: the start, a resume, a wake.
    TrackingInstant observedSince_;
    // What the gap rule keeps between samples.
    FrontmostMemory frontmostMemory_;
    std::optional<NoInputClassificationPrompt> pendingNoInputPrompt_;
    std::optional<TrackingInstant> pendingNoInputPromptStart_;
    std::optional<StudyStateEdit> lastStudyStateEdit_;

    // The end of the last stretch saved in the store and the timer there.
    struct ConfirmedBoundary {
        Date date;
        double timerValue = 0.0;
    };
    ConfirmedBoundary confirmedBoundary_;
    std::optional<ConfirmedBoundary> unsavedBoundary_;
    std::optional<double> openStretchStartMonotonic_;
    double accumulatedPauseDuration_ = 0.0;
    std::optional<ActiveSessionCheckpoint> recoveredCheckpoint_;
    std::optional<StudySession> pendingRecoverySession_;
    std::optional<ActiveSessionRecoverySummary> pendingRecoverySummary_;
};

}  // namespace lumenote::recording
