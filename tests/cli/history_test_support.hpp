// A fixture for the history and rules commands: a temporary home, runs of
// lumenote-cli in it, sessions recorded into its store by the scenario runner
// (the real session manager over a simulated machine) and the store opened as
// another process would see it.
#pragma once

#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "cli/cli_test_support.hpp"
#include "scenario/scenario_runner.hpp"
#include "scenario/scenario_script.hpp"
#include "store/sqlite_recording_store.hpp"
#include "store/store_files.hpp"
#include "support/temporary_home.hpp"

namespace lumenote::cli::testing {

class HistoryCommandTest : public ::testing::Test {
  protected:
    CliRun run(const std::vector<std::string>& arguments) { return runIn(home_, arguments); }

    // Runs a scenario script (JSON lines) into this home and returns every
    // stored session in start order. The wall clock starts at `wallStart`
    // (by default 2026-11-16 at 08:00 UTC) unless the script sets it.
    nlohmann::json record(std::string_view script) {
        return record(script, *parseIso8601("2026-11-16T08:00:00Z"));
    }
    nlohmann::json record(std::string_view script, Date wallStart) {
        auto steps = scenario::parseScript(script);
        EXPECT_TRUE(steps.ok()) << (steps.ok() ? "" : steps.error());
        if (!steps.ok()) {
            return nlohmann::json::array();
        }
        auto outcome = scenario::runScenario(*steps, home_.paths(), wallStart);
        EXPECT_TRUE(outcome.ok()) << (outcome.ok() ? "" : outcome.error());
        if (outcome.ok()) {
            EXPECT_TRUE(outcome->failedExpectations.empty());
        }
        return outcome.ok() ? outcome->sessions : nlohmann::json::array();
    }

    std::unique_ptr<store::SqliteRecordingStore> openStore() {
        auto store = store::SqliteRecordingStore::open(store::storePath(home_.paths()));
        EXPECT_TRUE(store.ok()) << (store.ok() ? "" : store.error().description);
        return store.ok() ? std::move(store).value() : nullptr;
    }

    lumenote::testing::TemporaryHome home_;
};

inline bool contains(const std::string& text, std::string_view part) {
    return text.find(part) != std::string::npos;
}

}  // namespace lumenote::cli::testing
