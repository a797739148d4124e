// The store's walks over the history on a real file: order, range bounds,
// selections, children, early stops, and what a walk holds while it runs.
#include <functional>

#include <gtest/gtest.h>

#include <map>

#include "store/sqlite_connection.hpp"
#include "store_test_support.hpp"

namespace lumenote::store {
namespace {

using namespace lumenote::testing;

std::vector<Uuid> ids(std::initializer_list<int> numbers) {
    std::vector<Uuid> result;
    for (int number : numbers) {
        result.push_back(uuidNumbered(static_cast<std::uint8_t>(number)));
    }
    return result;
}

class SqliteHistoryWalkTest : public TemporaryFolderTest {
  protected:
    void SetUp() override {
        TemporaryFolderTest::SetUp();
        store_ = openStore();
        ASSERT_TRUE(store_);
    }

    void apply(const recording::StoreChangeSet& changes) {
        auto applied = store_->apply(changes);
        ASSERT_TRUE(applied.ok()) << applied.error().description;
    }

    // The ids of the sessions a walk visits, in visiting order.
    std::vector<Uuid> walkSessions(const recording::SessionWalkQuery& query) {
        std::vector<Uuid> visited;
        auto walked = store_->forEachSession(query, [&](const recording::StudySession& session) {
            visited.push_back(session.id);
            return true;
        });
        EXPECT_TRUE(walked.ok()) << walked.error().description;
        return visited;
    }

    // The ids of the segments a walk visits, in visiting order; checks that
    // each comes with its own session.
    std::vector<Uuid> walkSegments(const recording::SegmentWalkQuery& query) {
        std::vector<Uuid> visited;
        auto walked = store_->forEachSegment(query, [&](const recording::StudySession& session,
                                                        const recording::ActivitySegment& segment) {
            EXPECT_EQ(segment.session, session.id);
            visited.push_back(segment.id);
            return true;
        });
        EXPECT_TRUE(walked.ok()) << walked.error().description;
        return visited;
    }

    // Sessions 1..4 with segments numbered after their session:
    //
    //   time:      50     90    100   105 110    130       200      300
    //   session 3  |                                                      no segments
    //   session 1               |         11,12  13
    //   session 2               |   21 (starts before its session)
    //   session 4                     41                   |        42
    //
    // Sessions 1 and 2 start together (id order decides); segments 11 and 12
    // start together too, and 12 is stored first. Session 4's first segment starts before those of
    // sessions 1 and 2, yet comes after them: sessions order the walk.
    void storeFourSessions() {
        recording::StoreChangeSet changes;
        for (const auto& [number, start] :
             std::vector<std::pair<std::uint8_t, double>>{{4, 200}, {2, 100}, {3, 50}, {1, 100}}) {
            changes.sessions.push_back(fullSession(number, Date{start}));
        }
        for (const auto& [number, session, start] :
             std::vector<std::tuple<std::uint8_t, std::uint8_t, double>>{{42, 4, 300},
                                                                         {13, 1, 130},
                                                                         {21, 2, 90},
                                                                         {12, 1, 110},
                                                                         {41, 4, 105},
                                                                         {11, 1, 110}}) {
            changes.segments.push_back(fullSegment(number, uuidNumbered(session), Date{start}));
        }
        apply(changes);
    }

