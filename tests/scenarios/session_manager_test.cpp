// The session manager over a real SQLite file, fake clocks and an in-memory
// checkpoint store: start refusals, saving, recalculation and the undo window.
#include "recording/session_manager.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <functional>
#include <limits>

#include "platform/fake/fake_platform.hpp"
#include "settings/in_memory_defaults_domain.hpp"
#include "settings/preferences_store.hpp"
#include "settings/recording_preferences_adapter.hpp"
#include "store/sqlite_recording_store.hpp"
#include "support/temporary_home.hpp"

namespace lumenote::recording {
namespace {

class SessionManagerTest : public ::testing::Test {
  protected:
    void SetUp() override {
        auto opened = store::SqliteRecordingStore::open(home_.root() / "lumenote.sqlite");
        ASSERT_TRUE(opened.ok());
        store_ = std::move(opened).value();
        frontmost_.current = FrontmostApplication{"Editor", "org.example.Editor"};
        launch();
    }
    void TearDown() override {
        manager_.reset();
        history_.reset();
        rules_.reset();
        store_.reset();
    }

    void launch() {
        manager_.reset();
        rules_ = std::make_unique<classification::ClassificationRules>(machine_.rulesFor(*store_));
        history_ = std::make_unique<SessionHistory>(
            machine_.historyDependencies(*store_, *rules_, recordingPreferences_));
        manager_ = std::make_unique<SessionManager>(machine_.dependencies(
            *store_, recordingPreferences_, *checkpointStore_, *rules_, *history_));
        problem_.reset();
        manager_->problems().add(
            [this](const SessionError& problem) { problem_ = problem.message(); });
        manager_->startUp();
    }
    // The process ends without finishing its session: what is stored stays.
    void crashAndRelaunch() {
        manager_.reset();
        launch();
    }

    void tickFor(int seconds) {
        for (int i = 0; i < seconds; ++i) {
            clock_.advance(1.0);
            manager_->tick();
        }
    }

    SessionStartRequest request(double duration = 1500.0) {
        SessionStartRequest start;
        start.subject = "Biology";
        start.plannedDuration = duration;
        return start;
    }

    std::vector<StudySession> stored() {
        auto listed =
            store_->listSessions(SessionQuery{.newestFirst = false, .includeChildren = true});
        return listed.ok() ? *listed : std::vector<StudySession>{};
    }

