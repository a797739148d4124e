#include "scenario/scenario_runner.hpp"

#include <fmt/format.h>

#include "scenario/scenario_actions.hpp"
#include "scenario/scenario_machine.hpp"
#include "store/sqlite_recording_store.hpp"
#include "store/store_files.hpp"

namespace lumenote::scenario {

Result<ScenarioOutcome, std::string> runScenario(const std::vector<ScriptStep>& steps,
                                                 const UserPaths& paths, Date wallStart) {
    auto store = store::SqliteRecordingStore::open(store::storePath(paths));
    if (!store.ok()) {
        return fail(store::storageOpenFailureMessage(store.error()));
    }
    ScenarioMachine machine(paths, wallStart, std::move(store).value());
    ScenarioOutcome outcome;
    for (const ScriptStep& step : steps) {
        machine.advanceTo(step.at);
        if (auto done = performStep(machine, step, outcome); !done.ok()) {
            return fail(fmt::format("line {}: {}", step.lineNumber, done.error()));
        }
    }
    outcome.sessions = machine.storedSessions();
    return outcome;
}

}  // namespace lumenote::scenario
