// The table of scenario actions: a name no row has is refused with its line,
// and while the recorder is down after a crash each row either runs without
// it or is refused, never reaching for a recorder that is not there.
#include "scenario/scenario_actions.hpp"

#include <gtest/gtest.h>

#include <fmt/format.h>
#include <set>
#include <string>

#include "scenario/scenario_runner.hpp"
#include "support/temporary_home.hpp"

namespace lumenote::scenario {
namespace {

class ScenarioActionsTest : public ::testing::Test {
  protected:
    // Runs `script` in a data and config folder of its own.
    Result<ScenarioOutcome, std::string> run(const std::string& script) {
        auto steps = parseScript(script);
        if (!steps.ok()) {
            return fail(steps.error());
        }
        const auto base = home_.root() / std::to_string(++runs_);
        return runScenario(*steps, UserPaths{base / "data", base / "config"}, Date{800000000.0});
    }

    lumenote::testing::TemporaryHome home_;
    int runs_ = 0;
};

TEST_F(ScenarioActionsTest, UnknownActionIsRefusedWithItsLineNumber) {
    // Line 2 is blank and line 3 a comment: the number is the file's line.
    const auto outcome = run(R"({"at":0,"do":"start","subject":"Typo","duration":600}

# the next step misspells "start"
{"at":5,"do":"strat"}
{"at":6,"do":"end"}
)");
    ASSERT_FALSE(outcome.ok());
    EXPECT_EQ(outcome.error(), "line 4: unknown action \"strat\"");
}

TEST_F(ScenarioActionsTest, EachActionNameHasOneRow) {
    // A second row with the same name would never be reached.
    std::set<std::string_view> names;
    for (const ScenarioAction& action : scenarioActions()) {
        EXPECT_TRUE(names.insert(action.name).second) << action.name;
    }
}

TEST_F(ScenarioActionsTest, WhileTheRecorderIsDownOnlyRowsWithoutItRun) {
    for (const ScenarioAction& action : scenarioActions()) {
        SCOPED_TRACE(std::string(action.name));
        const auto outcome = run(fmt::format(
            R"({{"at":0,"do":"start","subject":"Down","duration":600}}
{{"at":10,"do":"crash"}}
{{"at":20,"do":"{}"}}
)",
            action.name));
        const std::string refusal = fmt::format(
            "line 3: \"{}\" needs a running recorder (relaunch after a crash)", action.name);
        if (action.needsRecorder) {
            ASSERT_FALSE(outcome.ok());
            EXPECT_EQ(outcome.error(), refusal);
        } else if (!outcome.ok()) {
            // Without arguments some actions refuse the step, but not for
            // want of the recorder.
            EXPECT_NE(outcome.error(), refusal);
        }
    }
}

}  // namespace
}  // namespace lumenote::scenario
