#include "classification/rule_keys.hpp"

#include <gtest/gtest.h>

namespace lumenote::classification {
namespace {

TEST(NormalizedHostnameTest, GivesTheStoredForm) {
    struct Case {
        const char* input;
        const char* expected;
    };
    const Case cases[] = {
        {" Docs.Google.com.", "docs.google.com"},
        {"\t\n example.org \r\n", "example.org"},
        {"example.com..", "example.com."},  // only one dot goes
        {"example.com. ", "example.com"},   // trimmed before the dot
        {".", ""},
        {"", ""},
        {" \t\n", ""},
        // no-break space, ideographic space and line separator
        {"\xC2\xA0wiki.org\xE3\x80\x80", "wiki.org"},
        {"\xE2\x80\xA8WIKI.ORG.\xE2\x80\xA8", "wiki.org"},
        {"a b.org", "a b.org"},  // white space inside the name is kept
        // letters outside ASCII are kept as they are
        {"B\xC3\x9C"
         "CHER.de",
         "b\xC3\x9C"
         "cher.de"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(normalizedHostname(c.input), c.expected) << "'" << c.input << "'";
    }
}

TEST(NormalizedHostnameTest, NormalisingTwiceDropsASecondDot) {
    EXPECT_EQ(normalizedHostname(normalizedHostname("a.org..")), "a.org");
}

}  // namespace
}  // namespace lumenote::classification
