// A store opened for reading only: it reads what a writer commits, and it
// never creates, migrates or writes anything.
#include <fstream>
#include <iterator>

#include <gtest/gtest.h>

#include "store/store_schema.hpp"
#include "store_test_support.hpp"

namespace lumenote::store {
namespace {

using namespace lumenote::testing;

std::string readBytes(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

class StoreReadOnlyTest : public TemporaryFolderTest {
  protected:
    Result<std::unique_ptr<SqliteRecordingStore>, StoreError> openForReading() {
        return SqliteRecordingStore::open(storeFile(), {.readOnly = true});
    }
};

TEST_F(StoreReadOnlyTest, ReadsWhatAWriterCommitsWhileBothAreOpenAndRefusesToWrite) {
    const Date start = Date::fromUnixSeconds(1793491200.0);
    auto writer = openStore();
    ASSERT_TRUE(writer);
    recording::StoreChangeSet first;
    first.sessions.push_back(fullSession(1, start));
    ASSERT_TRUE(writer->apply(first));

    auto reader = openForReading();
    ASSERT_TRUE(reader.ok()) << reader.error().description;
    EXPECT_EQ((*reader)->sessionCount().valueOr(0), 1u);

    recording::StoreChangeSet second;
    second.sessions.push_back(fullSession(2, start.addingSeconds(3600)));
    ASSERT_TRUE(writer->apply(second));
    EXPECT_EQ((*reader)->sessionCount().valueOr(0), 2u);

    recording::StoreChangeSet refused;
    refused.sessions.push_back(fullSession(3, start.addingSeconds(7200)));
    EXPECT_FALSE((*reader)->apply(refused).ok());
    EXPECT_FALSE((*reader)->deleteAllSessions().ok());
    EXPECT_EQ(writer->sessionCount().valueOr(0), 2u);
}

TEST_F(StoreReadOnlyTest, AMissingFileFailsAndNothingIsCreated) {
    auto opened = openForReading();
    ASSERT_FALSE(opened.ok());
    EXPECT_FALSE(std::filesystem::exists(storeFile().parent_path()));
}

TEST_F(StoreReadOnlyTest, ALayoutOtherThanThisReleasesIsRefusedAndLeftByteForByte) {
    const long long current = storeMigrations().back().version;
    const struct {
        const char* name;
        std::string sql;
        StoreErrorKind kind;
    } cases[] = {
        {"later release",
         "INSERT INTO schema_migrations VALUES (" + std::to_string(current + 1) + ", 'later')",
         StoreErrorKind::newerSchema},
        {"older layout", "DELETE FROM schema_migrations", StoreErrorKind::other},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        std::filesystem::remove_all(storeFile().parent_path());
        ASSERT_TRUE(openStore());
        {
            auto connection = SqliteConnection::open(storeFile().string());
            ASSERT_TRUE(connection.ok());
            ASSERT_TRUE((*connection)->execute(c.sql));
        }
        const std::string before = readBytes(storeFile());
        auto refused = openForReading();
        ASSERT_FALSE(refused.ok());
        EXPECT_EQ(refused.error().kind, c.kind) << refused.error().description;
        EXPECT_EQ(readBytes(storeFile()), before);
    }
}

}  // namespace
}  // namespace lumenote::store