    std::unique_ptr<store::SqliteRecordingStore> store_;
};

TEST_F(SqliteHistoryWalkTest, SessionsComeInStartThenIdOrderAndRangesKeepOnlyTheirLowerBound) {
    // start:  100   200   200   200   300
    // id:      5     3     4     9     1
    recording::StoreChangeSet changes;
    for (const auto& [number, start] : std::vector<std::pair<std::uint8_t, double>>{
             {4, 200}, {1, 300}, {9, 200}, {5, 100}, {3, 200}}) {
        changes.sessions.push_back(bareSession(number, Date{start}));
    }
    apply(changes);
    auto everySession = store_->listSessions({.newestFirst = false});
    ASSERT_TRUE(everySession.ok());

    const struct {
        const char* name;
        recording::SessionRange range;
        std::vector<Uuid> expected;
    } cases[] = {
        {"everything", {}, ids({5, 3, 4, 9, 1})},
        {"from a start, inclusive", {.startingAtOrAfter = Date{200}}, ids({3, 4, 9, 1})},
        {"before a start, exclusive", {.startingBefore = Date{200}}, ids({5})},
        {"both bounds on starts", {Date{200}, Date{300}}, ids({3, 4, 9})},
        {"just past the last start", {Date{100}, Date{300.001}}, ids({5, 3, 4, 9, 1})},
        {"just after a start", {.startingAtOrAfter = Date{200.001}}, ids({1})},
        {"one instant", {Date{200}, Date{200.001}}, ids({3, 4, 9})},
        {"empty range", {Date{300}, Date{300}}, {}},
        {"inverted range", {Date{300}, Date{100}}, {}},
        {"after the history", {.startingAtOrAfter = Date{301}}, {}},
    };
    for (const auto& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        EXPECT_EQ(walkSessions({.range = testCase.range}), testCase.expected);
        // A fake reader filters with SessionRange::contains: it must agree.
        std::vector<Uuid> contained;
        for (const recording::StudySession& session : *everySession) {
            if (testCase.range.contains(session.startDate)) {
                contained.push_back(session.id);
            }
        }
        EXPECT_EQ(contained, testCase.expected);
    }
}

TEST_F(SqliteHistoryWalkTest, ASessionComesWithItsOwnChildrenOnlyWhenAskedFor) {
    storeFourSessions();
    recording::StoreChangeSet more;
    more.confirmedIntervals = {confirmation(60, uuidNumbered(1), Date{120}),
                               confirmation(61, uuidNumbered(4), Date{250})};
    more.pdfIdentities = {pdfIdentity(70, uuidNumbered(1), Date{111}, "manual"),
                          pdfIdentity(71, uuidNumbered(2), Date{91}, std::nullopt),
                          pdfIdentity(72, std::nullopt, Date{92}, std::nullopt)};
    apply(more);

    std::vector<recording::StudySession> withChildren;
    ASSERT_TRUE(store_->forEachSession({.includeChildren = true},
                                       [&](const recording::StudySession& session) {
                                           withChildren.push_back(session);
                                           return true;
                                       }));
    ASSERT_EQ(withChildren.size(), 4u);
    for (const recording::StudySession& visited : withChildren) {
        SCOPED_TRACE(visited.id.upperString());
        auto loaded = store_->loadSession(visited.id);
        ASSERT_TRUE(loaded.ok() && loaded->has_value());
        EXPECT_EQ(visited, **loaded);
    }
    // Session 1's segments 11 and 12 start together; 12 was stored first.
    std::vector<Uuid> sessionOneSegments;
    for (const recording::ActivitySegment& segment : withChildren[1].segments) {
        sessionOneSegments.push_back(segment.id);
    }
    EXPECT_EQ(sessionOneSegments, ids({11, 12, 13}));
    EXPECT_TRUE(withChildren[0].segments.empty());  // session 3

    std::vector<recording::StudySession> bare;
    ASSERT_TRUE(store_->forEachSession({}, [&](const recording::StudySession& session) {
        bare.push_back(session);
        return true;
    }));
    ASSERT_EQ(bare.size(), 4u);
    for (std::size_t index = 0; index < bare.size(); ++index) {
        recording::StudySession expected = withChildren[index];
        expected.segments.clear();
        expected.confirmedNoInputIntervals.clear();
        expected.localPDFIdentities.clear();
        EXPECT_EQ(bare[index], expected);
    }
}

TEST_F(SqliteHistoryWalkTest, SegmentsComeBySessionThenStartThenIdWithTheirSession) {
    storeFourSessions();
    std::vector<std::pair<recording::StudySession, recording::ActivitySegment>> visits;
    ASSERT_TRUE(store_->forEachSegment(
        {}, [&](const recording::StudySession& session, const recording::ActivitySegment& segment) {
            visits.emplace_back(session, segment);
            return true;
        }));
    ASSERT_EQ(visits.size(), 6u);
    std::vector<Uuid> order;
    for (const auto& [session, segment] : visits) {
        SCOPED_TRACE(segment.id.upperString());
        order.push_back(segment.id);
        // The owner as stored, without children; the segment as stored.
        recording::StudySession owner = store_->loadSession(session.id)->value();
        const auto stored = std::find_if(owner.segments.begin(), owner.segments.end(),
                                         [&](const auto& each) { return each.id == segment.id; });
        ASSERT_NE(stored, owner.segments.end());
        EXPECT_EQ(segment, *stored);
        owner.segments.clear();
        EXPECT_EQ(session, owner);
    }
    EXPECT_EQ(order, ids({11, 12, 13, 21, 41, 42}));
}

TEST_F(SqliteHistoryWalkTest, SegmentSelectionsByRangeAndSessionKeepTheHistoryOrder) {
    storeFourSessions();
    const auto named = [](std::initializer_list<int> numbers) {
        return std::optional<std::vector<Uuid>>(ids(numbers));
    };
    const struct {
        const char* name;
        recording::SessionRange range;
        std::optional<std::vector<Uuid>> sessions;
        std::vector<Uuid> expected;
    } cases[] = {
        {"everything", {}, std::nullopt, ids({11, 12, 13, 21, 41, 42})},
        {"range with only a session without segments",
         {.startingBefore = Date{100}},
         std::nullopt,
         {}},
        {"range up to the last session's start",
         {Date{100}, Date{200}},
         std::nullopt,
         ids({11, 12, 13, 21})},
        {"from the last session's start",
         {.startingAtOrAfter = Date{200}},
         std::nullopt,
         ids({41, 42})},
        {"named sessions in another order", {}, named({4, 1}), ids({11, 12, 13, 41, 42})},
        {"a repeated and an unknown session", {}, named({4, 99, 4}), ids({41, 42})},
        {"a session without segments", {}, named({3}), {}},
        {"no session named", {}, named({}), {}},
        {"named sessions within a range",
         {.startingAtOrAfter = Date{150}},
         named({1, 4}),
         ids({41, 42})},
    };
    for (const auto& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        EXPECT_EQ(walkSegments({testCase.range, testCase.sessions}), testCase.expected);
    }
}

TEST_F(SqliteHistoryWalkTest, ChildrenComeInStartThenIdOrderWhicheverWayTheyAreRead) {
    storeFourSessions();
    const auto segmentIds = [](const recording::StudySession& session) {
        std::vector<Uuid> found;
        for (const auto& segment : session.segments) {
            found.push_back(segment.id);
        }
        return found;
    };
    // Segment 12 was stored before 11 with the same start.
    std::map<Uuid, std::vector<Uuid>> walked;
    ASSERT_TRUE(store_->forEachSession({.includeChildren = true},
                                       [&](const recording::StudySession& session) {
                                           walked[session.id] = segmentIds(session);
                                           return true;
                                       }));
    EXPECT_EQ(walked[uuidNumbered(1)], ids({11, 12, 13}));
    EXPECT_EQ(walked[uuidNumbered(4)], ids({41, 42}));
    auto loaded = store_->loadSession(uuidNumbered(1));
    ASSERT_TRUE(loaded.ok() && loaded->has_value());
    EXPECT_EQ(segmentIds(**loaded), ids({11, 12, 13}));
}

TEST_F(SqliteHistoryWalkTest, AnEmptyStoreIsWalkedWithoutAVisit) {
    int visits = 0;
    EXPECT_TRUE(
        store_->forEachSession({.includeChildren = true}, [&](const recording::StudySession&) {
            ++visits;
            return true;
        }));
    EXPECT_TRUE(store_->forEachSegment(
        {}, [&](const recording::StudySession&, const recording::ActivitySegment&) {
            ++visits;
            return true;
        }));
    EXPECT_EQ(visits, 0);
}

TEST_F(SqliteHistoryWalkTest, AVisitorThatReturnsFalseIsTheLastOneCalled) {
    storeFourSessions();
    for (std::size_t stopAt = 1; stopAt <= 4; ++stopAt) {
        SCOPED_TRACE("sessions, stop at " + std::to_string(stopAt));
        std::vector<Uuid> visited;
        ASSERT_TRUE(store_->forEachSession({}, [&](const recording::StudySession& session) {
            visited.push_back(session.id);
            return visited.size() < stopAt;
        }));
        const std::vector<Uuid> all = ids({3, 1, 2, 4});
        EXPECT_EQ(visited, std::vector<Uuid>(all.begin(), all.begin() + stopAt));
    }
    // Inside a session's segments, at its last segment, and at the last of all.
    for (std::size_t stopAt : {2u, 3u, 6u}) {
        SCOPED_TRACE("segments, stop at " + std::to_string(stopAt));
        std::vector<Uuid> visited;
        ASSERT_TRUE(store_->forEachSegment(
            {}, [&](const recording::StudySession&, const recording::ActivitySegment& segment) {
                visited.push_back(segment.id);
                return visited.size() < stopAt;
            }));
        const std::vector<Uuid> all = ids({11, 12, 13, 21, 41, 42});
        EXPECT_EQ(visited, std::vector<Uuid>(all.begin(), all.begin() + stopAt));
    }
}

TEST_F(SqliteHistoryWalkTest, AVisitorMayReadTheSameStoreWhileTheWalkRuns) {
    storeFourSessions();
    std::vector<Uuid> nested;
    std::size_t segmentsSeen = 0;
    ASSERT_TRUE(store_->forEachSession(
        {.includeChildren = true}, [&](const recording::StudySession& session) {
            // The same statements the walk uses for children, and a second walk.
            auto loaded = store_->loadSession(session.id);
            EXPECT_TRUE(loaded.ok() && loaded->has_value() && **loaded == session);
            auto listed = store_->listSessions({.includeChildren = true});
            EXPECT_TRUE(listed.ok() && listed->size() == 4u);
            EXPECT_TRUE(store_->forEachSegment({.sessions = std::vector<Uuid>{session.id}},
                                               [&](const recording::StudySession& owner,
                                                   const recording::ActivitySegment& segment) {
                                                   EXPECT_EQ(owner.id, session.id);
                                                   nested.push_back(segment.id);
                                                   return true;
                                               }));
            segmentsSeen += session.segments.size();
            return true;
        }));
    EXPECT_EQ(nested, ids({11, 12, 13, 21, 41, 42}));
    EXPECT_EQ(segmentsSeen, 6u);
}

// ---- what a walk holds ----------------------------------------------------

class SqliteHistoryWalkFileTest : public SqliteHistoryWalkTest {
  protected:
    // A second connection to the store file, as another process holds it.
    std::unique_ptr<store::SqliteConnection> connectAgain() {
        auto connection = store::SqliteConnection::open(storeFile().string());
        EXPECT_TRUE(connection.ok());
        return connection.ok() ? std::move(*connection) : nullptr;
    }

