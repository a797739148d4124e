// The history service on its own, over a real SQLite file, as the command line
// uses it: no recorder in this process, only what the store holds.
#include "recording/session_history.hpp"

#include <gtest/gtest.h>

#include "platform/fake/fake_platform.hpp"
#include "recording/tracking_calculation.hpp"
#include "settings/in_memory_defaults_domain.hpp"
#include "settings/preferences_store.hpp"
#include "settings/recording_preferences_adapter.hpp"
#include "store/sqlite_recording_store.hpp"
#include "support/temporary_home.hpp"

namespace lumenote::recording {
namespace {

class SessionHistoryTest : public ::testing::Test {
  protected:
    void SetUp() override {
        auto opened = store::SqliteRecordingStore::open(home_.root() / "lumenote.sqlite");
        ASSERT_TRUE(opened.ok());
        store_ = std::move(opened).value();
        rules_ = std::make_unique<classification::ClassificationRules>(machine_.rulesFor(*store_));
        history_ = std::make_unique<SessionHistory>(
            machine_.historyDependencies(*store_, *rules_, recordingPreferences_));
    }

    // A session as another process left it in the store.
    Uuid storeSession(StudySessionStatus status, const std::string& subject = "Biology") {
        StudySession session(Uuid::generate(), subject, "", 1500, machine_.clock.wallNow());
        session.setStatus(status);
        session.timerDuration = 600;
        if (status == StudySessionStatus::completed) {
            session.endDate = machine_.clock.wallNow().addingSeconds(600);
        }
        ActivitySegment segment(
            Uuid::generate(), session.startDate, session.startDate.addingSeconds(600), 600,
            "Editor", "org.example.Editor", classification::ActivityClassification::focused, false);
        segment.session = session.id;
        StoreChangeSet changes;
        changes.sessions.push_back(session);
        changes.segments.push_back(segment);
        EXPECT_TRUE(store_->apply(changes).ok());
        return session.id;
    }

    // A finished session of the current method: ten minutes of the editor
    // (Focused) and five on a website (Distracting), totals stored.
    Uuid storeScoredSession() {
        StudySession session(Uuid::generate(), "Biology", "", 900, machine_.clock.wallNow());
        session.setStatus(StudySessionStatus::completed);
        session.timerDuration = 900;
        session.endDate = session.startDate.addingSeconds(900);
        ActivitySegment editor(
            Uuid::generate(), session.startDate, session.startDate.addingSeconds(600), 600,
            "Editor", "org.example.Editor", classification::ActivityClassification::focused, false);
        ActivitySegment site(Uuid::generate(), session.startDate.addingSeconds(600),
                             *session.endDate, 300, "Firefox", "org.mozilla.firefox",
                             classification::ActivityClassification::distracting, false);
        site.setActivitySource(ActivitySourceType::website);
        site.hostname = "video.example";
        session.segments = {editor, site};
        namespace Tracking = TrackingCalculationService;
        Tracking::applyTotals(Tracking::calculateSessionTotals(session, *session.endDate,
                                                               TrackingCalculationVersion::v3),
                              session);
        StoreChangeSet changes;
        for (ActivitySegment& segment : session.segments) {
            segment.session = session.id;
            changes.segments.push_back(segment);
        }
        session.segments.clear();
        changes.sessions.push_back(session);
        EXPECT_TRUE(store_->apply(changes).ok());
        return session.id;
    }

    std::size_t storedCount() { return store_->sessionCount().valueOr(0); }

