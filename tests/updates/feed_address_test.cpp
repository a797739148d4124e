#include "updates/feed_address.hpp"

#include <gtest/gtest.h>

namespace lumenote::updates {
namespace {

TEST(FeedAddressTest, HttpsInAnyLetterCaseWithAHostIsSecure) {
    for (const char* address :
         {"https://updates.example/feed.json", "HTTPS://UPDATES.EXAMPLE/feed", "HtTpS://a",
          "https://127.0.0.1:8443/feed?channel=stable", "https://[::1]/feed"}) {
        EXPECT_TRUE(isSecureAddress(address)) << address;
    }
}

TEST(FeedAddressTest, EveryOtherSchemeAndEveryMalformedAddressIsRefused) {
    for (const char* address : {"",
                                "https://",
                                "https:///feed",
                                "https://?x",
                                "https://#x",
                                "http://updates.example/feed",
                                "HTTP://updates.example",
                                "file:///etc/passwd",
                                "ftp://updates.example/feed",
                                "ws://updates.example",
                                "wss://updates.example",
                                "data:text/plain,hi",
                                "javascript:alert(1)",
                                "updates.example/feed",
                                "//updates.example/feed",
                                "https:/x",
                                "https//x",
                                "httpsx://x",
                                " https://x",
                                "https://x ",
                                "https://x y",
                                "https://x\n",
                                "https://x\t/feed",
                                "https://x\x7f",
                                "garbage"}) {
        EXPECT_FALSE(isSecureAddress(address)) << address;
    }
}

TEST(FeedAddressTest, ThePreferenceReplacesTheBuiltInAddressUnlessBlank) {
    EXPECT_EQ(effectiveFeedAddress("", "https://built.in/feed"), "https://built.in/feed");
    EXPECT_EQ(effectiveFeedAddress(" \t\n", "https://built.in/feed"), "https://built.in/feed");
    EXPECT_EQ(effectiveFeedAddress("  https://fork.example/feed ", "https://built.in/feed"),
              "https://fork.example/feed");
    // The preference wins even when it is insecure: the check then refuses
    // it rather than quietly using another address.
    EXPECT_EQ(effectiveFeedAddress("http://fork.example", "https://built.in/feed"),
              "http://fork.example");
    EXPECT_EQ(effectiveFeedAddress("", ""), "");
}

}  // namespace
}  // namespace lumenote::updates
