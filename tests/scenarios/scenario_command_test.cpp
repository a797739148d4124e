// lumenote-scenario's own folders: without --data-dir a run keeps its store
// and preferences in a temporary folder it removes, never in the user's; with
// --data-dir the store stays where it was put.
#include "scenario/scenario_command.hpp"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "support/temporary_home.hpp"

namespace lumenote::scenario {
namespace {

// Starts a session with a study mode given by its short word, changes a
// preference (written to the configuration folder) and ends the session.
constexpr std::string_view kScript = R"(
{"at":0,"do":"frontmost","bundle":"org.gnome.TextEditor","name":"Text Editor"}
{"at":0,"do":"setPreference","key":"tracking.inactivityThreshold","value":600}
{"at":0,"do":"start","subject":"Maths","duration":600,"mode":"offline"}
{"at":30,"do":"end"}
)";

class ScenarioCommandTest : public ::testing::Test {
  protected:
    struct Run {
        int status;
        std::string out;
        std::string err;
    };

    ScenarioCommandTest() {
        lumenote::testing::writeFile(script_, std::string(kScript));
        std::filesystem::create_directories(temporaryRoot_);
    }

    Run run(std::vector<std::string> arguments) {
        std::ostringstream out;
        std::ostringstream err;
        const int status = runScenarioCommand(arguments, out, err, {user_, temporaryRoot_},
                                              *parseIso8601("2026-11-16T08:00:00Z"));
        return {status, out.str(), err.str()};
    }

    lumenote::testing::TemporaryHome home_;
    UserPaths user_{home_.root() / "user-data", home_.root() / "user-config"};
    std::filesystem::path temporaryRoot_ = home_.root() / "tmp";
    std::filesystem::path script_ = home_.root() / "script.jsonl";
};

TEST_F(ScenarioCommandTest, WithoutADataFolderTheRunLeavesNothingBehind) {
    const Run result = run({script_.string()});
    ASSERT_EQ(result.status, 0) << result.err;
    const auto sessions = nlohmann::json::parse(result.out);
    ASSERT_EQ(sessions.size(), 1u);
    EXPECT_EQ(sessions[0]["subject"], "Maths");
    EXPECT_EQ(sessions[0]["studyMode"], "offlineBookStudy");
    EXPECT_FALSE(std::filesystem::exists(user_.dataHome));
    EXPECT_FALSE(std::filesystem::exists(user_.configHome));
    EXPECT_TRUE(lumenote::testing::namesIn(temporaryRoot_).empty());
}

TEST_F(ScenarioCommandTest, AGivenDataFolderKeepsTheStore) {
    const auto data = home_.root() / "kept";
    const Run result = run({script_.string(), "--data-dir", data.string()});
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_TRUE(std::filesystem::exists(data / "Lumenote" / "lumenote.sqlite"));
    EXPECT_FALSE(std::filesystem::exists(user_.dataHome));
    EXPECT_TRUE(lumenote::testing::namesIn(temporaryRoot_).empty());
}

TEST_F(ScenarioCommandTest, ARunThatCannotMakeItsFolderIsRefused) {
    std::filesystem::remove_all(temporaryRoot_);
    lumenote::testing::writeFile(temporaryRoot_, "not a folder");
    const Run refused = run({script_.string()});
    EXPECT_EQ(refused.status, 2);
    EXPECT_EQ(refused.out, "");
    EXPECT_NE(refused.err.find("give --data-dir"), std::string::npos) << refused.err;
    EXPECT_FALSE(std::filesystem::exists(user_.dataHome));
}

}  // namespace
}  // namespace lumenote::scenario
