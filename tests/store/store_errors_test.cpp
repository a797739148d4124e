// The kinds of store failures, each provoked on a real file: a lock held by a
// second connection, damaged pages, a size limit reached, and the mapping of
// SQLite's result codes for the cases a test cannot provoke.
#include <sqlite3.h>

#include <cerrno>
#include <fstream>
#include <functional>

#include <gtest/gtest.h>

#include "store/sqlite_connection.hpp"
#include "store/store_schema.hpp"
#include "store_test_support.hpp"

namespace lumenote::store {
namespace {

using namespace lumenote::testing;
using namespace std::chrono_literals;

const Date kDay = Date{800000000.0};

// No waiting: a held lock fails the first attempt at once.
const store::SqliteStoreOptions kImpatient{.busyTimeout = 0ms};

class StoreErrorsTest : public TemporaryFolderTest {
  protected:
    // A second connection to `file`, as another process would hold it.
    static std::unique_ptr<store::SqliteConnection> connect(const std::filesystem::path& file) {
        std::filesystem::create_directories(file.parent_path());
        auto connection = store::SqliteConnection::open(file.string());
        EXPECT_TRUE(connection.ok());
        return connection.ok() ? std::move(*connection) : nullptr;
    }

    static recording::StoreChangeSet oneSession(std::uint8_t number) {
        recording::StoreChangeSet changes;
        changes.sessions = {bareSession(number, kDay.addingSeconds(number))};
        changes.segments = {bareSegment(static_cast<std::uint8_t>(100 + number),
                                        uuidNumbered(number), kDay.addingSeconds(number))};
        return changes;
    }
};

TEST(StoreErrorKindTest, SqliteResultCodesMapToTheirKinds) {
    const struct {
        int code;
        int systemErrno;
        StoreErrorKind expected;
    } cases[] = {
        {SQLITE_BUSY, 0, StoreErrorKind::busy},
        {SQLITE_BUSY_SNAPSHOT, 0, StoreErrorKind::busy},
        {SQLITE_BUSY_RECOVERY, 0, StoreErrorKind::busy},
        {SQLITE_LOCKED, 0, StoreErrorKind::busy},
        {SQLITE_LOCKED_SHAREDCACHE, 0, StoreErrorKind::busy},
        {SQLITE_CORRUPT, 0, StoreErrorKind::corrupt},
        {SQLITE_CORRUPT_INDEX, 0, StoreErrorKind::corrupt},
        {SQLITE_NOTADB, 0, StoreErrorKind::corrupt},
        {SQLITE_IOERR_CORRUPTFS, 0, StoreErrorKind::corrupt},
        {SQLITE_FULL, 0, StoreErrorKind::full},
        // A full disk met by an fsync, a write or the shared-memory file.
        {SQLITE_IOERR_FSYNC, ENOSPC, StoreErrorKind::full},
        {SQLITE_IOERR_WRITE, EDQUOT, StoreErrorKind::full},
        {SQLITE_IOERR_SHMSIZE, ENOSPC, StoreErrorKind::full},
        // Other I/O errors are not a full disk.
        {SQLITE_IOERR_WRITE, EIO, StoreErrorKind::other},
        {SQLITE_IOERR_READ, 0, StoreErrorKind::other},
        // A stale ENOSPC from an earlier call does not make other failures full.
        {SQLITE_CONSTRAINT_FOREIGNKEY, ENOSPC, StoreErrorKind::other},
        {SQLITE_CANTOPEN, 0, StoreErrorKind::other},
        {SQLITE_READONLY, 0, StoreErrorKind::other},
        {SQLITE_NOMEM, 0, StoreErrorKind::other},
        {SQLITE_ERROR, 0, StoreErrorKind::other},
    };
    for (const auto& testCase : cases) {
        SCOPED_TRACE(sqlite3_errstr(testCase.code) + std::string(" errno ") +
                     std::to_string(testCase.systemErrno));
        EXPECT_EQ(store::storeErrorKind(testCase.code, testCase.systemErrno), testCase.expected);
    }
    EXPECT_EQ(store::storeErrorKindOfSystemError(ENOSPC), StoreErrorKind::full);
    EXPECT_EQ(store::storeErrorKindOfSystemError(EACCES), StoreErrorKind::other);
}

// ---- busy -----------------------------------------------------------------

TEST_F(StoreErrorsTest, EveryWriteIsBusyWhileAnotherConnectionHoldsTheWriteLock) {
    auto store = openStore(storeFile(), kImpatient);
    ASSERT_TRUE(store);
    ASSERT_TRUE(store->apply(oneSession(1)));
    auto other = connect(storeFile());
    ASSERT_TRUE(other);
    ASSERT_TRUE(other->execute("BEGIN IMMEDIATE"));

    const struct {
        const char* name;
        std::function<Result<void, StoreError>()> write;
    } writes[] = {
        {"change set", [&] { return store->apply(oneSession(2)); }},
        {"durable change set",
         [&] {
             recording::StoreChangeSet changes = oneSession(2);
             changes.durable = true;
             return store->apply(changes);
         }},
        {"single rule",
         [&] {
             return store->saveWebsiteClassification({"a.org", "focused", kDay});
         }},
        {"preferences",
         [&] {
             return store->saveLocalPDFPreferences({uuidNumbered(9), true, ""});
         }},
        {"label clearing",
         [&]() -> Result<void, StoreError> {
             auto cleared = store->clearFilenameDerivedPDFLabels();
             return cleared ? Result<void, StoreError>() : fail(cleared.error());
         }},
    };
    for (const auto& write : writes) {
        SCOPED_TRACE(write.name);
        auto written = write.write();
        ASSERT_FALSE(written.ok());
        EXPECT_EQ(written.error().kind, StoreErrorKind::busy) << written.error().description;
        EXPECT_NE(written.error().description.find("locked"), std::string::npos)
            << written.error().description;
    }

    // Reading is never blocked by a writer (the file is in WAL mode).
    auto count = store->sessionCount();
    ASSERT_TRUE(count.ok()) << count.error().description;
    EXPECT_EQ(*count, 1u);
    int visits = 0;
    auto walked =
        store->forEachSession({.includeChildren = true}, [&](const recording::StudySession&) {
            ++visits;
            return true;
        });
    ASSERT_TRUE(walked.ok()) << walked.error().description;
    EXPECT_EQ(visits, 1);

    // Once the lock is released the same store writes again: no failed
    // attempt left a transaction or the durable setting behind.
    ASSERT_TRUE(other->execute("ROLLBACK"));
    auto written = store->apply(oneSession(2));
    ASSERT_TRUE(written.ok()) << written.error().description;
    EXPECT_EQ(*store->sessionCount(), 2u);
}

TEST_F(StoreErrorsTest, OpeningANewFileWhileAnotherConnectionWritesItIsBusy) {
    auto other = connect(storeFile());
    ASSERT_TRUE(other);
    ASSERT_TRUE(other->execute("BEGIN IMMEDIATE; CREATE TABLE unrelated (x)"));

    auto refused = store::SqliteRecordingStore::open(storeFile(), kImpatient);
    ASSERT_FALSE(refused.ok());
    EXPECT_EQ(refused.error().kind, StoreErrorKind::busy) << refused.error().description;

    ASSERT_TRUE(other->execute("ROLLBACK"));
    auto opened = store::SqliteRecordingStore::open(storeFile(), kImpatient);
    ASSERT_TRUE(opened.ok()) << opened.error().description;
}

TEST_F(StoreErrorsTest, ATableThisConnectionIsStillReadingIsLocked) {
    auto connection = connect(folder_ / "locked.sqlite");
    ASSERT_TRUE(connection);
    ASSERT_TRUE(connection->execute("CREATE TABLE t (x); INSERT INTO t VALUES (1), (2)"));
    auto reading = connection->prepare("SELECT x FROM t");
    ASSERT_TRUE(reading.ok());
    ASSERT_TRUE(*(*reading)->step());

    auto dropped = connection->execute("DROP TABLE t");
    ASSERT_FALSE(dropped.ok());
    EXPECT_EQ(dropped.error().kind, StoreErrorKind::busy) << dropped.error().description;
    EXPECT_EQ(connection->lastError().kind, StoreErrorKind::busy);
}

// ---- corrupt --------------------------------------------------------------

TEST_F(StoreErrorsTest, ADamagedTableIsCorruptWhenReadWhileTheRestStillReads) {
    {
        auto store = openStore();
        ASSERT_TRUE(store);
        recording::StoreChangeSet changes;
        changes.sessions = {fullSession(1, kDay)};
        // Enough segments to fill several pages of their table.
        for (std::uint8_t number = 10; number < 250; ++number) {
            changes.segments.push_back(fullSegment(number, uuidNumbered(1), kDay));
        }
        ASSERT_TRUE(store->apply(changes));
    }
    long long segmentsRoot = 0;
    {
        auto connection = connect(storeFile());
        ASSERT_TRUE(connection);
        auto root = connection->queryInteger(
            "SELECT rootpage FROM sqlite_schema WHERE type = 'table' AND name = 'segments'");
        ASSERT_TRUE(root.ok());
        segmentsRoot = *root;
    }
    // Closing the last connection folded the write-ahead log into the file,
    // so overwriting the page in the file damages the table for every reader.
    ASSERT_FALSE(std::filesystem::exists(storeFile().string() + "-wal"));
    {
        std::fstream file(storeFile(), std::ios::in | std::ios::out | std::ios::binary);
        file.seekp((segmentsRoot - 1) * 1024);
        const std::string garbage(1024, '\xff');
        file.write(garbage.data(), static_cast<std::streamsize>(garbage.size()));
        ASSERT_TRUE(file.good());
    }

    auto store = openStore();
    ASSERT_TRUE(store);
    auto sessions = store->listSessions({});
    ASSERT_TRUE(sessions.ok()) << sessions.error().description;
    EXPECT_EQ(sessions->size(), 1u);
    auto loaded = store->loadSession(uuidNumbered(1));
    ASSERT_FALSE(loaded.ok());
    EXPECT_EQ(loaded.error().kind, StoreErrorKind::corrupt) << loaded.error().description;

    // Walks fail the same way, and only where they reach the damage.
    int visits = 0;
    const auto countSession = [&](const recording::StudySession&) {
        ++visits;
        return true;
    };
    EXPECT_TRUE(store->forEachSession({}, countSession));
    EXPECT_EQ(visits, 1);
    auto withChildren = store->forEachSession({.includeChildren = true}, countSession);
    ASSERT_FALSE(withChildren.ok());
    EXPECT_EQ(withChildren.error().kind, StoreErrorKind::corrupt);
    auto segments = store->forEachSegment(
        {}, [&](const recording::StudySession&, const recording::ActivitySegment&) {
            ++visits;
            return true;
        });
    ASSERT_FALSE(segments.ok());
    EXPECT_EQ(segments.error().kind, StoreErrorKind::corrupt) << segments.error().description;
    EXPECT_EQ(visits, 1);
}

// ---- full -----------------------------------------------------------------

TEST_F(StoreErrorsTest, AFileAtItsSizeLimitIsFullAndKeepsWhatItHad) {
    ASSERT_TRUE(openStore());
    auto connection = connect(storeFile());
    ASSERT_TRUE(connection);
    // The limit cannot go below the file's size: this caps it where it is.
    ASSERT_TRUE(connection->execute("PRAGMA max_page_count = 1"));
    ASSERT_TRUE(connection->execute(
        "INSERT INTO website_classifications VALUES ('small.org', 'focused', 0)"));

    {
        auto transaction = store::SqliteTransaction::beginImmediate(*connection);
        ASSERT_TRUE(transaction.ok());
        auto inserted = connection->execute(
            "INSERT INTO website_classifications VALUES (printf('%.20000c', 'x'), 'focused', 0)");
        ASSERT_FALSE(inserted.ok());
        EXPECT_EQ(inserted.error().kind, StoreErrorKind::full) << inserted.error().description;
        EXPECT_EQ(inserted.error().description, "database or disk is full");
        EXPECT_EQ(connection->lastError().kind, StoreErrorKind::full);
    }
    auto store = openStore();
    ASSERT_TRUE(store);
    auto rules = store->websiteClassifications();
    ASSERT_TRUE(rules.ok());
    EXPECT_EQ(
        *rules,
        (std::vector<classification::WebsiteClassification>{{"small.org", "focused", Date{0}}}));
}

TEST_F(StoreErrorsTest, AMigrationThatRunsOutOfRoomIsFullAndRecordsNothing) {
    auto connection = connect(folder_ / "new.sqlite");
    ASSERT_TRUE(connection);
    // Room for the migration table, not for the layout.
    ASSERT_TRUE(connection->execute("PRAGMA page_size = 1024; PRAGMA max_page_count = 3"));

    auto migrated = store::migrate(*connection, store::storeMigrations());
    ASSERT_FALSE(migrated.ok());
    EXPECT_EQ(migrated.error().kind, StoreErrorKind::full) << migrated.error().description;
    EXPECT_NE(migrated.error().description.find("schema migration 1 failed"), std::string::npos)
        << migrated.error().description;
    EXPECT_EQ(*store::recordedSchemaVersion(*connection), 0);
}

}  // namespace
}  // namespace lumenote::store
