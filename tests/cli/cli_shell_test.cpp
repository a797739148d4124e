#include <gtest/gtest.h>

#include <sstream>

#include "cli/run_cli.hpp"

namespace lumenote::cli {
namespace {

struct CliRun {
    int status;
    std::string out;
    std::string err;
};

CliRun run(const std::vector<std::string>& arguments) {
    std::ostringstream out;
    std::ostringstream err;
    const UserPaths paths{"/tmp/lumenote-cli-test/data", "/tmp/lumenote-cli-test/config"};
    const int status = runCli(arguments, out, err, paths);
    return {status, out.str(), err.str()};
}

TEST(CliShellTest, WithoutArgumentsPrintsHelp) {
    const CliRun result = run({});
    EXPECT_EQ(result.status, 0);
    EXPECT_NE(result.out.find("Usage: lumenote-cli"), std::string::npos);
    EXPECT_NE(result.out.find("paths"), std::string::npos);
}

TEST(CliShellTest, VersionPrintsTheVersionLine) {
    const CliRun result = run({"--version"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, versionLine() + "\n");
}

TEST(CliShellTest, UnknownCommandIsAUsageError) {
    const CliRun result = run({"frobnicate"});
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err.find("frobnicate"), std::string::npos);
}

TEST(CliShellTest, HelpPrintsWhatHelpOptionPrintsForTheCommandGiven) {
    const std::vector<std::vector<std::string>> commands{
        {},      {"record"}, {"sessions"}, {"templates"}, {"templates", "move"}, {"prefs", "set"},
        {"help"}};
    for (const auto& command : commands) {
        std::vector<std::string> helpFirst{"help"};
        helpFirst.insert(helpFirst.end(), command.begin(), command.end());
        std::vector<std::string> optionLast = command;
        optionLast.push_back("--help");
        const CliRun help = run(helpFirst);
        const CliRun option = run(optionLast);
        SCOPED_TRACE(helpFirst.back());
        EXPECT_EQ(help.status, 0);
        EXPECT_EQ(help.err, "");
        EXPECT_EQ(help.out, option.out);
        EXPECT_NE(help.out.find("Usage: lumenote-cli"), std::string::npos);
    }
    EXPECT_NE(run({"--help"}).out.find("  help "), std::string::npos);
}

TEST(CliShellTest, HelpForACommandThatDoesNotExistIsAUsageError) {
    struct Case {
        std::vector<std::string> arguments;
        std::string message;
    };
    const Case cases[] = {
        {{"help", "frobnicate"},
         "There is no command \"frobnicate\". Run \"lumenote-cli help\" to see the commands.\n"},
        {{"help", "templates", "shuffle"},
         "There is no command \"templates shuffle\". Run \"lumenote-cli help\" to see the "
         "commands.\n"},
        {{"help", "paths", "list"},
         "There is no command \"paths list\". Run \"lumenote-cli help\" to see the commands.\n"},
    };
    for (const Case& c : cases) {
        const CliRun result = run(c.arguments);
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.err, c.message);
        EXPECT_EQ(result.out, "");
    }
}

TEST(CliShellTest, PathsNamesTheUsersFolders) {
    const CliRun result = run({"paths"});
    EXPECT_EQ(result.status, 0);
    EXPECT_NE(result.out.find("/tmp/lumenote-cli-test/data/Lumenote"), std::string::npos);
    EXPECT_NE(result.out.find("/tmp/lumenote-cli-test/config/Lumenote"), std::string::npos);
}

}  // namespace
}  // namespace lumenote::cli
