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

TEST(CliShellTest, PathsNamesTheUsersFolders) {
    const CliRun result = run({"paths"});
    EXPECT_EQ(result.status, 0);
    EXPECT_NE(result.out.find("/tmp/lumenote-cli-test/data/Lumenote"), std::string::npos);
    EXPECT_NE(result.out.find("/tmp/lumenote-cli-test/config/Lumenote"), std::string::npos);
}

}  // namespace
}  // namespace lumenote::cli