    // Whether a full checkpoint from `connection` could fold the whole
    // write-ahead log into the file: not while some reader still reads a
    // snapshot that needs it.
    static bool checkpointCompletes(store::SqliteConnection& connection) {
        auto checkpoint = connection.cached("PRAGMA wal_checkpoint(TRUNCATE)");
        EXPECT_TRUE(checkpoint.ok());
        auto row = (*checkpoint)->step();
        EXPECT_TRUE(row.ok() && *row);
        return (*checkpoint)->integerAt(0) == 0;
    }
};

TEST_F(SqliteHistoryWalkFileTest, AWalkSeesOneSnapshotAndReleasesItWhenItEnds) {
    storeFourSessions();
    auto other = connectAgain();
    ASSERT_TRUE(other);
    other->setBusyTimeout(0);
    ASSERT_TRUE(checkpointCompletes(*other));
    // Something in the log again, so that a walk's snapshot depends on it.
    apply(recording::StoreChangeSet{.sessions = {bareSession(5, Date{400})}});

    // Another process records a session while the walk is under way.
    std::vector<Uuid> visited;
    bool checkpointedDuringWalk = true;
    ASSERT_TRUE(store_->forEachSession({}, [&](const recording::StudySession& session) {
        if (visited.empty()) {
            auto inserted = other->execute(
                "INSERT INTO sessions (id, subject, goal, plannedDuration, startDate, "
                "statusRawValue, timerDuration, focusedDuration, distractedDuration, "
                "neutralDuration, inactiveDuration) "
                "VALUES (x'00000000000000000000000000000006', '', '', 0, 500, 'completed', 0, 0, "
                "0, 0, 0)");
            EXPECT_TRUE(inserted.ok()) << inserted.error().description;
            checkpointedDuringWalk = checkpointCompletes(*other);
        }
        visited.push_back(session.id);
        return true;
    }));
    EXPECT_EQ(visited, ids({3, 1, 2, 4, 5}));
    EXPECT_FALSE(checkpointedDuringWalk);
    EXPECT_TRUE(checkpointCompletes(*other));
    EXPECT_EQ(walkSessions({.range = {.startingAtOrAfter = Date{500}}}), ids({6}));

    // Walks stopped early, at a segment or at a session read with its
    // children, end their reads too.
    apply(recording::StoreChangeSet{.sessions = {bareSession(7, Date{600})}});
    ASSERT_TRUE(store_->forEachSegment(
        {},
        [](const recording::StudySession&, const recording::ActivitySegment&) { return false; }));
    EXPECT_TRUE(checkpointCompletes(*other));
    apply(recording::StoreChangeSet{.sessions = {bareSession(8, Date{700})}});
    ASSERT_TRUE(store_->forEachSession({.includeChildren = true},
                                       [](const recording::StudySession&) { return false; }));
    EXPECT_TRUE(checkpointCompletes(*other));
}

TEST_F(SqliteHistoryWalkFileTest, WalksGoOnWhileAnotherConnectionHoldsTheWriteLock) {
    storeFourSessions();
    auto other = connectAgain();
    ASSERT_TRUE(other);
    ASSERT_TRUE(other->execute("BEGIN IMMEDIATE; DELETE FROM segments"));
    EXPECT_EQ(walkSessions({.includeChildren = true}), ids({3, 1, 2, 4}));
    // The uncommitted deletion is not seen.
    EXPECT_EQ(walkSegments({}), ids({11, 12, 13, 21, 41, 42}));
    ASSERT_TRUE(other->execute("COMMIT"));
    EXPECT_TRUE(walkSegments({}).empty());
}

}  // namespace
}  // namespace lumenote::store
