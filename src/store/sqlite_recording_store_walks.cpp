// The store's walks over the history: one session or segment row at a time,
// through statements of their own that stay open for the whole walk.
#include <algorithm>
#include <string>

#include "store/sqlite_recording_store.hpp"
#include "store/store_rows.hpp"

namespace lumenote::store {

namespace {

// Visits one session's segments from `segments`, which yields them in start
// order with equal starts in row order, putting each run of equal starts in
// id order. The (session, startDate) index gives the start order for free;
// asking SQLite for the id order as well would pass every row of every
// session through a sorter, which took about 40% of a whole-history walk.
// `sameStart` is scratch space kept across sessions. Returns false when the
// visitor ended the walk.
Result<bool, StoreError> visitSegmentsOf(
    SqliteStatement& segments, const recording::StudySession& session,
    const recording::SessionHistoryReader::SegmentVisitor& visitor,
    std::vector<recording::ActivitySegment>& sameStart) {
    sameStart.clear();
    const auto visitSameStart = [&] {
        std::sort(sameStart.begin(), sameStart.end(),
                  [](const recording::ActivitySegment& a, const recording::ActivitySegment& b) {
                      return a.id < b.id;
                  });
        for (const recording::ActivitySegment& segment : sameStart) {
            if (!visitor(session, segment)) {
                return false;
            }
        }
        sameStart.clear();
        return true;
    };
    while (true) {
        auto row = segments.step();
        if (!row) {
            return fail(row.error());
        }
        if (!*row) {
            return visitSameStart();
        }
        recording::ActivitySegment segment = readSegment(segments);
        if (!sameStart.empty() && segment.startDate != sameStart.front().startDate &&
            !visitSameStart()) {
            return false;
        }
        sameStart.push_back(std::move(segment));
    }
}

}  // namespace

Result<std::unique_ptr<SqliteStatement>, StoreError> SqliteRecordingStore::prepareSessionWalk(
    const recording::SessionRange& range) {
    // Both bounds go through the (startDate, id) index, which also gives the
    // order, so no sort ever holds the selected sessions.
    std::string tail = "WHERE 1";
    if (range.startingAtOrAfter) {
        tail += " AND startDate >= ?1";
    }
    if (range.startingBefore) {
        tail += " AND startDate < ?2";
    }
    tail += " ORDER BY startDate, id";
    auto statement = connection_->prepare(selectSql(sessionLayout(), tail));
    if (!statement) {
        return statement;
    }
    if (range.startingAtOrAfter) {
        (*statement)->bind(1, *range.startingAtOrAfter);
    }
    if (range.startingBefore) {
        (*statement)->bind(2, *range.startingBefore);
    }
    return statement;
}

Result<void, StoreError> SqliteRecordingStore::forEachSession(
    const recording::SessionWalkQuery& query, const SessionVisitor& visitor) {
    auto sessions = prepareSessionWalk(query.range);
    if (!sessions) {
        return fail(sessions.error());
    }
    while (true) {
        auto row = (*sessions)->step();
        if (!row) {
            return fail(row.error());
        }
        if (!*row) {
            return {};
        }
        recording::StudySession session = readSession(**sessions);
        if (query.includeChildren) {
            // The children's cached statements run inside the walk's read
            // transaction and are back in the cache before the visitor runs.
            if (auto loaded = loadChildren(session); !loaded) {
                return loaded;
            }
        }
        if (!visitor(session)) {
            return {};
        }
    }
}

Result<void, StoreError> SqliteRecordingStore::forEachSegment(
    const recording::SegmentWalkQuery& query, const SegmentVisitor& visitor) {
    std::vector<Uuid> selected;
    if (query.sessions) {
        if (query.sessions->empty()) {
            return {};
        }
        selected = *query.sessions;
        std::sort(selected.begin(), selected.end());
    }
    auto sessions = prepareSessionWalk(query.range);
    if (!sessions) {
        return fail(sessions.error());
    }
    auto segments =
        connection_->prepare(selectSql(segmentLayout(), "WHERE session = ?1 ORDER BY startDate"));
    if (!segments) {
        return fail(segments.error());
    }
    std::vector<recording::ActivitySegment> sameStart;
    while (true) {
        auto sessionRow = (*sessions)->step();
        if (!sessionRow) {
            return fail(sessionRow.error());
        }
        if (!*sessionRow) {
            return {};
        }
        if (query.sessions &&
            !std::binary_search(selected.begin(), selected.end(), (*sessions)->uuidAt(0))) {
            continue;
        }
        const recording::StudySession session = readSession(**sessions);
        (*segments)->bind(1, session.id);
        auto goOn = visitSegmentsOf(**segments, session, visitor, sameStart);
        if (!goOn) {
            return fail(goOn.error());
        }
        if (!*goOn) {
            return {};
        }
        (*segments)->reset();
    }
}

}  // namespace lumenote::store
