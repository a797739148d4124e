// The store's walks over the history: one session or segment row at a time,
// through statements of their own that stay open for the whole walk.
#include <algorithm>
#include <string>

#include "store/sqlite_recording_store.hpp"
#include "store/store_rows.hpp"

namespace lumenote {

Result<std::unique_ptr<SqliteStatement>, StoreError> SqliteRecordingStore::prepareSessionWalk(
    const SessionRange& range) {
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

Result<void, StoreError> SqliteRecordingStore::forEachSession(const SessionWalkQuery& query,
                                                              const SessionVisitor& visitor) {
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
        StudySession session = readSession(**sessions);
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

Result<void, StoreError> SqliteRecordingStore::forEachSegment(const SegmentWalkQuery& query,
                                                              const SegmentVisitor& visitor) {
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
    auto segments = connection_->prepare(
        selectSql(segmentLayout(), "WHERE session = ?1 ORDER BY startDate, id"));
    if (!segments) {
        return fail(segments.error());
    }
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
        const StudySession session = readSession(**sessions);
        (*segments)->bind(1, session.id);
        while (true) {
            auto segmentRow = (*segments)->step();
            if (!segmentRow) {
                return fail(segmentRow.error());
            }
            if (!*segmentRow) {
                break;
            }
            if (!visitor(session, readSegment(**segments))) {
                return {};
            }
        }
        (*segments)->reset();
    }
}

}  // namespace lumenote
