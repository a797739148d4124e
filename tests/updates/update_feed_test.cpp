#include "updates/update_feed.hpp"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

namespace lumenote::updates {
namespace {

using nlohmann::json;

json completeFeed() {
    return {{"version", "0.2.0"},
            {"build", 12},
            {"releaseNotes", "Faster history.\nFixes a crash."},
            {"downloadAddress", "https://downloads.example/lumenote-0.2.0"},
            {"published", "2026-11-20"}};
}

TEST(UpdateFeedTest, ReadsACompleteFeedAndIgnoresUnknownMembers) {
    json document = completeFeed();
    document["channel"] = "stable";
    const auto feed = parseUpdateFeed(document.dump());
    ASSERT_TRUE(feed.ok());
    EXPECT_EQ(feed->version, "0.2.0");
    EXPECT_EQ(feed->build, 12);
    EXPECT_EQ(feed->releaseNotes, "Faster history.\nFixes a crash.");
    EXPECT_EQ(feed->downloadAddress, "https://downloads.example/lumenote-0.2.0");
    EXPECT_EQ(feed->published, "2026-11-20");
}

TEST(UpdateFeedTest, ThePublishedDateIsOptional) {
    json document = completeFeed();
    document.erase("published");
    const auto feed = parseUpdateFeed(document.dump());
    ASSERT_TRUE(feed.ok());
    EXPECT_EQ(feed->published, std::nullopt);
}

TEST(UpdateFeedTest, EachRequiredMemberMustBePresent) {
    for (const char* member : {"version", "build", "releaseNotes", "downloadAddress"}) {
        json document = completeFeed();
        document.erase(member);
        const auto feed = parseUpdateFeed(document.dump());
        ASSERT_FALSE(feed.ok()) << member;
        EXPECT_EQ(feed.error(), FeedError::missingMember) << member;
    }
}

TEST(UpdateFeedTest, EachMemberMustHaveItsType) {
    const std::pair<const char*, json> cases[] = {
        {"version", 2},
        {"version", json::array({0, 2})},
        {"build", "12"},
        {"build", 12.5},
        {"build", -1},
        {"build", true},
        {"build", nullptr},
        {"releaseNotes", json::array()},
        {"downloadAddress", false},
        {"published", 20261120},
    };
    for (const auto& [member, value] : cases) {
        json document = completeFeed();
        document[member] = value;
        const auto feed = parseUpdateFeed(document.dump());
        ASSERT_FALSE(feed.ok()) << member << " = " << value.dump();
        EXPECT_EQ(feed.error(), FeedError::wrongType) << member << " = " << value.dump();
    }
}

TEST(UpdateFeedTest, TheVersionMustBeDottedNumbersAndTheDownloadHttps) {
    for (const char* version : {"", "0.2.0-beta", "v0.2", "0..2"}) {
        json document = completeFeed();
        document["version"] = version;
        const auto feed = parseUpdateFeed(document.dump());
        ASSERT_FALSE(feed.ok()) << version;
        EXPECT_EQ(feed.error(), FeedError::badVersion) << version;
    }
    for (const char* address : {"http://downloads.example/x", "file:///tmp/x", "", "ftp://x/y"}) {
        json document = completeFeed();
        document["downloadAddress"] = address;
        const auto feed = parseUpdateFeed(document.dump());
        ASSERT_FALSE(feed.ok()) << address;
        EXPECT_EQ(feed.error(), FeedError::insecureDownload) << address;
    }
}

TEST(UpdateFeedTest, AnythingButAJsonObjectIsRefused) {
    for (const std::string bytes :
         std::vector<std::string>{"", "null", "[]", "\"0.2.0\"", "{", "{\"version\": \"0.2.0\",}",
                                  "not json", std::string("{\"version\":\"\xff\"}")}) {
        const auto feed = parseUpdateFeed(bytes);
        ASSERT_FALSE(feed.ok()) << bytes;
        EXPECT_EQ(feed.error(), FeedError::notJson) << bytes;
    }
}

TEST(UpdateFeedTest, TheSizeCapIsCheckedBeforeReading) {
    json document = completeFeed();
    document["releaseNotes"] = "";
    const std::size_t frame = document.dump().size();
    document["releaseNotes"] = std::string(kMaximumFeedBytes - frame, 'x');
    ASSERT_EQ(document.dump().size(), kMaximumFeedBytes);
    EXPECT_TRUE(parseUpdateFeed(document.dump()).ok());

    document["releaseNotes"] = std::string(kMaximumFeedBytes - frame + 1, 'x');
    const auto feed = parseUpdateFeed(document.dump());
    ASSERT_FALSE(feed.ok());
    EXPECT_EQ(feed.error(), FeedError::tooLarge);
}

}  // namespace
}  // namespace lumenote::updates
