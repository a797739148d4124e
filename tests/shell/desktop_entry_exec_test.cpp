#include "shell/desktop_entry_exec.hpp"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace lumenote::shell {
namespace {

TEST(DesktopEntryExecTest, ArgumentsAreQuotedOnlyWhenTheyMustBeAndEscapedTwice) {
    struct Case {
        std::string argument;
        std::string written;  // as it stands after "Exec=" in the file
    };
    for (const Case& c : {
             Case{"/usr/bin/lumenote", "/usr/bin/lumenote"},
             Case{"/opt/Ökologie/lumenote", "/opt/Ökologie/lumenote"},
             Case{"/opt/My Apps/lumenote", R"("/opt/My Apps/lumenote")"},
             // A backslash: one for the quoting, each doubled for the string.
             Case{R"(/opt/a\b/lumenote)", R"("/opt/a\\\\b/lumenote")"},
             Case{"/opt/$HOME/lumenote", R"("/opt/\\$HOME/lumenote")"},
             Case{"/opt/`id`/lumenote", R"("/opt/\\`id\\`/lumenote")"},
             Case{R"(/opt/say "hi"/lumenote)", R"("/opt/say \\"hi\\"/lumenote")"},
             // A single quote is reserved but needs no backslash inside double quotes.
             Case{"/opt/it's/lumenote", R"("/opt/it's/lumenote")"},
             Case{"/opt/a;b#c(d)/lumenote", R"("/opt/a;b#c(d)/lumenote")"},
             Case{"/opt/~me/x*y?z<w>|&/lumenote", R"("/opt/~me/x*y?z<w>|&/lumenote")"},
             // A percent sign is never a field code, quoted or not.
             Case{"/opt/100%/lumenote", "/opt/100%%/lumenote"},
             Case{"/opt/100% sure/%f", R"("/opt/100%% sure/%%f")"},
             // Line breaks and tabs are quoted, then written as string escapes.
             Case{"/opt/two\nlines/lumenote", R"("/opt/two\nlines/lumenote")"},
             Case{"/opt/a\tb\rc/lumenote", R"("/opt/a\tb\rc/lumenote")"},
             Case{"", R"("")"},
         }) {
        SCOPED_TRACE(c.argument);
        EXPECT_EQ(execArgument(c.argument), c.written);
    }
}

TEST(DesktopEntryExecTest, ArgumentsThatNoEntryCanHoldAreRefused) {
    for (const std::string& argument : {
             std::string("/opt/\x01/lumenote"), std::string("/opt/\x1b[31m/lumenote"),
             std::string("/opt/\x7f/lumenote"), std::string("/opt/nul\0here", 13),
             std::string("/opt/\xff/lumenote"),     // not UTF-8
             std::string("/opt/caf\xc3/lumenote"),  // a cut-off character
         }) {
        EXPECT_EQ(execArgument(argument), std::nullopt) << argument.size();
    }
}

}  // namespace
}  // namespace lumenote::shell
