#include "foundation/uuid.hpp"

#include <gtest/gtest.h>

#include <unordered_set>

namespace lumenote {
namespace {

TEST(UuidTest, ParsesEitherCaseAndFormatsBoth) {
    const auto upper = Uuid::parse("E621E1F8-C36C-495A-93FC-0C247A3E6E5F");
    const auto lower = Uuid::parse("e621e1f8-c36c-495a-93fc-0c247a3e6e5f");
    ASSERT_TRUE(upper && lower);
    EXPECT_EQ(*upper, *lower);
    EXPECT_EQ(upper->upperString(), "E621E1F8-C36C-495A-93FC-0C247A3E6E5F");
    EXPECT_EQ(upper->lowerString(), "e621e1f8-c36c-495a-93fc-0c247a3e6e5f");
    EXPECT_EQ(upper->bytes()[0], 0xE6);
    EXPECT_EQ(upper->bytes()[15], 0x5F);
}

TEST(UuidTest, RefusesMalformedText) {
    for (const char* text :
         {"", "E621E1F8C36C495A93FC0C247A3E6E5F", "E621E1F8-C36C-495A-93FC-0C247A3E6E5",
          "E621E1F8-C36C-495A-93FC-0C247A3E6E5FF", "G621E1F8-C36C-495A-93FC-0C247A3E6E5F",
          "{E621E1F8-C36C-495A-93FC-0C247A3E6E5}"}) {
        EXPECT_FALSE(Uuid::parse(text)) << text;
    }
}

TEST(UuidTest, SixteenByteFormRoundTripsAndRejectsOtherSizes) {
    const Uuid id = Uuid::generate();
    EXPECT_EQ(Uuid::fromBytes(id.bytes().data(), 16), id);
    EXPECT_FALSE(Uuid::fromBytes(id.bytes().data(), 15));
    EXPECT_FALSE(Uuid::fromBytes(nullptr, 16));
}

TEST(UuidTest, GeneratedIdentifiersAreVersionFourAndDistinct) {
    std::unordered_set<Uuid> seen;
    for (int i = 0; i < 1000; ++i) {
        const Uuid id = Uuid::generate();
        EXPECT_EQ(id.bytes()[6] >> 4, 4);
        EXPECT_FALSE(id.isNil());
        EXPECT_TRUE(seen.insert(id).second);
    }
    EXPECT_TRUE(Uuid().isNil());
}

}  // namespace
}  // namespace lumenote
