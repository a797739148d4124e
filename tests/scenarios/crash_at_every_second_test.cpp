// A recorder killed at any second of a two-minute session: recovery keeps
// what was confirmed (losing at most one save cadence) and never counts time
// after the last confirmed boundary.
#include <gtest/gtest.h>

#include <fmt/format.h>
#include <filesystem>

#include "recording/session_manager.hpp"
#include "scenario/scenario_runner.hpp"
#include "support/temporary_home.hpp"

namespace lumenote::scenario {
namespace {

class CrashAtEverySecondTest : public ::testing::TestWithParam<const char*> {
  protected:
    UserPaths freshPaths(int run) const {
        const auto base = home_.root() / std::to_string(run);
        return UserPaths{base / "data", base / "config"};
    }

    lumenote::testing::TemporaryHome home_;
};

// Switches apps, stops input (so part of the session is no-input time) and
// crashes at `crashAt`; relaunches 30 seconds later with `recovery`.
std::string script(int crashAt, const std::string& recovery) {
    return fmt::format(
        R"({{"at":0,"do":"classifyApp","bundle":"editor","name":"Editor","classification":"focused"}}
{{"at":0,"do":"classifyApp","bundle":"video","name":"Video","classification":"distracting"}}
{{"at":0,"do":"frontmost","bundle":"editor","name":"Editor"}}
{{"at":0,"do":"start","subject":"Crash test","duration":86400}}
{{"at":{a},"do":"frontmost","bundle":"video","name":"Video"}}
{{"at":{b},"do":"frontmost","bundle":"editor","name":"Editor"}}
{{"at":{c},"do":"noInput"}}
{{"at":{crash},"do":"crash"}}
{{"at":{relaunch},"do":"relaunch","recovery":"{recovery}"}}
{{"at":{finish},"do":"end"}}
)",
        fmt::arg("a", std::min(17, crashAt)), fmt::arg("b", std::min(41, crashAt)),
        fmt::arg("c", std::min(50, crashAt)), fmt::arg("crash", crashAt),
        fmt::arg("relaunch", crashAt + 30), fmt::arg("finish", crashAt + 60),
        fmt::arg("recovery", recovery));
}

double totalOf(const nlohmann::json& session) {
    double total = 0.0;
    for (const char* key :
         {"focusedDuration", "distractedDuration", "neutralDuration", "unclassifiedDuration",
          "inactiveDuration", "ignoredDuration", "systemExcludedDuration"}) {
        total += session[key].get<double>();
    }
    return total;
}

TEST_P(CrashAtEverySecondTest, RecoveryKeepsConfirmedTimeAndNoUncertainTime) {
    const std::string recovery = GetParam();
    for (int crashAt = 1; crashAt <= 120; ++crashAt) {
        SCOPED_TRACE(fmt::format("crash at {} s, recovery {}", crashAt, recovery));
        auto steps = parseScript(script(crashAt, recovery));
        ASSERT_TRUE(steps.ok());
        auto outcome = runScenario(*steps, freshPaths(crashAt), Date{800000000.0});
        ASSERT_TRUE(outcome.ok()) << outcome.error();
        ASSERT_EQ(outcome->sessions.size(), 1u);
        const auto& session = outcome->sessions[0];
        const double timer = session["timerDuration"].get<double>();
        if (recovery == "end") {
            EXPECT_EQ(session["status"], "interrupted");
            // Confirmed: everything up to the last save, at most one save
            // cadence ago. Uncertain: nothing after the crash.
            EXPECT_LE(timer, crashAt);
            EXPECT_GE(timer, crashAt - recording::kSaveCadenceTicks);
        } else {
            EXPECT_EQ(session["status"], "completed");
            // The 30 seconds after relaunch count; the 30-second gap does not.
            EXPECT_LE(timer, crashAt + 30);
            EXPECT_GE(timer, crashAt - recording::kSaveCadenceTicks + 30);
        }
        EXPECT_LE(totalOf(session), timer + 0.001);
        for (const auto& segment : session["segments"]) {
            EXPECT_GT(segment["duration"].get<double>(), 0.0);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(BothChoices, CrashAtEverySecondTest, ::testing::Values("end", "continue"));

}  // namespace
}  // namespace lumenote::scenario
