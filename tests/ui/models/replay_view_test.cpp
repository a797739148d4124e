// The replay view over a history recorded by the real session manager (a
// scenario script in a temporary folder), and over sessions of older
// calculation methods stored through the real store: what each shows comes
// from the stored figures, and a first-method session is never recomputed.
#include "ui/models/replay_view.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "recording/focus_score_text.hpp"
#include "recording/session_study_state_editor.hpp"
#include "recording/tracking_calculation_version.hpp"
#include "scenario/scenario_runner.hpp"
#include "store/sqlite_recording_store.hpp"
#include "store/store_files.hpp"
#include "support/temporary_home.hpp"
#include "ui/models/receipt_test_sessions.hpp"

namespace lumenote::ui::models {
namespace {

using namespace testing;
using recording::ConfirmedStudyState;
using recording::StudySession;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr const char* kScript =
    "/tests/scenarios/replay_of_a_studied_session_and_of_no_input_only.jsonl";

class ReplayViewTest : public ::testing::Test {
  protected:
    void SetUp() override {
        const std::string text =
            lumenote::testing::readFile(std::string(LUMENOTE_SOURCE_DIR) + kScript);
        auto steps = scenario::parseScript(text);
        ASSERT_TRUE(steps.ok()) << steps.error();
        auto outcome = scenario::runScenario(*steps, home_.paths(), at(kSessionStart));
        ASSERT_TRUE(outcome.ok()) << outcome.error();
        ASSERT_THAT(outcome->failedExpectations, IsEmpty());
        auto opened = store::SqliteRecordingStore::open(store::storePath(home_.paths()));
        ASSERT_TRUE(opened.ok());
        store_ = std::move(*opened);
        auto sessions = store_->listSessions({.newestFirst = false, .includeChildren = true});
        ASSERT_TRUE(sessions.ok());
        ASSERT_EQ(sessions->size(), 2u);
        studied_ = (*sessions)[0];
        noInputOnly_ = (*sessions)[1];
    }

    // `session` stored and read back, as the page reads it.
    StudySession storedAndLoaded(StudySession session) {
        recording::StoreChangeSet changes;
        for (auto& segment : session.segments) {
            segment.session = session.id;
            changes.segments.push_back(segment);
        }
        StudySession row = session;
        row.segments.clear();
        changes.sessions.push_back(row);
        EXPECT_TRUE(store_->apply(changes).ok());
        auto loaded = store_->loadSession(session.id);
        EXPECT_TRUE(loaded.ok() && loaded->has_value());
        return **loaded;
    }

    static std::vector<std::string> names(const std::vector<ReplayRow>& rows) {
        std::vector<std::string> listed;
        for (const ReplayRow& row : rows) {
            listed.push_back(row.name);
        }
        return listed;
    }

