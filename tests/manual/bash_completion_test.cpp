// The completion scripts as the build wrote them, sourced in a real bash and
// asked as bash asks them when the user presses Tab.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <sstream>

#include "support/run_program.hpp"

namespace lumenote::manual {
namespace {

namespace fs = std::filesystem;

const fs::path kCompletions = fs::path(LUMENOTE_BINARY_DIR) / "share/bash-completion/completions";

std::string singleQuoted(const std::string& word) {
    std::string quoted = "'";
    for (const char character : word) {
        quoted += character == '\'' ? std::string("'\\''") : std::string(1, character);
    }
    return quoted + "'";
}

// The completions offered for the last of `words` (the word being typed),
// sorted; the program name is the first word.
std::vector<std::string> complete(const std::vector<std::string>& words) {
    const std::string program = words.front();
    std::string function = "_";
    for (const char character : program) {
        function += character == '-' ? '_' : character;
    }
    std::string script =
        "source " + singleQuoted((kCompletions / program).string()) + " || exit 3\nCOMP_WORDS=(";
    for (const std::string& word : words) {
        script += singleQuoted(word) + " ";
    }
    script += ")\nCOMP_CWORD=" + std::to_string(words.size() - 1) + "\n" + function +
              " || exit 4\nprintf '%s\\n' \"${COMPREPLY[@]}\"\n";
    const auto run =
        lumenote::testing::runProgram({"bash", "--norc", "--noprofile", "-c", script}, 30);
    EXPECT_EQ(run.exitStatus, 0) << run.output;
    std::vector<std::string> offered;
    std::istringstream lines(run.output);
    for (std::string line; std::getline(lines, line);) {
        if (!line.empty()) {
            offered.push_back(line);
        }
    }
    std::sort(offered.begin(), offered.end());
    return offered;
}

bool offers(const std::vector<std::string>& offered, const std::string& word) {
    return std::find(offered.begin(), offered.end(), word) != offered.end();
}

using Words = std::vector<std::string>;

TEST(BashCompletionTest, CompletesTheTopLevelCommands) {
    const auto all = complete({"lumenote-cli", ""});
    for (const char* command : {"record", "sessions", "rules", "export", "backup", "help"}) {
        EXPECT_TRUE(offers(all, command)) << command;
    }
    EXPECT_FALSE(offers(all, "--help")) << "options only after a dash";
    EXPECT_EQ(complete({"lumenote-cli", "ru"}), Words{"rules"});
}

TEST(BashCompletionTest, CompletesNestedSubcommandsAfterTheirParent) {
    const auto offered = complete({"lumenote-cli", "rules", "set-"});
    EXPECT_EQ(offered, (Words{"set-app", "set-website"}));
    // The same prefix at the top level is no command of its own.
    EXPECT_EQ(complete({"lumenote-cli", "set-"}), Words{});
}

TEST(BashCompletionTest, CompletesTheOptionsOfTheChosenSubcommand) {
    EXPECT_TRUE(offers(complete({"lumenote-cli", "export", "--fo"}), "--format"));
    const auto setApp = complete({"lumenote-cli", "rules", "set-app", "--"});
    EXPECT_TRUE(offers(setApp, "--help"));
    EXPECT_FALSE(offers(setApp, "--version")) << "the program's options are not the command's";
    EXPECT_EQ(complete({"lumenote", "--h"}), (Words{"--help", "--hidden"}));
}

TEST(BashCompletionTest, CompletesTheChoicesOfAnOptionValue) {
    EXPECT_EQ(complete({"lumenote-cli", "export", "--format", ""}), (Words{"csv", "ics", "json"}));
    EXPECT_EQ(complete({"lumenote-cli", "export", "--format", "c"}), Words{"csv"});
}

TEST(BashCompletionTest, AnUnknownPrefixCompletesToNothing) {
    EXPECT_EQ(complete({"lumenote-cli", "zz"}), Words{});
    EXPECT_EQ(complete({"lumenote-cli", "rules", "zz"}), Words{});
    EXPECT_EQ(complete({"lumenote-cli", "export", "--zz"}), Words{});
    EXPECT_EQ(complete({"lumenote", "zz"}), Words{});
}

}  // namespace
}  // namespace lumenote::manual
