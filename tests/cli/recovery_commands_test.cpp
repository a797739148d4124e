// `recovery` and `relabel` against a store left behind by a crashed recorder.
#include <gtest/gtest.h>

#include "cli/history_test_support.hpp"
#include "store/recorder_lock.hpp"

namespace lumenote::cli::testing {
namespace {

// Input stops at 100 and returns at 400 (a no-input stretch from 190, where
// the 90-second threshold was crossed), and the recorder dies at 430.
constexpr std::string_view kCrashedRecording =
    R"({"at":0,"do":"frontmost","bundle":"org.example.Editor","name":"Editor"}
{"at":0,"do":"start","subject":"Crashed","duration":3600}
{"at":100,"do":"noInput"}
{"at":400,"do":"input"}
{"at":430,"do":"crash"}
)";

class RecoveryCommandTest : public HistoryCommandTest {};

TEST_F(RecoveryCommandTest, StatusShowsTheOfferAndEndClosesTheSessionAsInterrupted) {
    record(kCrashedRecording);
    const CliRun status = run({"recovery", "status"});
    EXPECT_EQ(status.status, 0);
    EXPECT_TRUE(contains(status.out, "Lumenote found an unfinished session."));
    EXPECT_TRUE(contains(status.out, "Subject:      Crashed\n")) << status.out;

    const CliRun ended = run({"recovery", "end"});
    EXPECT_EQ(ended.status, 0) << ended.err;
    const auto stored = openStore()->listSessions({.includeChildren = true});
    ASSERT_TRUE(stored.ok());
    ASSERT_EQ(stored->size(), 1u);
    const recording::StudySession& session = (*stored)[0];
    EXPECT_EQ(session.status(), recording::StudySessionStatus::interrupted);
    // The last confirmed boundary is the save of the growing segment at 420,
    // the last save cadence before the crash at 430.
    EXPECT_DOUBLE_EQ(session.timerDuration, 420.0);
    EXPECT_DOUBLE_EQ(session.inactiveDuration, 210.0);
    EXPECT_TRUE(contains(run({"recovery"}).out, "No unfinished session was found."));
}

// A crash is told the same way everywhere: recovery status in plain text
// (no keys to press, no figure that grows with the clock), and sessions with
// the session waiting and what to run.
TEST_F(RecoveryCommandTest, EveryCommandTellsOfTheSessionWaitingForRecovery) {
    record(kCrashedRecording);
    const CliRun status = run({"recovery", "status"});
    EXPECT_EQ(status.status, 0);
    EXPECT_FALSE(contains(status.out, "[c]")) << status.out;
    EXPECT_TRUE(contains(status.out, "Confirmed:    0:07:00 up to ")) << status.out;
    EXPECT_TRUE(contains(status.out, "Uncertain:    what followed until the recorder stopped"))
        << status.out;
    EXPECT_TRUE(contains(status.out, "`lumenote-cli record --recovery continue`")) << status.out;

    const CliRun listed = run({"sessions"});
    EXPECT_EQ(listed.status, 0);
    EXPECT_TRUE(contains(listed.out, "waits for recovery")) << listed.out;
    EXPECT_TRUE(contains(listed.out, "\"Crashed\" (started ")) << listed.out;

    // While a recorder runs, its session is simply being recorded.
    {
        auto lock = store::RecorderLock::acquire(store::recorderLockPath(home_.paths()));
        ASSERT_TRUE(lock.ok());
        const CliRun running = run({"sessions"});
        EXPECT_FALSE(contains(running.out, "waits for recovery")) << running.out;
    }

    ASSERT_EQ(run({"recovery", "end"}).status, 0);
    EXPECT_FALSE(contains(run({"sessions"}).out, "waits for recovery"));
}

TEST_F(RecoveryCommandTest, IsRefusedWhileARecorderHoldsTheLock) {
    record(kCrashedRecording);
    auto lock = store::RecorderLock::acquire(store::recorderLockPath(home_.paths()));
    ASSERT_TRUE(lock.ok());
    const CliRun refused = run({"recovery", "end"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_TRUE(contains(refused.err, "already recording"));
    EXPECT_EQ((*openStore()->liveSessions()).size(), 1u);
}

TEST_F(RecoveryCommandTest, RelabelConfirmsOnlyTimeWithoutInput) {
    record(R"({"at":0,"do":"wallClock","iso":"2026-11-16T08:00:00Z"}
{"at":0,"do":"frontmost","bundle":"org.example.Editor","name":"Editor"}
{"at":0,"do":"start","subject":"Reading","duration":3600}
{"at":60,"do":"noInput"}
{"at":600,"do":"input"}
{"at":660,"do":"end"}
)");
    const std::string id = openStore()->listSessions({})->front().id.upperString();
    const CliRun active = run({"relabel", id, "--from", "2026-11-16T08:00:10Z", "--to",
                               "2026-11-16T08:01:00Z", "--state", "passive"});
    EXPECT_EQ(active.status, 1);
    EXPECT_TRUE(contains(active.err, "Recorded computer activity is never rewritten."));

    const CliRun outside = run({"relabel", id, "--from", "2026-11-16T07:00:00Z", "--to",
                                "2026-11-16T08:05:00Z", "--state", "break"});
    EXPECT_TRUE(contains(outside.err, "That time range falls outside this session."));

    const CliRun relabelled = run({"relabel", id.substr(0, 8), "--from", "2026-11-16T08:02:30Z",
                                   "--to", "2026-11-16T08:10:00Z", "--state", "break"});
    EXPECT_EQ(relabelled.status, 0) << relabelled.err;
    EXPECT_TRUE(contains(relabelled.out, "marked as Break"));
    const auto session = openStore()->loadSession(*Uuid::parse(id));
    EXPECT_DOUBLE_EQ((**session).confirmedBreakDuration(), 450.0);

    const CliRun undone = run({"relabel", id, "--from", "2026-11-16T08:02:30Z", "--to",
                               "2026-11-16T08:10:00Z", "--state", "unconfirmed"});
    EXPECT_TRUE(contains(undone.out, "returned to Unconfirmed"));
    EXPECT_DOUBLE_EQ((**openStore()->loadSession(*Uuid::parse(id))).confirmedBreakDuration(), 0.0);
}

}  // namespace
}  // namespace lumenote::cli::testing
