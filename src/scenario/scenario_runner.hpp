// Runs a scenario script against the real session manager and the real SQLite
// store, with a simulated clock and a scripted platform.
#pragma once

#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "foundation/dates.hpp"
#include "foundation/result.hpp"
#include "foundation/user_paths.hpp"
#include "scenario/scenario_script.hpp"

namespace lumenote::scenario {

struct ScenarioOutcome {
    // Every stored session in start order, with segments and confirmations.
    nlohmann::json sessions;
    // Failed `expect...` steps, each naming its line; empty when all held.
    std::vector<std::string> failedExpectations;
};

// Runs `steps` from script second 0. The simulated monotonic clock ticks once
// per second between steps (the manager's tick() runs after each second); the
// wall clock starts at `wallStart` and follows it unless a step sets or jumps
// it. The store lives under `paths.dataHome`, the preferences under
// `paths.configHome`. Fails with a message naming the line of an unknown
// action, bad arguments, or a store that cannot be opened.
Result<ScenarioOutcome, std::string> runScenario(const std::vector<ScriptStep>& steps,
                                                 const UserPaths& paths, Date wallStart);

}  // namespace lumenote::scenario