    lumenote::testing::TemporaryHome home_;
    std::unique_ptr<store::SqliteRecordingStore> store_;
    StudySession studied_;
    StudySession noInputOnly_;
};

TEST_F(ReplayViewTest, AStudiedSessionShowsItsHeaderTotalsAndScore) {
    const ReplayView view = makeReplayView(studied_, LocalCalendar::utc());
    EXPECT_EQ(view.subject, "Linear algebra");
    EXPECT_EQ(view.goal, "Eigenvalues, chapter 3");
    EXPECT_EQ(view.dateText, "Monday 23 November 2026 · 09:00 – 09:40");
    EXPECT_EQ(view.duration, "40 min");
    EXPECT_EQ(view.status, recording::StudySessionStatus::completed);
    // 1600 s Focused, 100 s Distracting, 90 s Neutral, 10 s Unclassified and
    // 600 s without input, never confirmed.
    EXPECT_THAT(
        view.figures,
        ElementsAre(ReplayFigure{"Study time", "30 min"}, ReplayFigure{"Computer study", "30 min"},
                    ReplayFigure{"Studying away from Mac", "0 s"}, ReplayFigure{"Break", "0 s"},
                    ReplayFigure{"No input, unconfirmed", "10 min"}));
    EXPECT_EQ(view.focusScore, "94%");                     // 1600 / 1700
    EXPECT_EQ(view.focusScoreNote, "71% score coverage");  // 1700 / 2400
    EXPECT_EQ(view.versionText,
              *recording::explanationText(recording::TrackingCalculationVersion::v3));
    EXPECT_EQ(view.reclassifyRefusal, "");
    EXPECT_EQ(view.relabelRefusal, "");
}

TEST_F(ReplayViewTest, BrowserPagesNestUnderTheirBrowserWithTimesAndChips) {
    const ReplayView view = makeReplayView(studied_, LocalCalendar::utc());
    ASSERT_THAT(names(view.rows), ElementsAre("Text Editor", "Browser activity", "Text Editor",
                                              "No input", "Text Editor"));
    const ReplayRow& browser = view.rows[1];
    EXPECT_EQ(browser.kind, ReplayRowKind::browserGroup);
    EXPECT_EQ(browser.times, "09:10–09:13");
    EXPECT_EQ(browser.chipText, "");
    EXPECT_FALSE(browser.activity.has_value());
    ASSERT_THAT(names(browser.children),
                ElementsAre("Chromium", "en.wikipedia.org", "www.youtube.com"));
    const ReplayRow& video = browser.children[2];
    EXPECT_EQ(video.times, "09:11–09:13");
    EXPECT_EQ(video.duration, "1 min");
    EXPECT_EQ(video.chipText, "Distracting");
    ASSERT_TRUE(video.activity.has_value());
    EXPECT_EQ(video.activity->kind, recording::ClassifiedActivity::Kind::website);
    EXPECT_EQ(video.activity->hostname, "www.youtube.com");
    // The browser without a page is the browser application itself.
    EXPECT_EQ(browser.children[0].activity->kind, recording::ClassifiedActivity::Kind::application);
    EXPECT_EQ(browser.children[0].chipText, "Unclassified");

    const ReplayRow& editor = view.rows[0];
    EXPECT_EQ(editor.times, "09:00–09:10");
    EXPECT_EQ(editor.classification, ActivityClassification::focused);
    EXPECT_EQ(editor.activity->bundleIdentifier, "org.gnome.TextEditor");
    const ReplayRow& away = view.rows[3];
    EXPECT_EQ(away.kind, ReplayRowKind::noInput);
    EXPECT_EQ(away.times, "09:21–09:31");
    EXPECT_EQ(away.duration, "10 min");
    EXPECT_EQ(away.chipText, kUnconfirmedChipText);
    EXPECT_FALSE(away.activity.has_value());
    EXPECT_DOUBLE_EQ(away.end.secondsSince(away.start), 600.0);
}

TEST_F(ReplayViewTest, ASessionOfNoInputOnlyHasNoScoreAndOneUnconfirmedRow) {
    const ReplayView view = makeReplayView(noInputOnly_, LocalCalendar::utc());
    EXPECT_EQ(view.subject, "Reading");
    EXPECT_EQ(view.goal, "");
    EXPECT_THAT(
        view.figures,
        ElementsAre(ReplayFigure{"Study time", "0 s"}, ReplayFigure{"Computer study", "0 s"},
                    ReplayFigure{"Studying away from Mac", "0 s"}, ReplayFigure{"Break", "0 s"},
                    ReplayFigure{"No input, unconfirmed", "10 min"}));
    EXPECT_EQ(view.focusScore, std::nullopt);
    EXPECT_EQ(view.focusScoreNote,
              recording::TrackingCalculationService::kNotEnoughEvidenceToShowScoreText);
    ASSERT_EQ(view.rows.size(), 1u);
    EXPECT_EQ(view.rows[0].kind, ReplayRowKind::noInput);
    EXPECT_EQ(view.rows[0].chipText, kUnconfirmedChipText);
    ASSERT_EQ(view.timeline.size(), 1u);
    EXPECT_EQ(view.timeline[0].kind, TimelineBlockKind::noInput);
}

TEST_F(ReplayViewTest, ConfirmingPartOfTheNoInputTimeShowsInItsChipAndFigures) {
    const ReplayRow row = makeReplayView(noInputOnly_, LocalCalendar::utc()).rows[0];
    const auto half = row.start.addingSeconds(300);
    auto edited = recording::SessionStudyStateEditor::applyEdit(
        noInputOnly_, row.start, half, ConfirmedStudyState::passiveStudy,
        recording::ConfirmedStudyStateSource::replayEdit, row.end);
    ASSERT_TRUE(edited.ok());
    const ReplayView partly = makeReplayView(edited->session, LocalCalendar::utc());
    EXPECT_EQ(partly.rows[0].chipText, kPartlyConfirmedChipText);
    EXPECT_THAT(
        partly.figures,
        ElementsAre(ReplayFigure{"Study time", "5 min"}, ReplayFigure{"Computer study", "0 s"},
                    ReplayFigure{"Studying away from Mac", "5 min"}, ReplayFigure{"Break", "0 s"},
                    ReplayFigure{"No input, unconfirmed", "5 min"}));

    auto wholly = recording::SessionStudyStateEditor::applyEdit(
        edited->session, row.start, row.end, ConfirmedStudyState::confirmedBreak,
        recording::ConfirmedStudyStateSource::replayEdit, row.end);
    ASSERT_TRUE(wholly.ok());
    EXPECT_EQ(makeReplayView(wholly->session, LocalCalendar::utc()).rows[0].chipText, "Break");
}

TEST_F(ReplayViewTest, AFirstMethodSessionShowsItsOwnStoredFigures) {
    // Its segments would give 10 min Focused under any method; it was shown
    // (and stored) with 25 min Focused and 5 min Distracting, and keeps that.
    StudySession old =
        finishedSession({appSegment(0, 600, "Editor", ActivityClassification::focused),
                         appSegment(600, 300, "Editor", ActivityClassification::focused, true)},
                        recording::TrackingCalculationVersion::v1);
    old.focusedDuration = 1500;
    old.distractedDuration = 300;
    old.inactiveDuration = 0;
    old.focusScore = 83.3;
    const ReplayView view = makeReplayView(storedAndLoaded(old), LocalCalendar::utc());
    EXPECT_EQ(view.figures[1], (ReplayFigure{"Computer study", "30 min"}));
    EXPECT_EQ(view.figures[4], (ReplayFigure{"No input, unconfirmed", "0 s"}));
    EXPECT_EQ(view.focusScore, "83%");
    EXPECT_EQ(view.focusScoreNote, "100% score coverage");
    EXPECT_THAT(view.versionText, HasSubstr("Calculation v1"));
    EXPECT_THAT(view.versionText, HasSubstr("never recomputed"));
    EXPECT_THAT(view.reclassifyRefusal, HasSubstr("first calculation method"));
    EXPECT_THAT(view.relabelRefusal, HasSubstr("before confirmed off-Mac study existed"));
    // Its rows still show what was recorded.
    EXPECT_THAT(names(view.rows), ElementsAre("Editor", "No input"));
}

TEST(ReplayVersionText, EachMethodIsExplainedInWords) {
    StudySession session = finishedSession({});
    struct Case {
        std::optional<long long> stored;
        const char* expectedPart;
    };
    for (const Case& c :
         {Case{std::nullopt, "before calculation versions existed"}, Case{1, "Calculation v1"},
          Case{2, "Calculation v2 reconciles overlapping activity"},
          Case{3, "Calculation v3 keeps the v2 computer focus score"},
          Case{9, "later version of Lumenote"}}) {
        session.calculationVersionStorage = c.stored;
        EXPECT_THAT(calculationVersionText(session), HasSubstr(c.expectedPart))
            << c.stored.value_or(0);
    }
}

TEST(ReplayVersionText, SecondMethodSessionsMayBeReclassifiedButNotRelabelled) {
    const ReplayView view = makeReplayView(
        finishedSession({appSegment(0, 600, "Editor", ActivityClassification::focused)},
                        recording::TrackingCalculationVersion::v2),
        LocalCalendar::utc());
    EXPECT_EQ(view.reclassifyRefusal, "");
    EXPECT_THAT(view.relabelRefusal, HasSubstr("before confirmed off-Mac study existed"));
}

}  // namespace
}  // namespace lumenote::ui::models
