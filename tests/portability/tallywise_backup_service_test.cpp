// Backups made from a real store file, and restored into another by merge
// and by replace, with the files, folders and failures of a real disk.
#include "portability/tallywise_backup_service.hpp"

#include <cerrno>

#include <gtest/gtest.h>

#include "backup_test_support.hpp"
#include "portability/automatic_backups.hpp"
#include "portability/backup_preferences.hpp"
#include "recording/tracking_calculation.hpp"
#include "settings/in_memory_defaults_domain.hpp"
#include "store/store_test_support.hpp"
#include "support/temporary_home.hpp"

namespace lumenote::portability {
namespace {

namespace fs = std::filesystem;
using namespace lumenote::testing;
using recording::StudySession;

const Date kDay = Date{800'000'000.25};

class HeldClock final : public recording::WallClock {
  public:
    Date now() override { return now_; }
    Date now_ = kDay.addingSeconds(30 * 86400.0);
};

// Fails every fsync, as a disk that cannot keep what it was given.
class FailingFsync final : public FileWriteOperations {
  public:
    int fsync(int) override {
        errno = EIO;
        return -1;
    }
};

// The totals a recorder stores when it ends a session, under the session's
// own calculation version.
StudySession recorded(StudySession session) {
    namespace calculation = recording::TrackingCalculationService;
    const auto stored = session.calculationVersionStorage;
    calculation::applyTotals(
        calculation::calculateSessionTotals(session, *session.endDate,
                                            calculation::effectiveCalculationVersion(session)),
        session);
    session.calculationVersionStorage = stored;
    return session;
}

// One store with its preferences: the data a backup is made of or restored into.
struct Installation {
    std::unique_ptr<store::SqliteRecordingStore> store;
    settings::InMemoryDefaultsDomain defaults;
    std::unique_ptr<settings::PreferencesStore> preferences;
    fs::path automaticFolder;
};

class BackupServiceTest : public TemporaryFolderTest {
  protected:
    void SetUp() override {
        TemporaryFolderTest::SetUp();
        open(source_, "source");
        open(target_, "target");
        writeHistory();
    }

    void open(Installation& installation, const std::string& name) {
        installation.store = openStore(folder_ / name / "lumenote.sqlite");
        installation.preferences =
            std::make_unique<settings::PreferencesStore>(installation.defaults);
        installation.automaticFolder = folder_ / name / "Tallywise" / "Backups";
    }

    TallywiseBackupService service(Installation& installation,
                                   FileWriteOperations& operations = systemFileWriteOperations()) {
        return TallywiseBackupService({.store = *installation.store,
                                       .history = *installation.store,
                                       .importer = *installation.store,
                                       .preferences = *installation.preferences,
                                       .wallClock = clock_,
                                       .calendar = LocalCalendar::utc(),
                                       .automaticBackupFolder = installation.automaticFolder,
                                       .appVersion = "1.2.3",
                                       .fileOperations = operations});
    }

