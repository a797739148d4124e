// Personal bests at the end of a session: the real session manager over a
// real SQLite file and fake clocks, with the bests checked against the
// history it recorded.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "insights/history_personal_bests.hpp"
#include "platform/fake/fake_platform.hpp"
#include "recording/session_manager.hpp"
#include "recording/tracking_calculation.hpp"
#include "settings/in_memory_defaults_domain.hpp"
#include "settings/preferences_store.hpp"
#include "settings/recording_preferences_adapter.hpp"
#include "store/sqlite_recording_store.hpp"
#include "support/temporary_home.hpp"

namespace lumenote::recording {
namespace {

constexpr const char* kEditor = "org.example.Editor";
constexpr const char* kGame = "org.example.Game";

// One session: Focused seconds in the editor, then Distracting seconds in a
// game, then how it ends.
struct Recorded {
    double focused = 0.0;
    double distracted = 0.0;
    bool interrupted = false;
};

class PersonalBestsTest : public ::testing::Test {
  protected:
    void SetUp() override {
        auto opened = store::SqliteRecordingStore::open(home_.root() / "lumenote.sqlite");
        ASSERT_TRUE(opened.ok());
        store_ = std::move(opened).value();
        rules_ = std::make_unique<classification::ClassificationRules>(machine_.rulesFor(*store_));
        ASSERT_TRUE(rules_->saveApplicationClassification(
            kEditor, "Editor", classification::ActivityClassification::focused));
        ASSERT_TRUE(rules_->saveApplicationClassification(
            kGame, "Game", classification::ActivityClassification::distracting));
        history_ = std::make_unique<SessionHistory>(
            machine_.historyDependencies(*store_, *rules_, recordingPreferences_));
        bests_ = std::make_unique<insights::HistoryPersonalBests>(
            insights::HistoryPersonalBestsDependencies{
                *store_, *store_, recordingPreferences_, LocalCalendar::utc(), {}});
        auto dependencies =
            machine_.dependencies(*store_, recordingPreferences_, checkpoints_, *rules_, *history_);
        dependencies.personalBests = bests_.get();
        manager_ = std::make_unique<SessionManager>(std::move(dependencies));
        manager_->problems().add(
            [this](const SessionError& problem) { ADD_FAILURE() << problem.message(); });
        manager_->startUp();
    }

    void tickFor(double seconds) {
        for (int i = 0; i < static_cast<int>(seconds); ++i) {
            machine_.clock.advance(1.0);
            manager_->tick();
        }
    }

    // Records the session, leaves a minute before the next one, and returns
    // the titles of the bests it set.
    std::vector<std::string> record(const Recorded& session) {
        machine_.frontmost.current = FrontmostApplication{"Editor", kEditor};
        SessionStartRequest request;
        request.subject = "Biology";
        request.plannedDuration = 86400.0;
        request.timingMode = SessionTimingMode::openEnded;
        EXPECT_TRUE(manager_->start(request).ok());
        tickFor(session.focused);
        machine_.frontmost.current = FrontmostApplication{"Game", kGame};
        tickFor(session.distracted);
        EXPECT_TRUE(session.interrupted ? manager_->endAsInterrupted().ok() : manager_->end().ok());
        std::vector<std::string> titles;
        for (const PersonalBest& best : manager_->pendingPostSessionPersonalBests()) {
            titles.emplace_back(personalBestTitle(best.kind));
        }
        tickFor(60);
        return titles;
    }

    // Records `sessions` in order and checks the bests each one set.
    void expectBests(const std::vector<std::pair<Recorded, std::vector<std::string>>>& sessions) {
        for (std::size_t i = 0; i < sessions.size(); ++i) {
            EXPECT_EQ(record(sessions[i].first), sessions[i].second) << "session " << i;
        }
    }

