#include <gtest/gtest.h>

#include "recording/sampling_self_test.hpp"
#include "store/sqlite_recording_store.hpp"
#include "store/store_files.hpp"
#include "support/temporary_home.hpp"

namespace lumenote::store {
namespace {

using lumenote::testing::readFile;
using lumenote::testing::writeFile;

TEST(StoreReadableTest, ARealStoreIsReadableAndLeftByteForByteAsItWas) {
    lumenote::testing::TemporaryHome home;
    const auto path = storePath(home.paths());
    EXPECT_TRUE(storeIsReadable(path)) << "a store not yet created is readable";
    EXPECT_FALSE(std::filesystem::exists(path)) << "and checking it creates nothing";
    ASSERT_TRUE(SqliteRecordingStore::open(path));
    const std::string before = readFile(path);
    EXPECT_TRUE(storeIsReadable(path));
    EXPECT_EQ(readFile(path), before);
}

TEST(StoreReadableTest, AFileThatIsNoDatabaseIsNotReadable) {
    lumenote::testing::TemporaryHome home;
    const auto path = storePath(home.paths());
    writeFile(path, std::string(4096, 'x'));
    EXPECT_FALSE(storeIsReadable(path));
    std::filesystem::remove(path);
    std::filesystem::create_directories(path);
    EXPECT_FALSE(storeIsReadable(path));
}

TEST(StoreReadableTest, TheSamplingSelfTestPassesOnTheRealTimeline) {
    EXPECT_TRUE(recording::samplingPipelineSelfTest());
}

}  // namespace
}  // namespace lumenote::store