    // Three sessions of three calculation versions and layouts, with every
    // kind of child, two rules of each kind and chosen preferences.
    void writeHistory() {
        StudySession full = fullSession(1, kDay);
        full.originatingTemplateIDStorage.reset();
        full.segments = {fullSegment(10, full.id, kDay),
                         bareSegment(11, full.id, kDay.addingSeconds(70))};
        full.segments[1].isInactive = false;
        recording::ConfirmedNoInputInterval superseded = confirmation(20, full.id, kDay);
        superseded.supersededAt = kDay.addingSeconds(1000);
        full.confirmedNoInputIntervals = {superseded, confirmation(21, full.id, kDay)};
        const auto pdf = pdfIdentity(30, full.id, kDay.addingSeconds(1), "filename");
        full.localPDFIdentities = {pdf.id};

        StudySession firstLayout = bareSession(2, kDay.addingSeconds(86400));
        firstLayout.statusRawValue = "interrupted";
        firstLayout.endDate = firstLayout.startDate.addingSeconds(45);
        firstLayout.segments = {bareSegment(12, firstLayout.id, firstLayout.startDate)};

        StudySession second = fullSession(3, kDay.addingSeconds(2 * 86400.0));
        second.originatingTemplateIDStorage.reset();
        second.calculationVersionStorage = 2;
        second.segments = {fullSegment(13, second.id, second.startDate)};

        history_ = {recorded(full), recorded(firstLayout), recorded(second)};
        pdfs_ = {pdf};
        recording::StoreChangeSet changes;
        for (const StudySession& session : history_) {
            changes.sessions.push_back(session);
            changes.segments.insert(changes.segments.end(), session.segments.begin(),
                                    session.segments.end());
            changes.confirmedIntervals.insert(changes.confirmedIntervals.end(),
                                              session.confirmedNoInputIntervals.begin(),
                                              session.confirmedNoInputIntervals.end());
        }
        changes.pdfIdentities = pdfs_;
        ASSERT_TRUE(source_.store->apply(changes));
        ASSERT_TRUE(
            source_.store->saveAppClassification({"org.gnome.Nautilus", "Files", "neutral", kDay}));
        ASSERT_TRUE(source_.store->saveAppClassification({"code", "Code", "focused", kDay}));
        ASSERT_TRUE(source_.store->saveWebsiteClassification({"example.org", "distracting", kDay}));
        ASSERT_TRUE(source_.store->saveWebsiteClassification({"arxiv.org", "focused", kDay}));
        source_.preferences->setAppearance(settings::TallywiseAppearance::dark);
        source_.preferences->setInactivityThreshold(300);
        source_.preferences->setLongSleep(settings::LongSleepPreference::never);
        source_.preferences->setRememberLastGoal(true);
        source_.preferences->setOnboardingCompletedVersion(4);
    }

    fs::path backupFile() const {
        return folder_ / "backups" / "Lumenote History Backup.tallywisebackup";
    }

    fs::path createBackup() {
        auto created = service(source_).createBackup(backupFile());
        EXPECT_TRUE(created) << created.error().message();
        return backupFile();
    }

    ValidatedBackup validated(Installation& installation, const fs::path& file) {
        auto checked = service(installation).validateBackup(file);
        EXPECT_TRUE(checked) << (checked ? "" : checked.error().message());
        return std::move(checked).value();
    }

    std::vector<StudySession> sessionsOf(Installation& installation) {
        return *installation.store->listSessions({.newestFirst = false, .includeChildren = true});
    }

    // A session of the target, which no backup holds.
    StudySession targetOwnSession() {
        StudySession own = recorded([&] {
            StudySession session = fullSession(50, kDay.addingSeconds(10 * 86400.0));
            session.segments = {fullSegment(51, session.id, session.startDate)};
            return session;
        }());
        recording::StoreChangeSet changes;
        changes.sessions = {own};
        changes.segments = own.segments;
        EXPECT_TRUE(target_.store->apply(changes));
        return own;
    }