    lumenote::testing::TemporaryHome home_;
    // 2026-11-16 08:00 UTC.
    platform::fake::FakeMachine machine_{Date::fromUnixSeconds(1794816000.0)};
    InMemorySessionCheckpointStore checkpoints_;
    settings::InMemoryDefaultsDomain domain_;
    settings::PreferencesStore preferences_{domain_};
    settings::PreferencesForRecording recordingPreferences_{preferences_};
    std::unique_ptr<store::SqliteRecordingStore> store_;
    std::unique_ptr<classification::ClassificationRules> rules_;
    std::unique_ptr<SessionHistory> history_;
    std::unique_ptr<insights::HistoryPersonalBests> bests_;
    std::unique_ptr<SessionManager> manager_;
};

const std::vector<std::string> kNone;

TEST_F(PersonalBestsTest, FirstThreeSessionsEarnNoneThenABestMustBeatByTheMargin) {
    expectBests({
        {{600, 0}, kNone},
        {{700, 0}, kNone},
        {{800, 0}, kNone},
        // A tie with the longest earlier session, then a beat by less than a second.
        {{800, 0}, kNone},
        {{800.5, 0}, kNone},
        {{801, 0}, {"New longest focus", "New longest session"}},
        // Longer, but only because of Distracting time: the run is no record.
        {{300, 600}, {"New longest session"}},
    });
}

TEST_F(PersonalBestsTest, FocusScoreBestNeedsHalfAPointAndThreeScoredSessions) {
    expectBests({
        {{300, 300}, kNone},  // 50 %
        {{300, 300}, kNone},
        {{300, 300}, kNone},
        // 300 / 598 is 50.17 %: less than half a point better.
        {{300, 298}, kNone},
        // 300 / 580 is 51.7 %.
        {{300, 280}, {"New highest focus score"}},
        {{400, 200}, {"New longest focus", "New highest focus score"}},
    });
}

TEST_F(PersonalBestsTest, AnInterruptedSessionEarnsNoneButCountsAsHistory) {
    expectBests({
        {{600, 0}, kNone},
        {{600, 0}, kNone},
        {{600, 0}, kNone},
        {{900, 0, true}, kNone},
        // The interrupted session holds the records now.
        {{850, 0}, kNone},
        {{901, 0}, {"New longest focus", "New longest session"}},
    });
}

TEST_F(PersonalBestsTest, ASessionTooShortToCountEarnsNone) {
    expectBests({
        {{100, 300}, kNone},
        {{100, 300}, kNone},
        {{100, 300}, kNone},
        // Ended less than five minutes after it started: it does not count,
        // although its run is the longest.
        {{250, 0}, kNone},
        {{300, 0}, {"New longest focus"}},
    });
}

TEST_F(PersonalBestsTest, DailyGoalCompleteOncePerDayAndGoal) {
    preferences_.setDailyStudyGoalMinutes(20);
    expectBests({
        {{600, 0}, kNone},
        {{600, 0}, {"Daily goal complete"}},
        {{600, 0}, kNone},
    });
    // A higher goal reached the same day is acknowledged once more.
    preferences_.setDailyStudyGoalMinutes(35);
    expectBests({
        {{600, 0}, {"Daily goal complete"}},
        {{600, 0}, kNone},
    });
    // The next day starts from nothing.
    machine_.clock.advance(86400.0);
    expectBests({
        {{1200, 0}, {"New longest focus", "New longest session"}},
        {{901, 0}, {"Daily goal complete"}},
    });
}

TEST_F(PersonalBestsTest, NoDailyGoalMeansNeverComplete) {
    expectBests({
        {{3600, 0}, kNone},
        {{3600, 0}, kNone},
    });
}

TEST_F(PersonalBestsTest, ClearingThePostSessionClearsItsBests) {
    for (int i = 0; i < 3; ++i) {
        record({600, 0});
    }
    ASSERT_EQ(record({700, 0}).size(), 2u);
    manager_->clearPendingPostSession();
    EXPECT_TRUE(manager_->pendingPostSessionPersonalBests().empty());
}

// The check over sessions stored directly: each earlier session has 1000 s
// of Focused time, made of two 500-s runs with a pause between them unless
// it is `continuous`, so only loading its segments tells its longest run.
class HistoryPersonalBestsTest : public ::testing::Test {
  protected:
    void SetUp() override {
        auto opened = store::SqliteRecordingStore::open(home_.root() / "lumenote.sqlite");
        ASSERT_TRUE(opened.ok());
        store_ = std::move(opened).value();
    }

    StudySession focusedSession(Date start, const std::vector<double>& runs) {
        StudySession session(Uuid::generate(), "Biology", "", 86400, start);
        session.setCalculationVersion(kCurrentTrackingCalculationVersion);
        Date at = start;
        for (const double run : runs) {
            session.segments.emplace_back(Uuid::generate(), at, at.addingSeconds(run), run,
                                          "Editor", kEditor,
                                          classification::ActivityClassification::focused, false);
            session.segments.back().session = session.id;
            at = at.addingSeconds(run + 60);  // a pause breaks the run
        }
        session.timerDuration = 1000;
        session.endDate = at;
        session.setStatus(StudySessionStatus::completed);
        TrackingCalculationService::applyTotals(
            TrackingCalculationService::calculateSessionTotals(session, at,
                                                               kCurrentTrackingCalculationVersion),
            session);
        return session;
    }

    void storeEarlier(int fragmented, bool oneContinuous) {
        StoreChangeSet changes;
        for (int i = 0; i < fragmented + (oneContinuous ? 1 : 0); ++i) {
            const bool continuous = oneContinuous && i == 0;
            StudySession session = focusedSession(
                kStart.addingSeconds(i * 3600.0),
                continuous ? std::vector<double>{1000} : std::vector<double>{500, 500});
            changes.segments.insert(changes.segments.end(), session.segments.begin(),
                                    session.segments.end());
            session.segments.clear();
            changes.sessions.push_back(std::move(session));
        }
        ASSERT_TRUE(store_->apply(changes).ok());
    }

    const Date kStart = Date::fromUnixSeconds(1794816000.0);
    lumenote::testing::TemporaryHome home_;
    settings::InMemoryDefaultsDomain domain_;
    settings::PreferencesStore preferences_{domain_};
    settings::PreferencesForRecording recordingPreferences_{preferences_};
    std::unique_ptr<store::SqliteRecordingStore> store_;
};

TEST_F(HistoryPersonalBestsTest, TheLongestRunIsSettledFromAtMostTheBoundOfLoadedSessions) {
    const int bound = static_cast<int>(insights::kMaximumFocusRunsChecked);
    const struct {
        const char* name;
        int fragmented;
        bool oneContinuous;
        bool focusBest;
    } cases[] = {
        {"three sessions with shorter runs", 3, false, true},
        {"as many as are loaded", bound, false, true},
        {"one more than are loaded: not settled", bound + 1, false, false},
        {"one session holds a longer run", 3, true, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ASSERT_TRUE(store_->deleteAllSessions().ok());
        storeEarlier(c.fragmented, c.oneContinuous);
        insights::HistoryPersonalBests check(
            {*store_, *store_, recordingPreferences_, LocalCalendar::utc(), {}});
        const Date start = kStart.addingSeconds(86400.0 * 7);
        const StudySession finished = focusedSession(start, {900});
        auto found = check.personalBestsOf(finished, finished.endDate->addingSeconds(60));
        ASSERT_TRUE(found.ok());
        const bool focusBest = std::any_of(found->begin(), found->end(), [](const auto& best) {
            return best.kind == PersonalBestKind::longestFocus;
        });
        EXPECT_EQ(focusBest, c.focusBest);
    }
}

}  // namespace
}  // namespace lumenote::recording
