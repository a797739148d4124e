#include <unistd.h>

#include <filesystem>

#include <gtest/gtest.h>

#include "cli/cli_context.hpp"
#include "cli/history_test_support.hpp"
#include "store/recorder_lock.hpp"

namespace lumenote::cli::testing {
namespace {

namespace fs = std::filesystem;

// Two finished sessions and a rule of each kind.
constexpr std::string_view kTwoSessions = R"(
{"at":0,"do":"frontmost","bundle":"org.gnome.TextEditor","name":"Text Editor"}
{"at":0,"do":"classifyApp","bundle":"org.gnome.TextEditor","name":"Text Editor","classification":"focused"}
{"at":0,"do":"classifyWebsite","hostname":"youtube.com","classification":"distracting"}
{"at":0,"do":"start","subject":"Algebra","duration":600}
{"at":120,"do":"end"}
{"at":200,"do":"start","subject":"Chemie","duration":600}
{"at":290,"do":"end"}
)";

// A session left paused, as a recorder in another process leaves it.
constexpr std::string_view kLiveSession = R"(
{"at":0,"do":"frontmost","bundle":"org.gnome.TextEditor","name":"Text Editor"}
{"at":0,"do":"start","subject":"Live","duration":600}
{"at":30,"do":"pause"}
)";

const std::string kActive = "Finish the active session before creating or restoring a backup.\n";

class BackupCommandsTest : public HistoryCommandTest {
  protected:
    std::string backupPath() const {
        return (home_.root() / "out" / "history.tallywisebackup").string();
    }

    CliRun runElsewhere(const std::vector<std::string>& arguments) {
        return runIn(elsewhere_, arguments);
    }

    std::size_t sessionsElsewhere() {
        auto store = store::SqliteRecordingStore::open(store::storePath(elsewhere_.paths()));
        return store ? (*store)->sessionCount().valueOr(0) : 0;
    }

    lumenote::testing::TemporaryHome elsewhere_;
};

TEST_F(BackupCommandsTest, ABackupMergedTwiceElsewhereAddsItsSessionsOnce) {
    record(kTwoSessions);
    const CliRun backup = run({"backup", backupPath()});
    ASSERT_EQ(backup.status, 0) << backup.err;
    EXPECT_TRUE(backup.out.starts_with("History backup created and verified\n")) << backup.out;
    EXPECT_TRUE(contains(backup.out, "2 sessions")) << backup.out;

    const CliRun first = runElsewhere({"restore", backupPath(), "--merge"});
    ASSERT_EQ(first.status, 0) << first.err;
    EXPECT_TRUE(contains(first.out,
                         "Validated history backup\n"
                         "  Made by Lumenote "))
        << first.out;
    EXPECT_TRUE(contains(first.out,
                         "  Sessions: 2\n"
                         "  Activity segments: "))
        << first.out;
    EXPECT_TRUE(contains(first.out,
                         "  Classification rules: 2\n"
                         "  Supported preferences only\n"))
        << first.out;
    EXPECT_TRUE(contains(first.out,
                         "Restore complete: 2 sessions added, 0 duplicates skipped, 0 rule "
                         "conflicts preserved locally.\n"))
        << first.out;
    const CliRun second = runElsewhere({"restore", backupPath(), "--merge"});
    ASSERT_EQ(second.status, 0) << second.err;
    EXPECT_TRUE(contains(second.out,
                         "Restore complete: 0 sessions added, 2 duplicates skipped, 0 rule "
                         "conflicts preserved locally.\n"))
        << second.out;
    EXPECT_EQ(sessionsElsewhere(), 2u);
    // Nothing was made automatically by a merge.
    EXPECT_FALSE(fs::exists(elsewhere_.paths().dataHome / "Tallywise" / "Backups"));
}

TEST_F(BackupCommandsTest, AReplaceShowsThePreviewAndWaitsForTheTypedWord) {
    record(kTwoSessions);
    ASSERT_EQ(run({"backup", backupPath()}).status, 0);

    const CliRun unconfirmed = runElsewhere({"restore", backupPath(), "--replace"});
    EXPECT_EQ(unconfirmed.status, kExitRefused);
    EXPECT_TRUE(contains(unconfirmed.out, "Validated history backup\n")) << unconfirmed.out;
    EXPECT_EQ(unconfirmed.err,
              "Replace requires a verified automatic pre-restore backup. Type RESTORE to "
              "continue.\n");
    EXPECT_EQ(sessionsElsewhere(), 0u);

    const CliRun replaced =
        runElsewhere({"restore", backupPath(), "--replace", "--confirm", "RESTORE"});
    ASSERT_EQ(replaced.status, 0) << replaced.err;
    const fs::path automatic = elsewhere_.paths().dataHome / "Tallywise" / "Backups";
    EXPECT_TRUE(contains(replaced.out, "Automatic backup of the previous data: " +
                                           automatic.string() + "/pre-restore-"))
        << replaced.out;
    EXPECT_TRUE(contains(replaced.out, "Restore complete: 2 sessions added")) << replaced.out;
    EXPECT_EQ(sessionsElsewhere(), 2u);
    EXPECT_EQ(lumenote::testing::filesContaining(automatic, "pre-restore-").size(), 1u);
}

