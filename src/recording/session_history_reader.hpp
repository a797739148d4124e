// The reading role of the store on its own: walks over the recorded history
// that visit one session or one segment at a time, so that export, review and
// figures over years of sessions keep their memory flat. The SQLite store
// implements it; readers depend on this interface alone and tests fake it.
#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "foundation/dates.hpp"
#include "foundation/result.hpp"
#include "foundation/store_error.hpp"
#include "foundation/uuid.hpp"
#include "recording/session_records.hpp"
#include "recording/unclassified_activity_review.hpp"

namespace lumenote::recording {

// The sessions whose start date (an absolute instant, so the bounds of a
// local day or week come from the calendar) lies in
// [startingAtOrAfter, startingBefore):
// the lower bound is inclusive, the upper exclusive, so that consecutive
// days or weeks never share a session. An absent bound leaves its side open;
// a lower bound at or after the upper one selects nothing.
struct SessionRange {
    std::optional<Date> startingAtOrAfter;
    std::optional<Date> startingBefore;

    bool contains(Date start) const {
        return (!startingAtOrAfter || start >= *startingAtOrAfter) &&
               (!startingBefore || start < *startingBefore);
    }
};

// What a session walk visits.
struct SessionWalkQuery {
    SessionRange range;
    // Each session with its segments (in start order), confirmations and PDF
    // identity ids, as loadSession() gives it; otherwise its own fields only.
    bool includeChildren = false;
};

// What a segment walk visits: the segments of the sessions in `range`, and
// when `sessions` is given only of the sessions it names (ids of no stored
// session are ignored; an empty list selects nothing).
struct SegmentWalkQuery {
    SessionRange range;
    std::optional<std::vector<Uuid>> sessions;
};

class SessionHistoryReader {
  public:
    // A visitor returns true to go on and false to end the walk there; the
    // walk then returns success. Records are lent for the call only.
    using SessionVisitor = std::function<bool(const StudySession& session)>;
    // `session` is the segment's owner, without its children.
    using SegmentVisitor =
        std::function<bool(const StudySession& session, const ActivitySegment& segment)>;

    virtual ~SessionHistoryReader() = default;

    // Visits the selected sessions in start order (then id order for equal
    // starts), one at a time: only the visited session (and its children)
    // is held in memory. Fails with the store's error, after visiting the
    // sessions read before it.
    virtual Result<void, StoreError> forEachSession(const SessionWalkQuery& query,
                                                    const SessionVisitor& visitor) = 0;

    // Visits the selected segments ordered by their session (as the sessions
    // walk orders them), then by segment start date, then id, one at a time.
    // Sessions without segments are passed over. Fails like forEachSession.
    virtual Result<void, StoreError> forEachSegment(const SegmentWalkQuery& query,
                                                    const SegmentVisitor& visitor) = 0;

    // Visits one tally per activity and session of every stored segment that
    // is unclassified, not time without input and not a system segment: the
    // store sums them, so the review never holds the segments themselves.
    // The order is unspecified. Fails like forEachSession.
    using TallyVisitor = std::function<bool(const UnclassifiedActivityTally& tally)>;
    virtual Result<void, StoreError> forEachUnclassifiedActivityTally(
        const TallyVisitor& visitor) = 0;
};

}  // namespace lumenote::recording
