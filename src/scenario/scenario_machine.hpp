// The simulated machine a scenario runs on: the fake platform, the real store
// and preferences, and the recorder, which a script may crash and relaunch.
#pragma once

#include <memory>
#include <nlohmann/json.hpp>
#include <optional>

#include "bridge/bridge_tracking_coordinator.hpp"
#include "bridge/browser_settings_binding.hpp"
#include "foundation/dates.hpp"
#include "foundation/user_paths.hpp"
#include "foundation/uuid.hpp"
#include "insights/history_personal_bests.hpp"
#include "platform/fake/fake_platform.hpp"
#include "recording/session_checkpoint_store.hpp"
#include "recording/session_manager.hpp"
#include "scenario/scripted_browser_tracking.hpp"
#include "settings/json_file_defaults_domain.hpp"
#include "settings/preferences_store.hpp"
#include "settings/recording_preferences_adapter.hpp"
#include "store/sqlite_recording_store.hpp"

namespace lumenote::scenario {

// The store error of a save that a "failSaves" step made fail.
inline constexpr const char* kInjectedSaveFailure = "disk I/O error (injected)";

class ScenarioMachine {
  public:
    // Owns `store` and launches the recorder over it. The preferences live
    // under `paths.configHome`, the checkpoint under `paths.dataHome`; the
    // wall clock starts at `wallStart`.
    ScenarioMachine(const UserPaths& paths, Date wallStart,
                    std::unique_ptr<store::SqliteRecordingStore> store);
    ScenarioMachine(const ScenarioMachine&) = delete;
    ScenarioMachine& operator=(const ScenarioMachine&) = delete;

    // Moves the simulated clocks to `scriptSeconds` after the script's start,
    // one second at a time, calling the recorder's tick() after each whole
    // second as the recorder runtime does; a fraction left over is added last.
    void advanceTo(double scriptSeconds);

    // The recorder; null between crash() and relaunch().
    recording::SessionManager* recorder() { return manager_.get(); }
    // The process is gone: nothing is finalised; only the store, the
    // checkpoint file and the bridge directory remain.
    void crash();
    // Drops any running recorder (as crash() does), then starts a new one
    // over the same store, preferences and checkpoint file, with the error its
    // start-up may have left cleared.
    void relaunch();

    // The rules and the history the recorder was launched with (they start
    // anew with it); they outlive a crash until the relaunch.
    classification::ClassificationRules& rules() { return *rules_; }
    recording::SessionHistory& history() { return *history_; }
    // Keeps the failure of an action, as a front end keeps it to show: the
    // last one, whether an action returned it or the recorder reported it
    // on its own (a save during a tick); an "expectError" step reads it.
    template <typename Value, typename Error>
    void noteOutcome(const Result<Value, Error>& outcome) {
        if (!outcome.ok()) {
            frontError_ = outcome.error().message();
        }
    }
    // The error shown now, cleared as it is read.
    std::optional<std::string> takeShownError();

    // While set, every save of the recorder and the history fails with
    // kInjectedSaveFailure and changes nothing.
    void setFailingSaves(bool failing) { failingSaves_ = failing; }

    platform::fake::FakeMachine& platform() { return machine_; }
    // The bridge directory the recorder reads browser events from, in the
    // scenario's data folder; its coordinator is null after a crash.
    bridge::BrowserBridgeStore& bridgeStore() { return bridgeStore_; }
    bridge::BridgeTrackingCoordinator* bridgeCoordinator() { return bridgeCoordinator_.get(); }
    settings::PreferencesStore& preferences() { return preferences_; }
    recording::RecordingStore& store() { return *store_; }

    // Every stored session in start order, with children, segments and
    // confirmations; an empty array when the store cannot list them.
    nlohmann::json storedSessions();
    // The identifier of the stored top-level session at `index` (from 0, in
    // start order); nullopt when there is none.
    std::optional<Uuid> storedSessionAt(long long index);
    // The wall date of a moment of the script (seconds from its start),
    // counted back from the wall clock's now.
    Date dateAt(double scriptSeconds) const;

    // The history a "snapshot" step kept for a later "expectSnapshot"; an
    // empty array until then.
    nlohmann::json& snapshot() { return snapshot_; }

  private:
    void launch();
    void dropProcess();

    platform::fake::FakeMachine machine_;
    std::unique_ptr<store::SqliteRecordingStore> store_;
    settings::JsonFileDefaultsDomain domain_;
    settings::PreferencesStore preferences_;
    settings::PreferencesForRecording recordingPreferences_;
    recording::FileSessionCheckpointStore checkpointStore_;
    // The end-of-session bests, in the UTC calendar of the scenario clocks.
    insights::HistoryPersonalBests personalBests_;
    std::unique_ptr<classification::ClassificationRules> rules_;
    std::unique_ptr<recording::SessionHistory> history_;
    bridge::BrowserBridgeStore bridgeStore_;
    std::unique_ptr<bridge::BridgeTrackingCoordinator> bridgeCoordinator_;
    std::unique_ptr<ScriptedBrowserTracking> browserTracking_;
    std::unique_ptr<bridge::BrowserSettingsBinding> browserSettings_;
    // Declared last so that it goes first: it writes through everything above.
    std::unique_ptr<recording::SessionManager> manager_;
    std::optional<std::string> frontError_;
    bool failingSaves_ = false;
    double elapsed_ = 0.0;
    nlohmann::json snapshot_ = nlohmann::json::array();
};

}  // namespace lumenote::scenario
