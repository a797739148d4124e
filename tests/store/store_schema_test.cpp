#include "store/store_schema.hpp"

#include <fstream>
#include <iterator>

#include <gtest/gtest.h>

#include "store/store_files.hpp"
#include "store_test_support.hpp"

namespace lumenote::store {
namespace {

using namespace lumenote::testing;

std::string readBytes(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

class StoreSchemaTest : public TemporaryFolderTest {
  protected:
    std::unique_ptr<store::SqliteConnection> connect() {
        auto connection = store::SqliteConnection::open((folder_ / "schema.sqlite").string());
        EXPECT_TRUE(connection.ok());
        return connection.ok() ? std::move(*connection) : nullptr;
    }

    static std::vector<std::pair<long long, std::string>> recorded(
        store::SqliteConnection& connection) {
        std::vector<std::pair<long long, std::string>> rows;
        auto statement = connection.cached(
            "SELECT version, description FROM schema_migrations ORDER BY version");
        EXPECT_TRUE(statement.ok());
        while (statement.ok() && (*statement)->step().valueOr(false)) {
            rows.emplace_back((*statement)->integerAt(0), (*statement)->textAt(1));
        }
        return rows;
    }

    static long long tableCount(store::SqliteConnection& connection, const std::string& name) {
        return connection
            .queryInteger("SELECT count(*) FROM sqlite_schema WHERE type = 'table' AND name = '" +
                          name + "'")
            .valueOr(-1);
    }
};

TEST_F(StoreSchemaTest, ANewStoreRecordsEveryMigrationOfThisRelease) {
    ASSERT_TRUE(openStore());
    auto connection = store::SqliteConnection::open(storeFile().string());
    ASSERT_TRUE(connection.ok());
    std::vector<std::pair<long long, std::string>> expected;
    for (const store::SchemaMigration& migration : store::storeMigrations()) {
        expected.emplace_back(migration.version, std::string(migration.description));
    }
    EXPECT_EQ(recorded(**connection), expected);
    EXPECT_EQ(*store::recordedSchemaVersion(**connection), store::storeMigrations().back().version);
    // Opening an up-to-date store again runs nothing twice.
    ASSERT_TRUE(openStore());
}

TEST_F(StoreSchemaTest, OnlyMissingMigrationsRunAndAFailingOneLeavesTheFileAsItWas) {
    const store::SchemaMigration first{1, "a", "CREATE TABLE a (x)"};
    const store::SchemaMigration second{2, "b", "CREATE TABLE b (x); CREATE INDEX b_x ON b (x)"};
    const store::SchemaMigration broken{3, "c", "CREATE TABLE c (x); CREATE TABLE d (x"};
    const store::SchemaMigration fourth{4, "e", "CREATE TABLE e (x)"};
    auto connection = connect();
    ASSERT_TRUE(connection);
    ASSERT_TRUE(store::migrate(*connection, std::vector{first}));
    // Re-running migration 1 would fail: its table exists.
    ASSERT_TRUE(store::migrate(*connection, std::vector{first, second}));
    EXPECT_EQ(tableCount(*connection, "b"), 1);

    auto failed = store::migrate(*connection, std::vector{first, second, broken, fourth});
    ASSERT_FALSE(failed.ok());
    EXPECT_NE(failed.error().description.find("schema migration 3 failed"), std::string::npos)
        << failed.error().description;
    EXPECT_EQ(tableCount(*connection, "c"), 0);
    EXPECT_EQ(tableCount(*connection, "e"), 0);
    EXPECT_EQ(*store::recordedSchemaVersion(*connection), 2);
    EXPECT_EQ(recorded(*connection),
              (std::vector<std::pair<long long, std::string>>{{1, "a"}, {2, "b"}}));
}

TEST_F(StoreSchemaTest, AFileFromALaterReleaseIsRefusedAndLeftUntouched) {
    {
        auto store = openStore();
        ASSERT_TRUE(store);
        ASSERT_TRUE(store->saveWebsiteClassification({"zoom.us", "neutral", Date{1}}));
    }
    const long long later = store::storeMigrations().back().version + 1;
    {
        auto connection = store::SqliteConnection::open(storeFile().string());
        ASSERT_TRUE(connection.ok());
        ASSERT_TRUE((*connection)
                        ->execute("INSERT INTO schema_migrations VALUES (" + std::to_string(later) +
                                  ", 'from the future')"));
    }
    const std::string before = readBytes(storeFile());

    auto refused = store::SqliteRecordingStore::open(storeFile());
    ASSERT_FALSE(refused.ok());
    const std::string expected =
        "the store was written by a newer version of Lumenote (schema version " +
        std::to_string(later) + "; this version reads up to " + std::to_string(later - 1) + ")";
    EXPECT_EQ(refused.error().description, expected);
    EXPECT_EQ(refused.error().kind, StoreErrorKind::newerSchema);
    EXPECT_EQ(
        store::storageOpenFailureMessage(refused.error()),
        "Local storage could not be opened (" + expected + "). No study activity was recorded.");
    EXPECT_EQ(readBytes(storeFile()), before);
}

TEST_F(StoreSchemaTest, WhatIsNotAStoreIsRefusedWithItsReason) {
    const std::filesystem::path garbage = folder_ / "garbage" / "lumenote.sqlite";
    std::filesystem::create_directories(garbage.parent_path());
    const std::string bytes(4096, 'x');
    std::ofstream(garbage, std::ios::binary) << bytes;
    const std::filesystem::path blockedFolder = folder_ / "file-as-folder";
    std::ofstream(blockedFolder) << "not a folder";
    const std::filesystem::path folderAsFile = folder_ / "folder-as-file";
    std::filesystem::create_directories(folderAsFile);

    const struct {
        std::filesystem::path path;
        const char* reason;
        StoreErrorKind kind;
    } cases[] = {
        {garbage, "file is not a database", StoreErrorKind::corrupt},
        {blockedFolder / "lumenote.sqlite", "could not be created", StoreErrorKind::other},
        {folderAsFile, "Is a directory", StoreErrorKind::other},
    };
    for (const auto& testCase : cases) {
        SCOPED_TRACE(testCase.path);
        auto store = store::SqliteRecordingStore::open(testCase.path);
        ASSERT_FALSE(store.ok());
        EXPECT_NE(store.error().description.find(testCase.reason), std::string::npos)
            << store.error().description;
        EXPECT_EQ(store.error().kind, testCase.kind) << store.error().description;
    }
    EXPECT_EQ(readBytes(garbage), bytes);
}

TEST(StoreFilesTest, TheStoreAndItsLockLiveInTheApplicationDataFolder) {
    UserPaths paths{"/home/ana/.local/share", "/home/ana/.config"};
    EXPECT_EQ(store::storePath(paths), "/home/ana/.local/share/Lumenote/lumenote.sqlite");
    EXPECT_EQ(store::recorderLockPath(paths), "/home/ana/.local/share/Lumenote/lumenote.lock");
}

}  // namespace
}  // namespace lumenote::store
