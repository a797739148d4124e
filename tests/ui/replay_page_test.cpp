// The Replay page under Qt's offscreen platform over a real SQLite store:
// a class chosen for this session only changes that session's figures and
// writes no rule, "Always" writes the rule; relabelling time without input
// and pressing Undo restores the figures; a first-method session refuses a
// change of its own figures; notes, the export and the receipt reach disk.
#include "ui/replay_page.hpp"

#include <QAction>
#include <QApplication>
#include <QDateTimeEdit>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <QTreeView>

#include <gtest/gtest.h>

#include "ui/accessibility.hpp"
#include "ui/offscreen_application.hpp"

#include "platform/fake/fake_platform.hpp"
#include "recording/session_messages.hpp"
#include "settings/in_memory_defaults_domain.hpp"
#include "settings/preferences_store.hpp"
#include "settings/recording_preferences_adapter.hpp"
#include "store/sqlite_recording_store.hpp"
#include "support/temporary_home.hpp"
#include "ui/appearance.hpp"
#include "ui/design/metric.hpp"
#include "ui/models/receipt_test_sessions.hpp"
#include "ui/replay_relabel_dialog.hpp"
#include "ui/replay_rows_model.hpp"
#include "ui/replay_totals_card.hpp"

namespace lumenote::ui {
namespace {

using classification::ActivityClassification;
using models::testing::appSegment;
using models::testing::finishedSession;
using models::testing::siteSegment;
using recording::StudySession;

// An hour: the editor (Focused), two pages in Firefox (Distracting, then
// Neutral), ten minutes without input, the editor again.
StudySession studiedHour(
    recording::TrackingCalculationVersion version = recording::TrackingCalculationVersion::v3) {
    return finishedSession(
        {appSegment(0, 1200, "Editor", ActivityClassification::focused),
         siteSegment(1200, 300, "video.example", ActivityClassification::distracting),
         siteSegment(1500, 300, "docs.example", ActivityClassification::neutral),
         appSegment(1800, 600, "Editor", ActivityClassification::focused, true),
         appSegment(2400, 1200, "Editor", ActivityClassification::focused)},
        version);
}

// Writes `widget` as NAME.png into LUMENOTE_SCREENSHOT_DIR when it is set.
void writeScreenshot(QWidget& widget, const char* name) {
    QApplication::processEvents();
    const QImage image = widget.grab().toImage();
    EXPECT_FALSE(image.isNull());
    if (const char* folder = std::getenv("LUMENOTE_SCREENSHOT_DIR")) {
        QDir().mkpath(folder);
        EXPECT_TRUE(image.save(QDir(folder).filePath(QStringLiteral("%1.png").arg(name))));
    }
}

class ReplayPageTest : public ::testing::Test {
  protected:
    static void SetUpTestSuite() { lumenote::testing::ensureOffscreenApplication(); }

    void SetUp() override {
        auto opened = store::SqliteRecordingStore::open(home_.root() / "store.sqlite");
        ASSERT_TRUE(opened.ok());
        store_ = std::move(*opened);
        rules_ = std::make_unique<classification::ClassificationRules>(machine_.rulesFor(*store_));
        history_ = std::make_unique<recording::SessionHistory>(
            machine_.historyDependencies(*store_, *rules_, recordingPreferences_));
        page_ = std::make_unique<ReplayPage>(*store_, *store_, *history_, defaults_,
                                             LocalCalendar::utc(),
                                             [this] { return machine_.clock.wallNow(); });
        page_->resize(1000, 720);
        page_->show();
    }

    Uuid stored(StudySession session) {
        recording::StoreChangeSet changes;
        for (auto& segment : session.segments) {
            segment.session = session.id;
            changes.segments.push_back(segment);
        }
        StudySession row = session;
        row.segments.clear();
        changes.sessions.push_back(row);
        EXPECT_TRUE(store_->apply(changes).ok());
        return session.id;
    }

    StudySession load(const Uuid& id) {
        auto loaded = store_->loadSession(id);
        EXPECT_TRUE(loaded.ok() && loaded->has_value());
        return **loaded;
    }

    // Selects the row at `row` (under the top-level row `parent`, if given).
    void select(int row, int parent = -1) {
        QTreeView& tree = page_->rows();
        const QModelIndex under = parent >= 0 ? tree.model()->index(parent, 0) : QModelIndex();
        tree.setCurrentIndex(tree.model()->index(row, 0, under));
    }

