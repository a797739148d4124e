// SessionHistory: the stored sessions as the user looks back on them. Editing
// a finished session's subject, goal and notes, deleting sessions with a
// timed undo, deleting all, resetting, relabelling time without input in a
// finished session, and bringing stored totals up to date when the way they
// are derived changed. The recorder and every front end share one instance,
// so the command line changes history without a recorder.
//
// A session is active while the store holds one that is running or paused,
// whichever process records it: history changes that would race the recorder
// (deleting, deleting all, resetting, editing that session) are refused then.
// Nothing here reads a clock of its own: the undo offer lasts
// kDeletionUndoSeconds on the injected monotonic clock, ended by tick().
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "classification/classification_rules.hpp"
#include "foundation/observer_list.hpp"
#include "recording/recording_preferences.hpp"
#include "recording/recording_store.hpp"
#include "recording/session_messages.hpp"
#include "recording/session_reclassification.hpp"
#include "recording/study_state_edit.hpp"
#include "recording/time_providers.hpp"

namespace lumenote::recording {

inline constexpr double kDeletionUndoSeconds = 10.0;
// The revision of derived totals this build computes; stored sessions carrying
// another revision are recalculated at start-up. Revision 2: overlapping
// confirmations count once.
inline constexpr long long kDerivedTotalsRevision = 2;

// A full copy of deleted sessions, enough to insert them again unchanged.
struct SessionDeletionSnapshot {
    StudySession session;  // with segments and confirmations
    std::vector<classification::LocalPDFIdentity> localPDFIdentities;
};

struct SessionDeletionBatch {
    Uuid id;
    std::vector<SessionDeletionSnapshot> snapshots;
};

struct SessionHistoryDependencies {
    RecordingStore& store;
    classification::ClassificationRules& rules;
    RecordingPreferences& preferences;
    MonotonicTimeProvider& monotonicClock;
    WallClock& wallClock;
    // How changes are saved; empty saves straight through the store. Tests
    // put a failing save here.
    StoreSaveOperation save;
};

class SessionHistory {
  public:
    explicit SessionHistory(SessionHistoryDependencies dependencies);

    // Recomputes the stored totals of every finished session when the
    // derived revision differs from this build's, then records the revision.
    Result<void, SessionError> bringTotalsUpToDate();
    // Recomputes the stored totals of every finished session under its own
    // version (v1 sessions keep theirs).
    Result<void, SessionError> recalculateStoredTotals();

    // Subject, goal and notes are trimmed; an empty subject and texts over
    // their limits are refused, never cut. Refused for a live session.
    Result<void, SessionError> editSession(const Uuid& id, const std::string& subject,
                                           const std::string& goal,
                                           const std::optional<std::string>& notes);
    // Deletes sessions with their children and offers to undo it for
    // kDeletionUndoSeconds; a new deletion replaces the pending offer. Ids
    // that name no session are skipped; when none names one, nothing happens.
    Result<void, SessionError> deleteSessions(const std::vector<Uuid>& ids);
    Result<void, SessionError> undoSessionDeletion();
    Result<void, SessionError> deleteAllSessions();
    // Removes every session, rule, PDF record and the application's
    // preferences; templates and recovery files stay.
    Result<void, SessionError> resetAllData();

    // Relabels the time without input in [from, to] of a stored session; an
    // empty state returns it to unconfirmed.
    Result<StudyStateEdit, SessionError> relabel(const Uuid& sessionID, Date from, Date to,
                                                 std::optional<ConfirmedStudyState> state,
                                                 ConfirmedStudyStateSource source);

    // Gives `activity` the class `classification` in one finished session
    // only: its segments of that activity change and its totals are
    // recomputed under its own version (session_reclassification.hpp). No
    // rule is written. Refused for a live session and for a session of the
    // first calculation method.
    Result<void, SessionError> reclassifyInSession(const Uuid& sessionID,
                                                   const ClassifiedActivity& activity,
                                                   classification::ActivityClassification choice);
    // Writes the rule for `activity` (for a PDF, its identity's class), so
    // that every later recording takes `choice`, and gives the activity that
    // class in the session it was chosen from too, where the session's
    // method allows; a session of the first method keeps its totals.
    // Stored sessions otherwise keep the class they were recorded with.
    Result<void, SessionError> classifyAlways(const Uuid& sessionID,
                                              const ClassifiedActivity& activity,
                                              classification::ActivityClassification choice);

    // Ends the undo offer once its time is up; called once a second.
    void tick();
    bool canUndoSessionDeletion() const { return pendingSessionDeletion_.has_value(); }
    const std::optional<std::string>& sessionDeletionUndoDescription() const {
        return sessionDeletionUndoDescription_;
    }
    // Told when the undo offer starts or ends.
    ObserverList<>& deletionUndoChanged() { return deletionUndoChanged_; }

  private:
    Result<bool, SessionError> holdsLiveSession(SessionFailure whenUnreadable);
    void endUndoOffer();

    RecordingStore& store_;
    classification::ClassificationRules& rules_;
    RecordingPreferences& preferences_;
    MonotonicTimeProvider& monotonicClock_;
    WallClock& wallClock_;
    StoreSaveOperation save_;

    std::optional<SessionDeletionBatch> pendingSessionDeletion_;
    std::optional<std::string> sessionDeletionUndoDescription_;
    std::optional<double> deletionUndoDeadline_;
    ObserverList<> deletionUndoChanged_;
};

}  // namespace lumenote::recording
