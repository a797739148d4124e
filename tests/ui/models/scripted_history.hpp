// A history recorded by a scenario script (tests/ui/models/scenarios): the
// real recorder runs the script over a real store in a temporary home, and
// the view models then read that store as a page would.
#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <sstream>
#include <string>

#include "scenario/scenario_runner.hpp"
#include "scenario/scenario_script.hpp"
#include "store/sqlite_recording_store.hpp"
#include "store/store_files.hpp"
#include "support/temporary_home.hpp"

namespace lumenote::ui::models::testing {

class ScriptedHistory {
  public:
    // Runs the script `name` with the wall clock starting at `wallStart`;
    // a failure to run it or a failed expectation fails the test.
    ScriptedHistory(const std::string& name, Date wallStart) {
        std::ifstream file(std::string(LUMENOTE_SOURCE_DIR) + "/tests/ui/models/scenarios/" + name);
        std::stringstream text;
        text << file.rdbuf();
        auto steps = scenario::parseScript(text.str());
        EXPECT_TRUE(steps.ok()) << name << ": " << steps.error();
        if (!steps.ok()) {
            return;
        }
        auto outcome = scenario::runScenario(*steps, home_.paths(), wallStart);
        EXPECT_TRUE(outcome.ok()) << name << ": " << outcome.error();
        if (outcome.ok()) {
            for (const std::string& failure : outcome->failedExpectations) {
                ADD_FAILURE() << name << ": " << failure;
            }
        }
        auto opened = store::SqliteRecordingStore::open(store::storePath(home_.paths()));
        EXPECT_TRUE(opened.ok());
        if (opened.ok()) {
            store_ = std::move(*opened);
        }
    }

    store::SqliteRecordingStore& store() { return *store_; }

  private:
    lumenote::testing::TemporaryHome home_;
    std::unique_ptr<store::SqliteRecordingStore> store_;
};

}  // namespace lumenote::ui::models::testing
