// The standing personal records over a real store: each record and the
// session that set it, the longest Focused run read from the segments (not
// the Focused total), sessions that do not count left out, and a run the
// bounded number of loads cannot settle left out rather than guessed.
#include "insights/personal_records.hpp"

#include <gtest/gtest.h>

#include "insights/focus_candidates.hpp"
#include "insights/insight_test_support.hpp"
#include "store/sqlite_recording_store.hpp"
#include "support/stored_sessions.hpp"

namespace lumenote::insights {
namespace {

using lumenote::testing::SessionPlan;
using testing::at;

class PersonalRecordsTest : public ::testing::Test {
  protected:
    void SetUp() override {
        auto opened = store::SqliteRecordingStore::openInMemory();
        ASSERT_TRUE(opened.ok());
        store_ = std::move(*opened);
    }

    PersonalRecords records() {
        auto read = readPersonalRecords(*store_, *store_, kNow, {});
        EXPECT_TRUE(read.ok());
        return read.ok() ? *read : PersonalRecords{};
    }

    Date hour(int number) const { return kFirst.addingSeconds(number * 3600.0); }

    const Date kFirst = at("2026-11-02T08:00:00Z");
    const Date kNow = at("2026-11-26T08:00:00Z");
    std::unique_ptr<store::SqliteRecordingStore> store_;
};

TEST_F(PersonalRecordsTest, AnEmptyHistoryHoldsNoRecord) {
    EXPECT_EQ(records(), PersonalRecords{});
}

TEST_F(PersonalRecordsTest, EachRecordNamesTheSessionThatSetItFirst) {
    lumenote::testing::storeSessions(
        *store_,
        {// The largest Focused total, but in two runs of 500 seconds.
         {.start = hour(0), .focusedRuns = {500, 500}, .distracted = 100},
         // One unbroken run of 700 seconds: the longest run.
         {.start = hour(2), .focusedRuns = {700}, .distracted = 700},
         // The highest score (100 %), set first here and equalled later.
         {.start = hour(4), .focusedRuns = {300}},
         {.start = hour(6), .focusedRuns = {200}},
         // The longest session, mostly Neutral.
         {.start = hour(8), .focusedRuns = {60}, .distracted = 60, .neutral = 3000},
         // Longer still, but not counted: interrupted sessions count, running
         // ones never do.
         {.start = hour(10),
          .focusedRuns = {5000},
          .status = recording::StudySessionStatus::running}});
    const PersonalRecords found = records();
    EXPECT_EQ(found.sessions, 5);
    ASSERT_TRUE(found.longestSession && found.longestFocusedRun && found.highestFocusScore);
    EXPECT_EQ(*found.longestSession, (PersonalRecord{3120, hour(8)}));
    EXPECT_EQ(*found.longestFocusedRun, (PersonalRecord{700, hour(2)}));
    EXPECT_EQ(*found.highestFocusScore, (PersonalRecord{100, hour(4)}));
}

TEST_F(PersonalRecordsTest, ARunTheBoundedLoadsCannotSettleIsLeftOut) {
    const int bound = static_cast<int>(kMaximumFocusRunsChecked);
    const struct {
        const char* name;
        int fragmented;
        bool settled;
    } cases[] = {
        {"as many as are loaded", bound, true},
        {"one more than are loaded", bound + 1, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ASSERT_TRUE(store_->deleteAllSessions().ok());
        std::vector<SessionPlan> plans;
        for (int i = 0; i < c.fragmented; ++i) {
            plans.push_back({.start = hour(i), .focusedRuns = {400, 400}});
        }
        lumenote::testing::storeSessions(*store_, plans);
        const PersonalRecords found = records();
        EXPECT_EQ(found.sessions, c.fragmented);
        EXPECT_EQ(found.longestFocusedRun.has_value(), c.settled);
        if (found.longestFocusedRun) {
            EXPECT_EQ(found.longestFocusedRun->value, 400);
        }
    }
}

TEST_F(PersonalRecordsTest, ALongRunAmongTheLargestTotalsSettlesWithoutLoadingTheRest) {
    // One continuous hour beats every other session's whole Focused total,
    // so however many there are, the record is settled.
    std::vector<SessionPlan> plans{{.start = hour(0), .focusedRuns = {3600}}};
    for (int i = 1; i <= static_cast<int>(kMaximumFocusRunsChecked) + 5; ++i) {
        plans.push_back({.start = hour(i * 2), .focusedRuns = {300, 300}});
    }
    lumenote::testing::storeSessions(*store_, plans);
    const PersonalRecords found = records();
    ASSERT_TRUE(found.longestFocusedRun.has_value());
    EXPECT_EQ(*found.longestFocusedRun, (PersonalRecord{3600, hour(0)}));
}

}  // namespace
}  // namespace lumenote::insights