TEST_F(BackupCommandsTest, AFileThatDoesNotValidateIsRefusedWithTheReason) {
    fs::create_directories(home_.root() / "folder.tallywisebackup");
    const CliRun folder =
        run({"restore", (home_.root() / "folder.tallywisebackup").string(), "--merge"});
    EXPECT_EQ(folder.status, kExitRefused);
    EXPECT_EQ(folder.err,
              "Restore validation failed: The selected backup must be a regular file, not a "
              "folder or symbolic link.\n");
    EXPECT_TRUE(folder.out.empty());

    lumenote::testing::writeFile(home_.root() / "later.tallywisebackup",
                                 R"({"formatVersion":4,"sessions":[]})");
    const CliRun later = run({"restore", (home_.root() / "later.tallywisebackup").string(),
                              "--replace", "--confirm", "RESTORE"});
    EXPECT_EQ(later.status, kExitRefused);
    EXPECT_EQ(later.err,
              "Restore validation failed: Backup format version 4 is not supported by this "
              "version of Lumenote.\n");
}

TEST_F(BackupCommandsTest, NeitherCommandRunsBesideARecorderOrALiveSession) {
    record(kTwoSessions);
    ASSERT_EQ(run({"backup", backupPath()}).status, 0);
    {
        auto lock = store::RecorderLock::acquire(store::recorderLockPath(home_.paths()));
        ASSERT_TRUE(lock);
        const CliRun backup = run({"backup", backupPath() + ".second.tallywisebackup"});
        EXPECT_EQ(backup.status, kExitRefused);
        EXPECT_EQ(backup.err, kActive);
        const CliRun restore = run({"restore", backupPath(), "--merge"});
        EXPECT_EQ(restore.status, kExitRefused);
        EXPECT_EQ(restore.err, kActive);
    }
    // A session the store still holds as live counts as active too.
    record(kLiveSession);
    const CliRun backup = run({"backup", backupPath()});
    EXPECT_EQ(backup.status, kExitRefused);
    EXPECT_EQ(backup.err, kActive);
}

TEST_F(BackupCommandsTest, TheBackupGoesToTheSuggestedNameInTheCurrentFolderByDefault) {
    record(kTwoSessions);
    const fs::path previous = fs::current_path();
    fs::current_path(home_.root());
    const CliRun backup = run({"backup"});
    fs::current_path(previous);
    ASSERT_EQ(backup.status, 0) << backup.err;
    EXPECT_TRUE(fs::is_regular_file(home_.root() / "Lumenote History Backup.tallywisebackup"));
}

TEST_F(BackupCommandsTest, ARestoreNeedsExactlyOneWayOfRestoring) {
    EXPECT_EQ(run({"restore", backupPath()}).status, kExitUsage);
    EXPECT_EQ(run({"restore", backupPath(), "--merge", "--replace"}).status, kExitUsage);
    const CliRun help = run({"help", "restore"});
    EXPECT_TRUE(contains(help.out, "--confirm")) << help.out;
    EXPECT_TRUE(contains(help.out, "keeps current rules when classifications conflict"))
        << help.out;
}

// An offline book session stores the away period and the no-input time it
// declares as study as two confirmations in force over the same time: the
// history the recorder wrote must back up and restore as it is.
TEST_F(BackupCommandsTest, TheRecordersOwnOverlappingStudyConfirmationsBackUpAndRestore) {
    record(R"(
{"at":0,"do":"frontmost","bundle":"org.gnome.TextEditor","name":"Text Editor"}
{"at":0,"do":"start","subject":"Novel","duration":86400,"mode":"offlineBookStudy"}
{"at":60,"do":"noInput"}
{"at":100,"do":"awayStart"}
{"at":400,"do":"input"}
{"at":400,"do":"awayEnd"}
{"at":500,"do":"end"}
)");
    const CliRun backup = run({"backup", backupPath()});
    ASSERT_EQ(backup.status, 0) << backup.err;
    const CliRun restored = runElsewhere({"restore", backupPath(), "--merge"});
    ASSERT_EQ(restored.status, 0) << restored.err;
    EXPECT_EQ(sessionsElsewhere(), 1u);
}

}  // namespace
}  // namespace lumenote::cli::testing