    HeldClock clock_;
    Installation source_;
    Installation target_;
    std::vector<StudySession> history_;
    std::vector<classification::LocalPDFIdentity> pdfs_;
};

TEST_F(BackupServiceTest, AReplaceIntoAnEmptyStoreGivesBackTheSameHistoryRulesAndPreferences) {
    auto created = service(source_).createBackup(backupFile());
    ASSERT_TRUE(created) << created.error().message();
    EXPECT_EQ(created->report.document.sessionCount, 3u);
    EXPECT_EQ(created->report.segmentCount, 4u);
    EXPECT_EQ(created->report.ruleCount, 4u);
    EXPECT_EQ(created->bytes, fs::file_size(backupFile()));
    EXPECT_EQ(modeOf(backupFile()), 0600u);
    EXPECT_EQ(namesIn(backupFile().parent_path()),
              std::set<std::string>{"Lumenote History Backup.tallywisebackup"});

    const ValidatedBackup backup = validated(target_, backupFile());
    EXPECT_EQ(backup.report.document.appVersion, "1.2.3");
    auto replaced = service(target_).replace(backup, kReplaceConfirmation);
    ASSERT_TRUE(replaced) << replaced.error().message();
    EXPECT_EQ(restoreCompleteText(*replaced),
              "Restore complete: 3 sessions added, 0 duplicates skipped, 0 rule conflicts "
              "preserved locally.");

    EXPECT_EQ(sessionsOf(target_), history_);
    EXPECT_EQ(*target_.store->pdfIdentities(std::nullopt), pdfs_);
    EXPECT_EQ(*target_.store->appClassifications(), *source_.store->appClassifications());
    EXPECT_EQ(*target_.store->websiteClassifications(), *source_.store->websiteClassifications());
    EXPECT_EQ(backupPreferencesOf(*target_.preferences), backupPreferencesOf(*source_.preferences));
    // The empty store's data went into a verified automatic backup first.
    ASSERT_TRUE(replaced->automaticBackup);
    EXPECT_EQ(replaced->automaticBackup->parent_path(), target_.automaticFolder);
    auto automatic = service(target_).validateBackup(*replaced->automaticBackup);
    ASSERT_TRUE(automatic);
    EXPECT_EQ(automatic->report.document.sessionCount, 0u);
}

TEST_F(BackupServiceTest, MergingTwiceAddsTheSessionsOnceAndKeepsTheCurrentRules) {
    const StudySession own = targetOwnSession();
    ASSERT_TRUE(
        target_.store->saveAppClassification({"org.gnome.Nautilus", "Files", "distracting", kDay}));
    ASSERT_TRUE(
        target_.store->saveWebsiteClassification({"arxiv.org", "focused", kDay.addingSeconds(5)}));
    const fs::path file = createBackup();

    auto first = service(target_).merge(validated(target_, file));
    ASSERT_TRUE(first) << first.error().message();
    // Nautilus differs (a conflict); arxiv.org agrees (neither).
    EXPECT_EQ(restoreCompleteText(*first),
              "Restore complete: 3 sessions added, 0 duplicates skipped, 1 rule conflicts "
              "preserved locally.");
    auto second = service(target_).merge(validated(target_, file));
    ASSERT_TRUE(second) << second.error().message();
    EXPECT_EQ(restoreCompleteText(*second),
              "Restore complete: 0 sessions added, 3 duplicates skipped, 1 rule conflicts "
              "preserved locally.");

    std::vector<StudySession> expected = history_;
    expected.push_back(own);
    EXPECT_EQ(sessionsOf(target_), expected);
    const auto applications = *target_.store->appClassifications();
    ASSERT_EQ(applications.size(), 2u);
    EXPECT_EQ(applications[1].bundleIdentifier, "org.gnome.Nautilus");
    EXPECT_EQ(applications[1].classificationRawValue, "distracting");
    EXPECT_EQ(target_.store->websiteClassifications()->front().updatedAt, kDay.addingSeconds(5));
    // A merge adds history; it leaves the settings alone.
    EXPECT_EQ(target_.preferences->appearance(), settings::TallywiseAppearance::system);
    EXPECT_FALSE(fs::exists(target_.automaticFolder));
}

TEST_F(BackupServiceTest, AReplaceNeedsTheTypedWordAndAVerifiedAutomaticBackup) {
    const StudySession own = targetOwnSession();
    const fs::path file = createBackup();
    const ValidatedBackup backup = validated(target_, file);

    auto unconfirmed = service(target_).replace(backup, "restore");
    ASSERT_FALSE(unconfirmed);
    EXPECT_EQ(
        unconfirmed.error().message(),
        "Replace requires a verified automatic pre-restore backup. Type RESTORE to continue.");
    EXPECT_FALSE(fs::exists(target_.automaticFolder));

    // The automatic backup's folder cannot be made: its parent is a file
    // (which stops root as well as anyone).
    writeFile(target_.automaticFolder.parent_path(), "not a folder");
    auto unwritable = service(target_).replace(backup, kReplaceConfirmation);
    ASSERT_FALSE(unwritable);
    EXPECT_EQ(unwritable.error().message(),
              "Lumenote could not create and verify the required pre-restore backup.");
    fs::remove(target_.automaticFolder.parent_path());

    // The disk refuses to keep the automatic backup.
    FailingFsync failing;
    auto unsynced = service(target_, failing).replace(backup, kReplaceConfirmation);
    ASSERT_FALSE(unsynced);
    EXPECT_EQ(unsynced.error().failure, TallywiseBackupFailure::preRestoreBackupFailed);
    EXPECT_TRUE(namesIn(target_.automaticFolder).empty());

    EXPECT_EQ(sessionsOf(target_), std::vector<StudySession>{own});
    EXPECT_TRUE(target_.store->appClassifications()->empty());
    EXPECT_EQ(target_.preferences->appearance(), settings::TallywiseAppearance::system);
}

TEST_F(BackupServiceTest, CurrentDataThatDoesNotValidateStopsAReplaceUnchanged) {
    // The same stretch confirmed in force as study and as a break: the
    // automatic backup of this data would not validate, so it cannot be
    // trusted to restore it.
    StudySession own = targetOwnSession();
    own.confirmedNoInputIntervals = {confirmation(60, own.id, own.startDate),
                                     confirmation(61, own.id, own.startDate.addingSeconds(100))};
    own.confirmedNoInputIntervals[1].setState(recording::ConfirmedStudyState::confirmedBreak);
    recording::StoreChangeSet changes;
    changes.confirmedIntervals = own.confirmedNoInputIntervals;
    ASSERT_TRUE(target_.store->apply(changes));
    const std::vector<StudySession> before = sessionsOf(target_);

    auto replaced =
        service(target_).replace(validated(target_, createBackup()), kReplaceConfirmation);
    ASSERT_FALSE(replaced);
    EXPECT_EQ(replaced.error().failure, TallywiseBackupFailure::preRestoreBackupFailed);
    EXPECT_EQ(sessionsOf(target_), before);
    EXPECT_TRUE(namesIn(target_.automaticFolder).empty());
}

TEST_F(BackupServiceTest, NothingIsBackedUpOrRestoredWhileASessionIsActive) {
    const fs::path file = createBackup();
    const ValidatedBackup backup = validated(target_, file);
    StudySession live = bareSession(70, kDay.addingSeconds(40 * 86400.0));
    recording::StoreChangeSet changes;
    changes.sessions = {live};
    ASSERT_TRUE(target_.store->apply(changes));

    const std::string active = "Finish the active session before creating or restoring a backup.";
    const fs::path destination = folder_ / "out" / "while-active.tallywisebackup";
    auto created = service(target_).createBackup(destination);
    ASSERT_FALSE(created);
    EXPECT_EQ(created.error().message(), active);
    EXPECT_FALSE(fs::exists(destination.parent_path()));
    auto merged = service(target_).merge(backup);
    ASSERT_FALSE(merged);
    EXPECT_EQ(merged.error().message(), active);
    auto replaced = service(target_).replace(backup, kReplaceConfirmation);
    ASSERT_FALSE(replaced);
    EXPECT_EQ(replaced.error().message(), active);
    EXPECT_EQ(sessionsOf(target_).size(), 1u);
}

TEST_F(BackupServiceTest, ABackupThatCannotBeWrittenLeavesNoFileAndKeepsAnOldOne) {
    writeFile(backupFile(), "an older backup");
    FailingFsync failing;
    auto created = service(source_, failing).createBackup(backupFile());
    ASSERT_FALSE(created);
    EXPECT_EQ(created.error().message(), "The history backup could not be written.");
    EXPECT_EQ(readFile(backupFile()), "an older backup");
    EXPECT_EQ(namesIn(backupFile().parent_path()),
              std::set<std::string>{backupFile().filename().string()});

    auto misnamed = service(source_).createBackup(folder_ / "history.json");
    ASSERT_FALSE(misnamed);
    EXPECT_EQ(misnamed.error().failure, TallywiseBackupFailure::invalidFileType);
    EXPECT_FALSE(fs::exists(folder_ / "history.json"));
}

TEST_F(BackupServiceTest, ABackupChangedAfterItsValidationIsNotRestored) {
    const fs::path file = createBackup();
    const ValidatedBackup backup = validated(target_, file);
    std::ofstream(file, std::ios::app) << ' ';
    auto merged = service(target_).merge(backup);
    ASSERT_FALSE(merged);
    EXPECT_EQ(merged.error().failure, TallywiseBackupFailure::fileChanged);
    EXPECT_TRUE(sessionsOf(target_).empty());
}

TEST_F(BackupServiceTest, AStoreThatRefusesARecordPartWayKeepsEverythingAsItWas) {
    // A session of the target's own that already holds one of the backup's
    // segment identities: the merge fails at that segment, after sessions
    // and rules were written in the same transaction.
    StudySession clash = recorded([&] {
        StudySession session = fullSession(80, kDay.addingSeconds(20 * 86400.0));
        session.originatingTemplateIDStorage.reset();
        session.segments = {fullSegment(13, session.id, session.startDate)};
        return session;
    }());
    recording::StoreChangeSet changes;
    changes.sessions = {clash};
    changes.segments = clash.segments;
    ASSERT_TRUE(target_.store->apply(changes));

    auto merged = service(target_).merge(validated(target_, createBackup()));
    ASSERT_FALSE(merged);
    EXPECT_EQ(merged.error().failure, TallywiseBackupFailure::historyUnavailable);
    EXPECT_EQ(sessionsOf(target_), std::vector<StudySession>{clash});
    EXPECT_TRUE(target_.store->appClassifications()->empty());
}

TEST(AutomaticBackupsTest, NamesFollowTheLocalTimeAndTheNewestFiveAreKept) {
    const auto berlin = LocalCalendar::named("Europe/Berlin");
    ASSERT_TRUE(berlin);
    const Date winter = *parseIso8601("2026-01-05T23:30:15Z");
    EXPECT_EQ(automaticBackupName(winter, *berlin),
              "pre-restore-2026-01-06-003015.tallywisebackup");
    EXPECT_EQ(automaticBackupName(winter, *berlin, 2),
              "pre-restore-2026-01-06-003015-2.tallywisebackup");
    EXPECT_EQ(automaticBackupFolder(UserPaths{"/data", "/config"}), "/data/Tallywise/Backups");

    TemporaryHome home;
    const fs::path folder = home.root() / "Backups";
    std::vector<std::string> names;
    for (int minute = 0; minute < 7; ++minute) {
        names.push_back(automaticBackupName(winter.addingSeconds(minute * 60.0), *berlin));
        writeFile(folder / names.back(), "{}");
    }
    // Taken names get a counter; the later one of the same second is newer.
    const fs::path taken = freeAutomaticBackupPath(folder, winter.addingSeconds(360), *berlin);
    EXPECT_EQ(taken.filename(), "pre-restore-2026-01-06-003615-2.tallywisebackup");
    writeFile(taken, "{}");
    writeFile(folder / "my own copy.tallywisebackup", "{}");

    EXPECT_EQ(removeOldAutomaticBackups(folder, kKeptAutomaticBackups), 3u);
    EXPECT_EQ(namesIn(folder),
              (std::set<std::string>{names[3], names[4], names[5], names[6],
                                     taken.filename().string(), "my own copy.tallywisebackup"}));
    EXPECT_EQ(removeOldAutomaticBackups(folder / "missing", 1), 0u);
}

}  // namespace
}  // namespace lumenote::portability
