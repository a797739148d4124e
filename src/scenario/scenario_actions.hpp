// The actions a scenario script may name: one table row per action, with its
// handler and whether it needs a running recorder.
#pragma once

#include <nlohmann/json.hpp>
#include <span>
#include <string>
#include <string_view>

#include "foundation/result.hpp"
#include "scenario/scenario_runner.hpp"
#include "scenario/scenario_script.hpp"

namespace lumenote::recording {
class SessionManager;
}

namespace lumenote::scenario {

class ScenarioMachine;

// One step being performed: the machine it acts on, the step with its
// arguments, and the outcome that collects failed expectations.
struct ActionCall {
    ScenarioMachine& machine;
    const ScriptStep& step;
    ScenarioOutcome& outcome;

    const nlohmann::json& arguments() const { return step.arguments; }
    // The running recorder; only for actions whose row needs one.
    recording::SessionManager& recorder() const;
    // Records a failed expectation: "line N: " and `what`.
    void expectationFailed(const std::string& what) const;
};

// Performs the action on the machine. Fails with a sentence (without the line
// number) for arguments the action cannot use; a scenario stops there.
using ActionHandler = Result<void, std::string> (*)(const ActionCall&);

struct ScenarioAction {
    // The name a script gives in "do".
    std::string_view name;
    // False for what still happens while the recorder is down after a crash:
    // the machine's own events, relaunching, and checks of what is stored.
    bool needsRecorder;
    ActionHandler perform;
};

// Every action, each name once.
std::span<const ScenarioAction> scenarioActions();

// Performs `step` through its table row. Fails with a sentence (without the
// line number) for a name no row has, for an action that needs the recorder
// while it is down, and for arguments the action cannot use; a failed
// expectation is added to `outcome` instead.
Result<void, std::string> performStep(ScenarioMachine& machine, const ScriptStep& step,
                                      ScenarioOutcome& outcome);

}  // namespace lumenote::scenario
