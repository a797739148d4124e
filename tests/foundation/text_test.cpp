#include "foundation/text.hpp"

#include <gtest/gtest.h>

#include <string>

namespace lumenote::text {
namespace {

TEST(TextTest, Utf8IsValidOnlyWhenEverySequenceIsWellFormed) {
    struct Case {
        std::string bytes;
        bool valid;
        const char* name;
    };
    for (const Case& c : {
             Case{"", true, "empty"},
             Case{"/usr/bin/lumenote", true, "ASCII"},
             Case{"Ökologie \xe2\x80\x94 \xf0\x9f\x93\x9a", true, "two, three and four bytes"},
             Case{"\xf4\x8f\xbf\xbf", true, "U+10FFFF, the last code point"},
             Case{"\xf4\x90\x80\x80", false, "above U+10FFFF"},
             Case{"\xed\xa0\x80", false, "a surrogate"},
             Case{"\xc0\xaf", false, "an overlong slash"},
             Case{"\xe0\x9f\xbf", false, "an overlong three-byte form"},
             Case{"abc\xc3", false, "cut off at the end"},
             Case{"\xe2\x80", false, "two of three bytes"},
             Case{"\x80", false, "a stray continuation byte"},
             Case{"\xc3(", false, "a lead byte without its continuation"},
             Case{"\xff", false, "a byte that never occurs"},
         }) {
        EXPECT_EQ(isValidUtf8(c.bytes), c.valid) << c.name;
    }
}

}  // namespace
}  // namespace lumenote::text

namespace lumenote::text {
namespace {

TEST(CountTextTest, OnlyExactlyOneTakesTheSingular) {
    EXPECT_EQ(countText(0, "session", "sessions"), "0 sessions");
    EXPECT_EQ(countText(1, "session", "sessions"), "1 session");
    EXPECT_EQ(countText(2, "activity", "activities"), "2 activities");
}

}  // namespace
}  // namespace lumenote::text