    testing::TemporaryHome home_;
    platform::fake::FakeMachine machine_{Date{800000000.0}};
    settings::InMemoryDefaultsDomain domain_;
    settings::PreferencesStore preferences_{domain_};
    settings::PreferencesForRecording recordingPreferences_{preferences_};
    std::unique_ptr<store::SqliteRecordingStore> store_;
    std::unique_ptr<classification::ClassificationRules> rules_;
    std::unique_ptr<SessionHistory> history_;
};

TEST_F(SessionHistoryTest, ASessionRecordedElsewhereBlocksChangesThatWouldRaceIt) {
    const Uuid finished = storeSession(StudySessionStatus::completed);
    const Uuid live = storeSession(StudySessionStatus::paused, "Chemistry");
    EXPECT_EQ(history_->deleteSessions({finished}).error().message(),
              "End the active session before deleting session history.");
    EXPECT_EQ(history_->deleteAllSessions().error(), SessionFailure::deleteAllWhileActive);
    EXPECT_EQ(history_->resetAllData().error(), SessionFailure::resetWhileActive);
    EXPECT_EQ(history_->editSession(live, "Physics", "", std::nullopt).error().message(),
              "End the active session before editing it.");
    EXPECT_EQ(storedCount(), 2u);
    // A finished session can still be edited meanwhile.
    EXPECT_TRUE(history_->editSession(finished, " Physics ", "", std::nullopt).ok());
    EXPECT_EQ((*store_->loadSession(finished))->subject, "Physics");
}

TEST_F(SessionHistoryTest, TheUndoOfferEndsAtItsTimeAndTellsItsObservers) {
    const Uuid first = storeSession(StudySessionStatus::completed);
    int told = 0;
    history_->deletionUndoChanged().add([&told] { ++told; });
    ASSERT_TRUE(history_->deleteSessions({first, Uuid::generate()}).ok());
    EXPECT_EQ(history_->sessionDeletionUndoDescription(), "1 sessions deleted");
    EXPECT_EQ(told, 1);
    machine_.clock.advance(kDeletionUndoSeconds - 0.5);
    history_->tick();
    EXPECT_TRUE(history_->canUndoSessionDeletion());
    machine_.clock.advance(0.5);
    history_->tick();
    EXPECT_FALSE(history_->canUndoSessionDeletion());
    EXPECT_EQ(told, 2);
    history_->tick();
    EXPECT_EQ(told, 2) << "an offer that already ended is not announced again";
    EXPECT_EQ(history_->undoSessionDeletion().error().message(),
              "Lumenote could not restore the deleted session(s): nothing to restore");
}

TEST_F(SessionHistoryTest, DeletingOnlyUnknownIdsChangesNothing) {
    storeSession(StudySessionStatus::completed);
    EXPECT_EQ(history_->deleteSessions({Uuid::generate()}).error(),
              SessionFailure::sessionNotFound);
    EXPECT_FALSE(history_->canUndoSessionDeletion());
    EXPECT_EQ(storedCount(), 1u);
}

TEST_F(SessionHistoryTest, AFailedDeleteRemovesNothingAndOffersNoUndo) {
    const Uuid first = storeSession(StudySessionStatus::completed);
    SessionHistory failing(SessionHistoryDependencies{
        *store_, *rules_, recordingPreferences_, machine_.clock.monotonic(), machine_.clock.wall(),
        [](const StoreChangeSet&) -> Result<void, StoreError> {
            return fail(StoreError{"database or disk is full"});
        }});
    EXPECT_EQ(failing.deleteSessions({first}).error().message(),
              "Lumenote could not delete the selected session(s): database or disk is full");
    EXPECT_FALSE(failing.canUndoSessionDeletion());
    EXPECT_EQ(storedCount(), 1u);
}

TEST_F(SessionHistoryTest, TotalsAreRecalculatedOnceForANewRevision) {
    const Uuid id = storeSession(StudySessionStatus::completed);
    StudySession stale = **store_->loadSession(id);
    stale.setCalculationVersion(TrackingCalculationVersion::v3);
    stale.focusedDuration = 1;
    stale.segments.clear();
    StoreChangeSet changes;
    changes.sessions.push_back(stale);
    ASSERT_TRUE(store_->apply(changes).ok());

    preferences_.setDerivedRevision(kDerivedTotalsRevision - 1);
    ASSERT_TRUE(history_->bringTotalsUpToDate().ok());
    EXPECT_DOUBLE_EQ((*store_->loadSession(id))->focusedDuration, 600);
    EXPECT_EQ(preferences_.derivedRevision(), kDerivedTotalsRevision);
}

const ClassifiedActivity kVideo{.kind = ClassifiedActivity::Kind::website,
                                .bundleIdentifier = "org.mozilla.firefox",
                                .name = "video.example",
                                .hostname = "video.example"};

TEST_F(SessionHistoryTest, ReclassifyingRefusesLiveAndMissingSessions) {
    const Uuid live = storeSession(StudySessionStatus::running);
    EXPECT_EQ(
        history_->reclassifyInSession(live, kVideo, classification::ActivityClassification::focused)
            .error(),
        SessionFailure::editWhileActive);
    EXPECT_EQ(history_
                  ->reclassifyInSession(Uuid::generate(), kVideo,
                                        classification::ActivityClassification::focused)
                  .error(),
              SessionFailure::sessionNotFound);
}

TEST_F(SessionHistoryTest, AFailedReclassificationSaveLeavesSegmentsAndTotalsAsTheyWere) {
    const Uuid id = storeScoredSession();
    const StudySession before = **store_->loadSession(id);
    SessionHistory failing(SessionHistoryDependencies{
        *store_, *rules_, recordingPreferences_, machine_.clock.monotonic(), machine_.clock.wall(),
        [](const StoreChangeSet&) -> Result<void, StoreError> {
            return fail(StoreError{"disk I/O error"});
        }});
    EXPECT_EQ(
        failing.reclassifyInSession(id, kVideo, classification::ActivityClassification::focused)
            .error()
            .message(),
        "Study activity could not be saved: disk I/O error");
    EXPECT_EQ(**store_->loadSession(id), before);
}

TEST_F(SessionHistoryTest, AlwaysWithARefusedRuleChangesNeitherRulesNorTheSession) {
    const Uuid id = storeScoredSession();
    const StudySession before = **store_->loadSession(id);
    ClassifiedActivity nameless = kVideo;
    nameless.hostname = "  ";
    const auto refused =
        history_->classifyAlways(id, nameless, classification::ActivityClassification::focused);
    ASSERT_FALSE(refused.ok());
    EXPECT_EQ(refused.error(), SessionFailure::ruleNotSaved);
    EXPECT_FALSE(refused.error().message().empty());
    EXPECT_TRUE(store_->websiteClassifications()->empty());
    EXPECT_EQ(**store_->loadSession(id), before);

    ASSERT_TRUE(
        history_->classifyAlways(id, kVideo, classification::ActivityClassification::focused).ok());
    EXPECT_EQ(store_->websiteClassifications()->size(), 1u);
    EXPECT_DOUBLE_EQ((*store_->loadSession(id))->focusedDuration, 900.0);
}

}  // namespace
}  // namespace lumenote::recording
