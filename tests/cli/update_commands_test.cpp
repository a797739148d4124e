#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/cli_test_support.hpp"
#include "shell/app_commands.hpp"
#include "support/local_ports.hpp"

namespace lumenote::cli {
namespace {

using testing::CliRun;
using ::testing::HasSubstr;

class UpdateCommandsTest : public ::testing::Test {
  protected:
    CliRun run(const std::vector<std::string>& arguments) {
        return testing::runIn(home_, arguments);
    }
    void allowChecks() {
        ASSERT_EQ(run({"prefs", "set", "updates.checkEnabled", "true"}).status, 0);
    }

    lumenote::testing::TemporaryHome home_;
    lumenote::testing::PlainListener listener_;
    const std::string plainAddress_ =
        "http://127.0.0.1:" + std::to_string(listener_.port()) + "/feed.json";
};

TEST_F(UpdateCommandsTest, TheHelpNamesEveryExitStatus) {
    const CliRun help = run({"update", "check", "--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_THAT(help.out, HasSubstr("--feed"));
    for (const char* status : {"0 up to date", "1 not allowed", "3 the address", "4 the answer"}) {
        EXPECT_THAT(help.out, HasSubstr(status));
    }
}

#if LUMENOTE_UPDATE_CHECKS

TEST_F(UpdateCommandsTest, ChecksAreOffUntilThePreferenceAllowsThem) {
    const CliRun check = run({"update", "check", "--feed", plainAddress_});
    EXPECT_EQ(check.status, 1);
    EXPECT_THAT(check.err, HasSubstr("Checking for updates is off."));
    EXPECT_THAT(check.err, HasSubstr("updates.checkEnabled"));
    EXPECT_EQ(check.out, "");
    EXPECT_EQ(listener_.acceptedConnections(), 0);
}

TEST_F(UpdateCommandsTest, AnInsecureAddressFromTheOptionOrThePreferenceIsRefusedUnconnected) {
    allowChecks();
    const std::string insecure =
        "Lumenote checks for updates only over a secure connection (an https:// address).\n";
    const CliRun fromOption = run({"update", "check", "--feed", plainAddress_});
    EXPECT_EQ(fromOption.status, 1);
    EXPECT_EQ(fromOption.err, insecure);

    ASSERT_EQ(run({"prefs", "set", "updates.feedAddress", plainAddress_}).status, 0);
    const CliRun fromPreference = run({"update", "check"});
    EXPECT_EQ(fromPreference.status, 1);
    EXPECT_EQ(fromPreference.err, insecure);
    EXPECT_EQ(listener_.acceptedConnections(), 0);
}

TEST_F(UpdateCommandsTest, TheOptionReplacesThePreferenceAndAnUnreachableServerIsStatusThree) {
    allowChecks();
    ASSERT_EQ(run({"prefs", "set", "updates.feedAddress", plainAddress_}).status, 0);
    const std::string nobody =
        "https://127.0.0.1:" + std::to_string(lumenote::testing::closedPort()) + "/feed.json";
    const CliRun check = run({"update", "check", "--feed", nobody});
    EXPECT_EQ(check.status, 3);
    EXPECT_THAT(check.err, HasSubstr("could not reach the update address"));
    EXPECT_EQ(listener_.acceptedConnections(), 0);
}

#else

TEST_F(UpdateCommandsTest, ABuildWithoutUpdateChecksPointsToThePackageManager) {
    allowChecks();
    const CliRun check = run({"update", "check", "--feed", plainAddress_});
    EXPECT_EQ(check.status, 1);
    EXPECT_EQ(check.err, std::string(shell::kUpdatesFromPackageManager) + "\n");
    EXPECT_EQ(listener_.acceptedConnections(), 0);
}

#endif

}  // namespace
}  // namespace lumenote::cli