    testing::TemporaryHome home_;
    platform::fake::FakeMachine machine_{Date{800000000.0}};
    platform::fake::FakeClock& clock_ = machine_.clock;
    platform::fake::FakeFrontmost& frontmost_ = machine_.frontmost;
    InMemorySessionCheckpointStore checkpoints_;
    SessionCheckpointStore* checkpointStore_ = &checkpoints_;
    settings::InMemoryDefaultsDomain domain_;
    settings::PreferencesStore preferences_{domain_};
    settings::PreferencesForRecording recordingPreferences_{preferences_};
    std::unique_ptr<store::SqliteRecordingStore> store_;
    std::unique_ptr<classification::ClassificationRules> rules_;
    std::unique_ptr<SessionHistory> history_;
    std::unique_ptr<SessionManager> manager_;
    // The last failure the manager reported on its own.
    std::optional<std::string> problem_;
};

TEST_F(SessionManagerTest, PlannedDurationBoundaries) {
    struct Case {
        double duration;
        bool accepted;
    };
    for (const Case& c :
         {Case{86400.0, true}, Case{86400.5, false}, Case{0.0, false}, Case{-1.0, false},
          Case{std::nan(""), false}, Case{std::numeric_limits<double>::infinity(), false},
          Case{0.001, true}}) {
        SCOPED_TRACE(c.duration);
        const auto started = manager_->start(request(c.duration));
        EXPECT_EQ(started.ok(), c.accepted);
        if (c.accepted) {
            ASSERT_TRUE(manager_->end().ok());
        } else {
            EXPECT_EQ(started.error(), SessionFailure::invalidDuration);
            EXPECT_EQ(started.error().message(), "Choose a valid duration.");
            EXPECT_FALSE(manager_->activeSession());
        }
    }
}

TEST_F(SessionManagerTest, SubjectOfOnlyWhiteSpaceIsRefused) {
    SessionStartRequest start = request();
    start.subject = " \t\n ";
    const auto started = manager_->start(start);
    EXPECT_EQ(started.error(), SessionFailure::subjectMissing);
    EXPECT_EQ(started.error().message(), "Add a subject.");
    EXPECT_TRUE(stored().empty());
}

TEST_F(SessionManagerTest, SubjectLengthIsCountedInCharactersAfterTrimming) {
    std::string subject200;
    for (int i = 0; i < 200; ++i) {
        subject200 += "é";
    }
    struct Case {
        std::string subject;
        bool accepted;
    };
    for (const Case& c : {Case{subject200, true}, Case{" \n" + subject200 + "\t ", true},
                          Case{subject200 + "x", false}}) {
        SCOPED_TRACE(c.subject.size());
        SessionStartRequest start = request();
        start.subject = c.subject;
        const auto started = manager_->start(start);
        EXPECT_EQ(started.ok(), c.accepted);
        if (c.accepted) {
            EXPECT_EQ(manager_->activeSession()->subject, subject200);
            ASSERT_TRUE(manager_->end().ok());
        } else {
            EXPECT_EQ(started.error().message(), "Subject must be 200 characters or fewer.");
            EXPECT_FALSE(manager_->activeSession());
        }
    }
    EXPECT_EQ(stored().size(), 2u);
}

TEST_F(SessionManagerTest, SecondStartChangesNothing) {
    ASSERT_TRUE(manager_->start(request()).ok());
    const Uuid first = manager_->activeSession()->id;
    SessionStartRequest other = request();
    other.subject = "Chemistry";
    EXPECT_EQ(manager_->start(other).error(), SessionFailure::sessionAlreadyActive);
    EXPECT_EQ(manager_->activeSession()->id, first);
    EXPECT_EQ(manager_->activeSession()->subject, "Biology");
    EXPECT_EQ(stored().size(), 1u);
}

TEST_F(SessionManagerTest, EndDateIsSetExactlyWhenTheSessionStopsBeingLive) {
    ASSERT_TRUE(manager_->start(request()).ok());
    tickFor(5);
    ASSERT_TRUE(manager_->pause().ok());
    EXPECT_FALSE(stored()[0].endDate);
    ASSERT_TRUE(manager_->end().ok());
    const StudySession finished = stored()[0];
    EXPECT_EQ(finished.status(), StudySessionStatus::completed);
    ASSERT_TRUE(finished.endDate);
    EXPECT_TRUE(checkpoints_.checkpoint == std::nullopt);
}

TEST_F(SessionManagerTest, OpenSegmentIsWrittenAtTheSaveCadenceNotEveryTick) {
    ASSERT_TRUE(manager_->start(request(86400.0)).ok());
    tickFor(kSaveCadenceTicks - 1);
    EXPECT_TRUE(stored()[0].segments.empty());
    tickFor(1);
    ASSERT_EQ(stored()[0].segments.size(), 1u);
    EXPECT_DOUBLE_EQ(stored()[0].segments[0].duration, kSaveCadenceTicks);
    tickFor(kSaveCadenceTicks);
    ASSERT_EQ(stored()[0].segments.size(), 1u);
    EXPECT_DOUBLE_EQ(stored()[0].segments[0].duration, 2.0 * kSaveCadenceTicks);
    ASSERT_TRUE(checkpoints_.checkpoint);
    EXPECT_DOUBLE_EQ(checkpoints_.checkpoint->confirmedDuration, 2.0 * kSaveCadenceTicks);
}

TEST_F(SessionManagerTest, FailedCheckpointWriteNeverStopsRecording) {
    checkpoints_.failWrites = true;
    ASSERT_TRUE(manager_->start(request()).ok());
    EXPECT_EQ(problem_,
              "The recovery checkpoint could not be saved. Persisted study activity remains "
              "available.");
    tickFor(30);
    frontmost_.current = FrontmostApplication{"Browser", "org.example.Browser"};
    manager_->applicationActivated();
    tickFor(30);
    ASSERT_TRUE(manager_->end().ok());
    EXPECT_EQ(stored()[0].segments.size(), 2u);
    EXPECT_DOUBLE_EQ(stored()[0].timerDuration, 60.0);
}

TEST_F(SessionManagerTest, DamagedCheckpointIsReportedAtLaunch) {
    checkpoints_.returnsCorrupt = true;
    launch();
    EXPECT_EQ(problem_,
              "A damaged recovery checkpoint was isolated. Persisted study activity remains "
              "available.");
    EXPECT_FALSE(manager_->pendingRecoverySession());
}

TEST_F(SessionManagerTest, CheckpointOfAFinishedSessionIsRemovedWithoutAQuestion) {
    ASSERT_TRUE(manager_->start(request()).ok());
    tickFor(10);
    const auto leftOver = checkpoints_.checkpoint;
    ASSERT_TRUE(manager_->end().ok());
    checkpoints_.checkpoint = leftOver;
    launch();
    EXPECT_FALSE(manager_->pendingRecoverySession());
    EXPECT_FALSE(checkpoints_.checkpoint);
    EXPECT_FALSE(problem_);
}

TEST_F(SessionManagerTest, ChangedDerivedRevisionRecalculatesFinishedSessions) {
    ASSERT_TRUE(manager_->start(request()).ok());
    tickFor(90);
    ASSERT_TRUE(manager_->end().ok());
    StudySession tampered = stored()[0];
    tampered.unclassifiedDurationStorage = 1.0;
    tampered.segments.clear();
    StoreChangeSet changes;
    changes.sessions.push_back(tampered);
    ASSERT_TRUE(store_->apply(changes).ok());

    preferences_.setDerivedRevision(kDerivedTotalsRevision);
    launch();
    EXPECT_DOUBLE_EQ(stored()[0].unclassifiedDuration(), 1.0);
    preferences_.setDerivedRevision(kDerivedTotalsRevision - 1);
    launch();
    EXPECT_DOUBLE_EQ(stored()[0].unclassifiedDuration(), 90.0);
    EXPECT_EQ(preferences_.derivedRevision(), kDerivedTotalsRevision);
}

TEST_F(SessionManagerTest, DeletionUndoOfferEndsAfterItsTime) {
    ASSERT_TRUE(manager_->start(request()).ok());
    tickFor(5);
    ASSERT_TRUE(manager_->end().ok());
    ASSERT_TRUE(history_->deleteSessions({stored()[0].id}).ok());
    EXPECT_TRUE(history_->canUndoSessionDeletion());
    EXPECT_EQ(history_->sessionDeletionUndoDescription(), "1 sessions deleted");
    tickFor(static_cast<int>(kDeletionUndoSeconds) - 1);
    EXPECT_TRUE(history_->canUndoSessionDeletion());
    tickFor(1);
    EXPECT_FALSE(history_->canUndoSessionDeletion());
    EXPECT_FALSE(history_->undoSessionDeletion().ok());
    EXPECT_TRUE(stored().empty());
}

TEST_F(SessionManagerTest, EditingTrimsAndLimitsTheTexts) {
    ASSERT_TRUE(manager_->start(request()).ok());
    ASSERT_TRUE(manager_->end().ok());
    const Uuid id = stored()[0].id;
    const std::string twoHundred(200, 's');
    EXPECT_TRUE(history_->editSession(id, "  " + twoHundred + "\n", " goal ", "  ").ok());
    EXPECT_EQ(stored()[0].subject, twoHundred);
    EXPECT_EQ(stored()[0].goal, "goal");
    EXPECT_FALSE(stored()[0].notes());
    const auto tooLong = history_->editSession(id, twoHundred + "s", "", std::nullopt);
    EXPECT_EQ(tooLong.error(), SessionFailure::subjectTooLong);
    EXPECT_EQ(tooLong.error().message(), "Subject must be 200 characters or fewer.");
    // Characters, not bytes: 200 two-byte letters fit.
    std::string accented;
    for (int i = 0; i < 200; ++i) {
        accented += "é";
    }
    EXPECT_TRUE(history_->editSession(id, accented, "", std::nullopt).ok());
    EXPECT_EQ(history_->editSession(id, "   ", "", std::nullopt).error(),
              SessionFailure::subjectEmpty);
    EXPECT_EQ(history_->editSession(id, "x", std::string(501, 'g'), std::nullopt).error(),
              SessionFailure::goalTooLong);
    EXPECT_EQ(stored()[0].subject, accented);
}

TEST_F(SessionManagerTest, ResetKeepsTemplatesButClearsHistoryRulesAndPreferences) {
    ASSERT_TRUE(rules_
                    ->saveApplicationClassification("org.example.Editor", "Editor",
                                                    classification::ActivityClassification::focused)
                    .ok());
    preferences_.setInactivityThreshold(600);
    ASSERT_TRUE(manager_->start(request()).ok());
    EXPECT_EQ(history_->resetAllData().error(), SessionFailure::resetWhileActive);
    ASSERT_TRUE(manager_->end().ok());
    ASSERT_TRUE(history_->resetAllData().ok());
    EXPECT_TRUE(stored().empty());
    EXPECT_TRUE(store_->appClassifications()->empty());
    EXPECT_EQ(rules_->lookup().applicationClassification("org.example.Editor", "Editor"),
              classification::ActivityClassification::unclassified);
    EXPECT_DOUBLE_EQ(preferences_.inactivityThreshold(), 90.0);
}

TEST_F(SessionManagerTest, NoSessionStartsWhileARecoveryOfferWaits) {
    ASSERT_TRUE(manager_->start(request(86400.0)).ok());
    tickFor(70);
    const Uuid unfinished = manager_->activeSession()->id;
    crashAndRelaunch();
    ASSERT_TRUE(manager_->pendingRecoverySession());

    SessionStartRequest other = request();
    other.subject = "Chemistry";
    const auto refused = manager_->start(other);
    EXPECT_EQ(refused.error(), SessionFailure::recoveryPending);
    EXPECT_EQ(refused.error().message(),
              "Lumenote found an unfinished session. Continue it or end it before starting a "
              "new one.");
    EXPECT_FALSE(manager_->activeSession());
    EXPECT_EQ(stored().size(), 1u);
    ASSERT_TRUE(checkpoints_.checkpoint);
    EXPECT_EQ(checkpoints_.checkpoint->sessionID, unfinished);

    // Once the offer is answered a new session starts, and its checkpoint is
    // the one kept.
    ASSERT_TRUE(manager_->endRecoveredSession().ok());
    ASSERT_TRUE(manager_->start(other).ok());
    ASSERT_TRUE(checkpoints_.checkpoint);
    EXPECT_EQ(checkpoints_.checkpoint->sessionID, manager_->activeSession()->id);
}

TEST_F(SessionManagerTest, RecoveredSessionFinishesUnderItsOwnCalculationVersion) {
    ASSERT_TRUE(manager_->start(request(86400.0)).ok());
    tickFor(70);
    // A session recorded by a release that computed under v2.
    StudySession older = stored()[0];
    older.setCalculationVersion(TrackingCalculationVersion::v2);
    older.segments.clear();
    StoreChangeSet changes;
    changes.sessions.push_back(older);
    ASSERT_TRUE(store_->apply(changes).ok());
    manager_.reset();
    checkpoints_.checkpoint.reset();
    launch();
    ASSERT_TRUE(manager_->continueRecoveredSession().ok());
    tickFor(30);
    ASSERT_TRUE(manager_->end().ok());

    const StudySession finished = stored()[0];
    EXPECT_EQ(finished.calculationVersion(), TrackingCalculationVersion::v2);
    EXPECT_FALSE(finished.passiveStudyDurationStorage);
    EXPECT_FALSE(finished.confirmedBreakDurationStorage);
}

// ---- notifications ---------------------------------------------------------

using Posted = std::vector<std::pair<std::string, std::string>>;

TEST_F(SessionManagerTest, TimerCompletionIsAnnouncedOnceNamingTheSubjectOnlyWhenAllowed) {
    struct Case {
        bool includeSubject;
        double planned;
        const char* body;
    };
    preferences_.setNotificationsEnabled(true);
    for (const Case& c : {Case{false, 1500.0, "Your 25 min study session is complete."},
                          Case{true, 3900.0, "Biology: 1 h 5 min of study is complete."}}) {
        SCOPED_TRACE(c.body);
        machine_.notifications.posted.clear();
        preferences_.setNotificationsIncludeSubject(c.includeSubject);
        ASSERT_TRUE(manager_->start(request(c.planned)).ok());
        tickFor(static_cast<int>(c.planned) - 1);
        EXPECT_TRUE(machine_.notifications.posted.empty()) << "one second before the end";
        // A late tick lands past the planned duration; later ticks find no session.
        clock_.advance(2.5);
        manager_->tick();
        tickFor(5);
        EXPECT_FALSE(manager_->activeSession());
        EXPECT_EQ(machine_.notifications.posted, (Posted{{"Study session complete", c.body}}));
    }
}

TEST_F(SessionManagerTest, NothingIsPostedWhileNotificationsAreOff) {
    ASSERT_FALSE(preferences_.notificationsEnabled()) << "off unless the user turns them on";
    ASSERT_TRUE(manager_->start(request(1500.0)).ok());
    tickFor(60);
    manager_->willSleep();
    clock_.advance(3600.0);
    manager_->didWake();
    ASSERT_EQ(manager_->activeSession()->status(), StudySessionStatus::paused);
    ASSERT_TRUE(manager_->resume().ok());
    tickFor(1500);
    EXPECT_FALSE(manager_->activeSession());
    EXPECT_TRUE(machine_.notifications.posted.empty());

    // The preference is read when a notice is due, not when the session began.
    ASSERT_TRUE(manager_->start(request(120.0)).ok());
    preferences_.setNotificationsEnabled(true);
    manager_->willSleep();
    clock_.advance(3600.0);
    manager_->didWake();
    EXPECT_EQ(machine_.notifications.posted,
              (Posted{{"Lumenote", "Lumenote paused your session after a long Mac sleep."}}));
}

TEST_F(SessionManagerTest, SessionsNotEndedByTheirTimerPostNothing) {
    preferences_.setNotificationsEnabled(true);
    preferences_.setNotificationsIncludeSubject(true);
    ASSERT_TRUE(manager_->start(request(120.0)).ok());
    tickFor(119);
    ASSERT_TRUE(manager_->end().ok());
    ASSERT_TRUE(manager_->start(request(120.0)).ok());
    tickFor(60);
    ASSERT_TRUE(manager_->endAsInterrupted().ok());
    // Open-ended: the planned duration passes without ending the session.
    SessionStartRequest openEnded = request(120.0);
    openEnded.timingMode = SessionTimingMode::openEnded;
    ASSERT_TRUE(manager_->start(openEnded).ok());
    tickFor(300);
    ASSERT_TRUE(manager_->activeSession());
    ASSERT_TRUE(manager_->end().ok());
    EXPECT_TRUE(machine_.notifications.posted.empty());
}

// A checkpoint file that cannot be read is treated as missing: the session the
// store still marks live is offered from the store.
TEST_F(SessionManagerTest, UnreadableCheckpointFallsBackToTheLiveSessionInTheStore) {
    FileSessionCheckpointStore files(home_.root() / "app", clock_.wall());
    checkpointStore_ = &files;
    const std::filesystem::path checkpoint = files.fileURL();
    using Plant = std::function<void()>;
    const std::vector<std::pair<std::string, Plant>> unreadable{
        {"oversized",
         [&] {
             std::filesystem::remove(checkpoint);
             std::ofstream(checkpoint) << std::string(kActiveSessionCheckpointByteLimit + 1, ' ');
         }},
        {"symbolic link",
         [&] {
             std::filesystem::rename(checkpoint, home_.root() / "elsewhere.json");
             std::filesystem::create_symlink(home_.root() / "elsewhere.json", checkpoint);
         }},
        {"directory",
         [&] {
             std::filesystem::remove(checkpoint);
             std::filesystem::create_directory(checkpoint);
         }},
    };
    for (const auto& [name, plant] : unreadable) {
        SCOPED_TRACE(name);
        launch();
        ASSERT_TRUE(manager_->start(request(86400.0)).ok());
        tickFor(70);
        const Uuid unfinished = manager_->activeSession()->id;
        manager_.reset();
        plant();
        launch();
        ASSERT_TRUE(manager_->pendingRecoverySession());
        EXPECT_EQ(manager_->pendingRecoverySession()->id, unfinished);
        EXPECT_FALSE(problem_);
        ASSERT_TRUE(manager_->endRecoveredSession().ok());
        std::filesystem::remove_all(checkpoint);
    }
    EXPECT_TRUE(store_->liveSessions()->empty());
    for (const StudySession& session : stored()) {
        EXPECT_EQ(session.status(), StudySessionStatus::interrupted);
    }
    // With nothing live to offer, the unreadable file is reported.
    std::ofstream(checkpoint) << std::string(kActiveSessionCheckpointByteLimit + 1, ' ');
    launch();
    EXPECT_FALSE(manager_->pendingRecoverySession());
    EXPECT_EQ(problem_,
              "Lumenote could not recover an unfinished session: The recovery checkpoint file is "
              "larger than allowed.");
    manager_.reset();
    checkpointStore_ = &checkpoints_;
}

}  // namespace
}  // namespace lumenote::recording
