#include "manual/roff.hpp"

#include <gtest/gtest.h>

namespace lumenote::manual {
namespace {

struct EscapeCase {
    const char* text;
    const char* asText;
    const char* asLiteral;
};

TEST(RoffTest, EscapesRequestsBackslashesAndHyphens) {
    const std::vector<EscapeCase> cases{
        {"plain words", "plain words", "plain words"},
        {".TH a request", "\\&.TH a request", "\\&.TH a request"},
        {"'br a control line", "\\&'br a control line", "\\&'br a control line"},
        {"a. mid-line dot", "a. mid-line dot", "a. mid\\-line dot"},
        {"first\n.second\n'third", "first\n\\&.second\n\\&'third", "first\n\\&.second\n\\&'third"},
        {"C:\\path\\fB", "C:\\epath\\efB", "C:\\epath\\efB"},
        {"\\.leading", "\\e.leading", "\\e.leading"},
        {"--output -o", "--output -o", "\\-\\-output \\-o"},
        {"", "", ""},
        {"élève — naïve", "élève — naïve", "élève — naïve"},
    };
    for (const auto& [text, asText, asLiteral] : cases) {
        SCOPED_TRACE(text);
        EXPECT_EQ(escapeText(text), asText);
        EXPECT_EQ(escapeLiteral(text), asLiteral);
    }
}

TEST(RoffTest, MacroArgumentsStayOneArgument) {
    EXPECT_EQ(macroArgument("two words"), "\"two words\"");
    EXPECT_EQ(macroArgument("say \"hi\""), "\"say \\(dqhi\\(dq\"");
    EXPECT_EQ(macroArgument("line\nbreak"), "\"line break\"");
    EXPECT_EQ(macroArgument(""), "\"\"");
    EXPECT_EQ(macroArgument(escapeLiteral("set-app")), "\"set\\-app\"");
}

}  // namespace
}  // namespace lumenote::manual
