#include "scenario/scenario_machine.hpp"

#include <unistd.h>

#include "recording/session_json.hpp"

namespace lumenote::scenario {

ScenarioMachine::ScenarioMachine(const UserPaths& paths, Date wallStart,
                                 std::unique_ptr<store::SqliteRecordingStore> store)
    : machine_(wallStart),
      store_(std::move(store)),
      domain_(settings::JsonFileDefaultsDomain::pathFor(paths),
              [this] { return machine_.clock.wallNow(); }),
      preferences_(domain_),
      recordingPreferences_(preferences_),
      checkpointStore_(paths.applicationData(), machine_.clock.wall()),
      personalBests_({*store_, *store_, recordingPreferences_, LocalCalendar::utc(), {}}),
      bridgeStore_(bridge::BrowserBridgeStore::defaultRoot(
          paths, [](const char*) -> const char* { return nullptr; })) {
    launch();
}

void ScenarioMachine::advanceTo(double scriptSeconds) {
    while (elapsed_ + 1.0 <= scriptSeconds + 1e-9) {
        machine_.clock.advance(1.0);
        elapsed_ += 1.0;
        if (manager_) {
            manager_->tick();
            bridgeCoordinator_->tick();
        }
    }
    if (scriptSeconds > elapsed_) {
        machine_.clock.advance(scriptSeconds - elapsed_);
        elapsed_ = scriptSeconds;
    }
}

void ScenarioMachine::launch() {
    rules_ = std::make_unique<classification::ClassificationRules>(machine_.rulesFor(*store_));
    // A bridge that cannot be prepared leaves browsers recorded as applications.
    bridgeCoordinator_ = std::make_unique<bridge::BridgeTrackingCoordinator>(
        bridgeStore_, machine_.clock.wall(), static_cast<std::int32_t>(::getpid()));
    (void)bridgeCoordinator_->start();
    browserTracking_ =
        std::make_unique<ScriptedBrowserTracking>(machine_.browser, *bridgeCoordinator_);
    machine_.browserTracking = browserTracking_.get();
    // Saves go through the store unless a "failSaves" step made them fail.
    const recording::StoreSaveOperation save = [this](const recording::StoreChangeSet& changes) {
        if (failingSaves_) {
            return Result<void, StoreError>(fail(StoreError{kInjectedSaveFailure}));
        }
        return store_->apply(changes);
    };
    history_ = std::make_unique<recording::SessionHistory>(
        machine_.historyDependencies(*store_, *rules_, recordingPreferences_, save));
    auto dependencies = machine_.dependencies(*store_, recordingPreferences_, checkpointStore_,
                                              *rules_, *history_, save);
    dependencies.personalBests = &personalBests_;
    manager_ = std::make_unique<recording::SessionManager>(std::move(dependencies));
    // What start-up finds is not shown: a relaunch starts with no error.
    manager_->startUp();
    manager_->problems().add(
        [this](const recording::SessionError& problem) { frontError_ = problem.message(); });
    browserSettings_ = std::make_unique<bridge::BrowserSettingsBinding>(*bridgeCoordinator_,
                                                                        preferences_, *rules_);
}

void ScenarioMachine::crash() {
    dropProcess();
}

// What a process holds goes, newest first: the recorder, then the browser
// tracking it sampled through.
void ScenarioMachine::dropProcess() {
    manager_.reset();
    browserSettings_.reset();
    machine_.browserTracking = nullptr;
    browserTracking_.reset();
    bridgeCoordinator_.reset();
}

std::optional<std::string> ScenarioMachine::takeShownError() {
    std::optional<std::string> shown = std::move(frontError_);
    frontError_.reset();
    return shown;
}

void ScenarioMachine::relaunch() {
    // The old recorder goes before the new one starts, as a restarted process would.
    dropProcess();
    launch();
}

nlohmann::json ScenarioMachine::storedSessions() {
    nlohmann::json sessions = nlohmann::json::array();
    auto listed = store_->listSessions(
        recording::SessionQuery{.newestFirst = false, .includeChildren = true});
    if (listed.ok()) {
        for (const auto& session : *listed) {
            sessions.push_back(recording::sessionJson(session, true));
        }
    }
    return sessions;
}

std::optional<Uuid> ScenarioMachine::storedSessionAt(long long index) {
    auto listed = store_->listSessions(recording::SessionQuery{.newestFirst = false});
    if (!listed.ok() || index < 0 || static_cast<std::size_t>(index) >= listed->size()) {
        return std::nullopt;
    }
    return (*listed)[static_cast<std::size_t>(index)].id;
}

Date ScenarioMachine::dateAt(double scriptSeconds) const {
    return machine_.clock.wallNow().addingSeconds(scriptSeconds - elapsed_);
}

}  // namespace lumenote::scenario
