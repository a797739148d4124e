// The storage the recorder writes through: sessions with their segments and
// confirmations, classification rules and local PDF records. The SQLite
// implementation lives in store/; tests may substitute their own.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "classification/classification_records.hpp"
#include "classification/classification_rule_store.hpp"
#include "foundation/result.hpp"
#include "foundation/store_error.hpp"
#include "foundation/uuid.hpp"
#include "recording/session_records.hpp"

namespace lumenote::recording {

// Changes written together in one transaction: either all of them land or
// none does. Upserts insert a record or replace the stored one with the same
// id (for sessions: the session's own columns; its children are written
// through the segment and interval lists, never implied).
struct StoreChangeSet {
    std::vector<StudySession> sessions;
    std::vector<ActivitySegment> segments;                     // `session` must name the owner
    std::vector<ConfirmedNoInputInterval> confirmedIntervals;  // likewise
    std::vector<classification::LocalPDFIdentity> pdfIdentities;
    // Applied after the upserts: segments first, then sessions. Deleting a
    // session deletes its segments, confirmations and PDF identities with it.
    std::vector<Uuid> deletedSegments;
    std::vector<Uuid> deletedSessions;
    // Sync to disk before returning (ending a session, restoring data).
    bool durable = false;

    bool empty() const {
        return sessions.empty() && segments.empty() && confirmedIntervals.empty() &&
               pdfIdentities.empty() && deletedSegments.empty() && deletedSessions.empty();
    }
    // Adds `later` after this set's own changes (a later upsert of the same id wins).
    void append(const StoreChangeSet& later);
};

// How a service saves a change set: normally the store's apply(); a test or
// the scenario runner may put a failing one in its place.
using StoreSaveOperation = std::function<Result<void, StoreError>(const StoreChangeSet&)>;

class RecordingStore;
// `given`, or, when it is empty, saving through `store` (which must outlive it).
StoreSaveOperation saveOperationOr(StoreSaveOperation given, RecordingStore& store);

// Which sessions a listing returns.
struct SessionQuery {
    std::optional<Date> startingAtOrAfter;
    std::optional<Date> startingBefore;
    // Only sessions whose subject or goal contains this text, ignoring the
    // case of ASCII letters (other letters match as written); empty matches
    // every session.
    std::string subjectOrGoalContains;
    // Only sessions of this status.
    std::optional<StudySessionStatus> status;
    bool newestFirst = true;
    std::optional<std::size_t> limit;
    std::size_t offset = 0;
    bool includeChildren = false;  // segments, confirmations and PDF identity ids
};

// Sessions with their children, plus the classification rules (the rules
// service reads and writes those through their own role).
class RecordingStore : public classification::ClassificationRuleStore {
  public:
    virtual Result<void, StoreError> apply(const StoreChangeSet& changes) = 0;

    // A session with its segments (in start order), confirmations and PDF
    // identity ids; nullopt when there is none with that id.
    virtual Result<std::optional<StudySession>, StoreError> loadSession(const Uuid& id) = 0;
    virtual Result<std::vector<StudySession>, StoreError> listSessions(
        const SessionQuery& query) = 0;
    // Sessions whose status is running or paused (found after a crash).
    virtual Result<std::vector<StudySession>, StoreError> liveSessions() = 0;
    virtual Result<std::size_t, StoreError> sessionCount() = 0;
    // Activity segments of every stored session.
    virtual Result<std::size_t, StoreError> segmentCount() = 0;
    virtual Result<void, StoreError> deleteAllSessions() = 0;
};

}  // namespace lumenote::recording