    QAction* classAction(const char* name) {
        auto* action = page_->findChild<QAction*>(name);
        EXPECT_NE(action, nullptr) << name;
        return action;
    }

    QPushButton* button(const char* name) { return page_->findChild<QPushButton*>(name); }

    platform::fake::FakeMachine machine_;
    settings::InMemoryDefaultsDomain defaults_;
    settings::PreferencesStore preferences_{defaults_};
    settings::PreferencesForRecording recordingPreferences_{preferences_};
    lumenote::testing::TemporaryHome home_;
    std::unique_ptr<store::SqliteRecordingStore> store_;
    std::unique_ptr<classification::ClassificationRules> rules_;
    std::unique_ptr<recording::SessionHistory> history_;
    std::unique_ptr<ReplayPage> page_;
};

TEST_F(ReplayPageTest, ThisSessionOnlyChangesThatSessionsFiguresAndWritesNoRule) {
    const Uuid shown = stored(studiedHour());
    const Uuid other = stored(studiedHour());
    ASSERT_TRUE(page_->showSession(shown));
    EXPECT_EQ(page_->totals().focusScoreText(), "89%");  // 2400 / (2400 + 300)

    select(0, 1);  // video.example under Firefox
    QAction* focused = classAction("replayClass.thisSession.focused");
    ASSERT_TRUE(focused->isEnabled());
    focused->trigger();

    EXPECT_EQ(page_->bannerText(), "");
    const StudySession changed = load(shown);
    EXPECT_DOUBLE_EQ(changed.focusedDuration, 2700.0);
    EXPECT_DOUBLE_EQ(changed.distractedDuration, 0.0);
    EXPECT_EQ(changed.segments[1].classification(), ActivityClassification::focused);
    EXPECT_EQ(page_->totals().focusScoreText(), "100%");
    EXPECT_EQ(page_->view()->rows[1].children[0].chipText, "Focused");
    EXPECT_TRUE(store_->websiteClassifications()->empty());
    EXPECT_TRUE(store_->appClassifications()->empty());
    EXPECT_DOUBLE_EQ(load(other).distractedDuration, 300.0);
}

TEST_F(ReplayPageTest, AlwaysWritesTheRuleAndReachesTheShownSession) {
    const Uuid shown = stored(studiedHour());
    const Uuid other = stored(studiedHour());
    ASSERT_TRUE(page_->showSession(shown));
    select(0);  // the editor
    classAction("replayClass.always.neutral")->trigger();

    const auto apps = store_->appClassifications();
    ASSERT_EQ(apps->size(), 1u);
    EXPECT_EQ(apps->front().bundleIdentifier, "org.example.Editor");
    EXPECT_EQ(apps->front().classification(), ActivityClassification::neutral);
    EXPECT_DOUBLE_EQ(load(shown).focusedDuration, 0.0);
    EXPECT_DOUBLE_EQ(load(shown).neutralDuration, 2700.0);
    // Other stored sessions keep the class they were recorded with.
    EXPECT_DOUBLE_EQ(load(other).focusedDuration, 2400.0);
}

TEST_F(ReplayPageTest, AFirstMethodSessionKeepsItsFiguresButMayStillWriteARule) {
    StudySession old = studiedHour(recording::TrackingCalculationVersion::v1);
    old.focusedDuration = 1000.0;  // as it was shown when recorded
    const Uuid id = stored(old);
    ASSERT_TRUE(page_->showSession(id));
    select(0);
    EXPECT_FALSE(classAction("replayClass.thisSession.distracting")->isEnabled());
    EXPECT_TRUE(page_->findChild<QLabel*>("replayRowsNote")->isVisible());
    EXPECT_FALSE(page_->changeSelectedClass(ActivityClassification::distracting,
                                            ReplayPage::ClassReach::thisSessionOnly));
    EXPECT_EQ(
        page_->bannerText().toStdString(),
        recording::sessionFailureMessage(recording::SessionFailure::reclassifyFirstMethodSession));

    classAction("replayClass.always.distracting")->trigger();
    EXPECT_EQ(page_->bannerText(), "");
    EXPECT_EQ(store_->appClassifications()->size(), 1u);
    EXPECT_DOUBLE_EQ(load(id).focusedDuration, 1000.0);
    EXPECT_DOUBLE_EQ(load(id).distractedDuration, old.distractedDuration);
    select(2);  // no input: a first-method session cannot be relabelled
    EXPECT_FALSE(button("replayRelabel")->isEnabled());
    select(0);
    page_->changeSelectedClass(ActivityClassification::distracting,
                               ReplayPage::ClassReach::thisSessionOnly);
    writeScreenshot(*page_, "replay-page-first-method-light");
}

TEST_F(ReplayPageTest, RelabellingNoInputTimeThenUndoRestoresTheFigures) {
    const Uuid id = stored(studiedHour());
    ASSERT_TRUE(page_->showSession(id));
    const QStringList before = page_->totals().figureTexts();
    select(2);
    ASSERT_EQ(page_->view()->rows[2].kind, models::ReplayRowKind::noInput);
    EXPECT_TRUE(button("replayRelabel")->isEnabled());
    EXPECT_FALSE(button("replayChangeClass")->isEnabled());

    const models::ReplayRow row = page_->view()->rows[2];
    ASSERT_TRUE(page_->relabel(row.start, row.end, recording::ConfirmedStudyState::passiveStudy));
    EXPECT_DOUBLE_EQ(load(id).passiveStudyDuration(), 600.0);
    EXPECT_TRUE(page_->totals().figureTexts().contains("Studying away from Mac: 10 min"));
    EXPECT_EQ(page_->view()->rows[2].chipText, "Studying away from Mac");
    EXPECT_EQ(page_->findChild<QLabel*>("replayUndoText")->text(),
              "10 min marked as Studying away from Mac. Undo is available.");
    QPushButton* undo = button("replayUndo");
    ASSERT_TRUE(undo->isVisible());

    QTest::mouseClick(undo, Qt::LeftButton);
    EXPECT_FALSE(undo->isVisible());
    EXPECT_DOUBLE_EQ(load(id).passiveStudyDuration(), 0.0);
    EXPECT_EQ(page_->totals().figureTexts(), before);
    EXPECT_EQ(page_->view()->rows[2].chipText, models::kUnconfirmedChipText);
}

TEST_F(ReplayPageTest, RelabellingRecordedActivityIsRefusedWithItsSentence) {
    const Uuid id = stored(studiedHour());
    ASSERT_TRUE(page_->showSession(id));
    const models::ReplayRow editor = page_->view()->rows[0];
    EXPECT_FALSE(
        page_->relabel(editor.start, editor.end, recording::ConfirmedStudyState::confirmedBreak));
    EXPECT_EQ(page_->bannerText().toStdString(),
              recording::sessionFailureMessage(recording::SessionFailure::notANoInputPeriod));
    EXPECT_FALSE(button("replayUndo")->isVisible());
    EXPECT_DOUBLE_EQ(load(id).confirmedBreakDuration(), 0.0);
}

TEST_F(ReplayPageTest, NotesExportAndReceiptReachTheDisk) {
    const Uuid id = stored(studiedHour());
    stored(studiedHour());
    ASSERT_TRUE(page_->showSession(id));
    auto* notes = page_->findChild<QPlainTextEdit*>("replayNotes");
    notes->setPlainText(QStringLiteral("Résumé: eigenvectors next"));
    QTest::mouseClick(button("replaySaveNotes"), Qt::LeftButton);
    EXPECT_EQ(load(id).notes(), std::optional<std::string>("Résumé: eigenvectors next"));
    EXPECT_EQ(page_->findChild<QLabel*>("replayNotesSaved")->text(), "Notes saved.");

    const auto json = home_.root() / "Lumenote Session.json";
    ASSERT_TRUE(page_->exportTo(json, {.format = portability::ExportFormat::json}));
    QFile file(QString::fromStdString(json.string()));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QJsonArray sessions = QJsonDocument::fromJson(file.readAll())["sessions"].toArray();
    ASSERT_EQ(sessions.size(), 1);
    EXPECT_EQ(sessions[0]["notes"].toString(), QStringLiteral("Résumé: eigenvectors next"));

    const auto receipt = home_.root() / "receipts" / "replay";
    ASSERT_TRUE(page_->saveReceipt(receipt));
    EXPECT_TRUE(std::filesystem::exists(home_.root() / "receipts" / "replay.png"));
    ASSERT_FALSE(page_->exportTo(home_.root(), {.format = portability::ExportFormat::json}));
    EXPECT_NE(page_->bannerText(), "");
}

TEST_F(ReplayPageTest, ASessionNoLongerStoredSaysSo) {
    EXPECT_FALSE(page_->showSession(Uuid::generate()));
    EXPECT_EQ(page_->bannerText().toStdString(),
              recording::sessionFailureMessage(recording::SessionFailure::sessionNotFound));
    EXPECT_FALSE(page_->view().has_value());
}

TEST_F(ReplayPageTest, WithoutEvidenceTheScoreSaysWhyInItsPlace) {
    StudySession away =
        finishedSession({appSegment(0, 3600, "Editor", ActivityClassification::focused, true)});
    away.subject = "Reading";
    ASSERT_TRUE(page_->showSession(stored(away)));
    auto* score = page_->findChild<design::Metric*>("replayFocusScore");
    ASSERT_NE(score, nullptr);
    EXPECT_FALSE(score->isAvailable());
    EXPECT_EQ(score->value(), "Not enough Focused + Distracted time to show a focus score.");
    EXPECT_FALSE(page_->findChild<QLabel*>("replayScoreNote")->isVisible());
    EXPECT_TRUE(page_->totals().figureTexts().contains("No input, unconfirmed: 1 h 00 min"));
    writeScreenshot(*page_, "replay-page-no-input-light");
}

TEST_F(ReplayPageTest, EveryControlTheKeyboardReachesHasAName) {
    ASSERT_TRUE(page_->showSession(stored(studiedHour())));
    select(2);
    ASSERT_TRUE(page_->relabel(page_->view()->rows[2].start, page_->view()->rows[2].end,
                               recording::ConfirmedStudyState::confirmedBreak));
    const QStringList unnamed = lumenote::testing::unnamedKeyboardControls(*page_);
    EXPECT_TRUE(unnamed.isEmpty()) << unnamed.join(", ").toStdString();
}

TEST_F(ReplayPageTest, TheRelabelDialogOffersTheWholeRowAndStaysInsideIt) {
    const Uuid id = stored(studiedHour());
    ASSERT_TRUE(page_->showSession(id));
    const models::ReplayRow row = page_->view()->rows[2];
    ReplayRelabelDialog dialog(row.start, row.end, page_.get());
    EXPECT_NEAR(dialog.from().secondsSince(row.start), 0.0, 0.001);
    EXPECT_NEAR(dialog.to().secondsSince(row.end), 0.0, 0.001);
    EXPECT_EQ(dialog.state(), recording::ConfirmedStudyState::passiveStudy);
    auto* to = dialog.findChildren<QDateTimeEdit*>().at(1);
    to->setDateTime(to->dateTime().addSecs(3600));
    EXPECT_NEAR(dialog.to().secondsSince(row.end), 0.0, 0.001);
    dialog.adjustSize();
    writeScreenshot(dialog, "replay-relabel-dialog-light");
}

// With LUMENOTE_SCREENSHOT_DIR set, the page is written there in light and
// dark for a person to look at.
TEST_F(ReplayPageTest, PaintsInLightAndDark) {
    StudySession session = studiedHour();
    session.subject = "Linear algebra";
    session.goal = "Eigenvalues, chapter 3";
    session.setNotes(std::string("Work through the exercises on diagonalisation."));
    const Uuid id = stored(session);
    ASSERT_TRUE(page_->showSession(id));
    select(2);
    const models::ReplayRow row = page_->view()->rows[2];
    ASSERT_TRUE(page_->relabel(row.start, row.start.addingSeconds(300),
                               recording::ConfirmedStudyState::passiveStudy));
    const char* folder = std::getenv("LUMENOTE_SCREENSHOT_DIR");
    AppearanceController appearance;
    for (const auto& [mode, name] : {std::pair{settings::TallywiseAppearance::light, "light"},
                                     std::pair{settings::TallywiseAppearance::dark, "dark"}}) {
        appearance.apply(mode);
        QApplication::processEvents();
        const QImage image = page_->grab().toImage();
        EXPECT_EQ(image.size(), page_->size() * image.devicePixelRatio());
        if (folder != nullptr) {
            QDir().mkpath(folder);
            EXPECT_TRUE(image.save(QDir(folder).filePath(
                QStringLiteral("replay-page-%1.png").arg(QLatin1String(name)))));
        }
    }
    appearance.apply(settings::TallywiseAppearance::light);
}

}  // namespace
}  // namespace lumenote::ui
