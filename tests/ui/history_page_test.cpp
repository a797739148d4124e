// The History page under Qt's offscreen platform over a real store: deleting
// two selected sessions and pressing Undo within ten seconds brings them
// back; the offer ends once its ten seconds have passed on the history's
// clock; the search filters once typing pauses.
#include "ui/history_page.hpp"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

#include "ui/accessibility.hpp"
#include "ui/offscreen_application.hpp"

#include "platform/fake/fake_platform.hpp"
#include "settings/in_memory_defaults_domain.hpp"
#include "settings/preferences_store.hpp"
#include "settings/recording_preferences_adapter.hpp"
#include "store/sqlite_recording_store.hpp"
#include "support/temporary_home.hpp"
#include "ui/appearance.hpp"
#include "ui/history_list_model.hpp"

namespace lumenote::ui {
namespace {

class HistoryPageTest : public ::testing::Test {
  protected:
    static void SetUpTestSuite() { lumenote::testing::ensureOffscreenApplication(); }

    void SetUp() override {
        auto opened = store::SqliteRecordingStore::openInMemory();
        ASSERT_TRUE(opened.ok());
        store_ = std::move(*opened);
        recording::StoreChangeSet changes;
        for (const auto& [number, subject] : std::vector<std::pair<int, std::string>>{
                 {1, "Chemistry"}, {2, "Biology"}, {3, "Chemistry lab"}}) {
            Uuid::Bytes bytes{};
            bytes[15] = static_cast<std::uint8_t>(number);
            const Date start{number * 3600.0};
            recording::StudySession session(Uuid(bytes), subject, "", 0.0, start);
            session.timerDuration = 1200.0;
            session.endDate = start.addingSeconds(1200.0);
            session.setStatus(recording::StudySessionStatus::completed);
            changes.sessions.push_back(session);
        }
        ASSERT_TRUE(store_->apply(changes).ok());
        rules_ = std::make_unique<classification::ClassificationRules>(machine_.rulesFor(*store_));
        history_ = std::make_unique<recording::SessionHistory>(
            machine_.historyDependencies(*store_, *rules_, recordingPreferences_));
        page_ = std::make_unique<HistoryPage>(*store_, *store_, *history_, LocalCalendar::utc(), 1,
                                              [this] { return machine_.clock.wallNow(); });
        page_->resize(900, 600);
        page_->show();
    }

    QStringList subjects() {
        QStringList listed;
        HistoryListModel& model = page_->model();
        for (int row = 0; row < model.rowCount(); ++row) {
            const QModelIndex index = model.index(row);
            if (!index.data(HistoryListModel::isHeadingRole).toBool()) {
                listed.append(index.data(HistoryListModel::subjectRole).toString());
            }
        }
        return listed;
    }

    void selectRows(std::initializer_list<int> rows) {
        QItemSelectionModel& selection = *page_->list().selectionModel();
        selection.clearSelection();
        for (int row : rows) {
            selection.select(page_->model().index(row), QItemSelectionModel::Select);
        }
    }

    QPushButton* button(const char* name) { return page_->findChild<QPushButton*>(name); }

    platform::fake::FakeMachine machine_;
    settings::InMemoryDefaultsDomain defaults_;
    settings::PreferencesStore preferences_{defaults_};
    settings::PreferencesForRecording recordingPreferences_{preferences_};
    std::unique_ptr<store::SqliteRecordingStore> store_;
    std::unique_ptr<classification::ClassificationRules> rules_;
    std::unique_ptr<recording::SessionHistory> history_;
    std::unique_ptr<HistoryPage> page_;
    lumenote::testing::TemporaryHome home_;
};

TEST_F(HistoryPageTest, DeletingTwoSessionsThenUndoBringsThemBack) {
    ASSERT_EQ(subjects(), (QStringList{"Chemistry lab", "Biology", "Chemistry"}));
    QPushButton* remove = button("historyDelete");
    EXPECT_FALSE(remove->isEnabled());
    // Row 0 is the week's heading: selecting it with two sessions deletes two.
    selectRows({0, 1, 3});
    EXPECT_TRUE(remove->isEnabled());
    QTest::mouseClick(remove, Qt::LeftButton);
    EXPECT_EQ(subjects(), (QStringList{"Biology"}));
    EXPECT_EQ(*store_->sessionCount(), 1u);
    QPushButton* undo = button("historyUndo");
    ASSERT_TRUE(undo->isVisible());

    machine_.clock.advance(9.5);
    QTest::mouseClick(undo, Qt::LeftButton);
    EXPECT_EQ(subjects(), (QStringList{"Chemistry lab", "Biology", "Chemistry"}));
    EXPECT_EQ(*store_->sessionCount(), 3u);
    EXPECT_FALSE(undo->isVisible());
}

TEST_F(HistoryPageTest, TheUndoOfferEndsAfterTenSeconds) {
    selectRows({2});
    QTest::keyClick(&page_->list(), Qt::Key_Delete);
    EXPECT_EQ(subjects(), (QStringList{"Chemistry lab", "Chemistry"}));
    QPushButton* undo = button("historyUndo");
    ASSERT_TRUE(undo->isVisible());
    machine_.clock.advance(10.5);
    // The page asks the history once a second while it shows the offer.
    QTRY_VERIFY_WITH_TIMEOUT(!undo->isVisible(), 3000);
    EXPECT_FALSE(history_->canUndoSessionDeletion());
    EXPECT_EQ(*store_->sessionCount(), 2u);
}

TEST_F(HistoryPageTest, SearchFiltersOnceTypingPauses) {
    auto* search = page_->findChild<QLineEdit*>("historySearch");
    QTest::keyClicks(search, "chem");
    QTRY_COMPARE_WITH_TIMEOUT(subjects(), (QStringList{"Chemistry lab", "Chemistry"}), 3000);
    QTest::keyClicks(search, "ical physics");
    auto* empty = page_->findChild<QLabel*>("historyEmpty");
    QTRY_VERIFY_WITH_TIMEOUT(empty->isVisible(), 3000);
    EXPECT_EQ(empty->text(), "No session matches the search and filters.");
    search->clear();
    QTRY_COMPARE_WITH_TIMEOUT(subjects().size(), 3, 3000);
}

TEST_F(HistoryPageTest, ExportsTheSelectionInStartOrderOrEverything) {
    const auto sessionsIn = [](const std::filesystem::path& file) {
        QFile opened(QString::fromStdString(file.string()));
        EXPECT_TRUE(opened.open(QIODevice::ReadOnly));
        QStringList subjects;
        for (const auto& session :
             QJsonDocument::fromJson(opened.readAll())["sessions"].toArray()) {
            subjects.append(session.toObject()["subject"].toString());
        }
        return subjects;
    };
    selectRows({1, 2});
    const portability::ExportRequest json{.format = portability::ExportFormat::json};
    EXPECT_EQ(page_->exportTo(home_.root() / "chosen.json", json, false), 2u);
    EXPECT_EQ(sessionsIn(home_.root() / "chosen.json"), (QStringList{"Biology", "Chemistry lab"}));
    EXPECT_EQ(page_->exportTo(home_.root() / "all.json", json, true), 3u);
    EXPECT_EQ(sessionsIn(home_.root() / "all.json").size(), 3);

    // A folder that does not exist: the sentence in the banner, no file.
    EXPECT_FALSE(page_->exportTo(home_.root() / "missing" / "x.json", json, true).has_value());
    auto* banner = page_->findChild<QLabel*>("historyBanner");
    EXPECT_TRUE(banner->isVisibleTo(page_.get()));
    EXPECT_FALSE(banner->text().isEmpty());
    EXPECT_FALSE(std::filesystem::exists(home_.root() / "missing"));
}

TEST_F(HistoryPageTest, ActivatingASessionOpensItAndAHeadingOpensNothing) {
    QSignalSpy opened(page_.get(), &HistoryPage::sessionOpened);
    Q_EMIT page_->list().activated(page_->model().index(0));
    EXPECT_EQ(opened.count(), 0);
    Q_EMIT page_->list().activated(page_->model().index(2));
    ASSERT_EQ(opened.count(), 1);
    EXPECT_EQ(opened.front().front().toString(),
              page_->model().index(2).data(HistoryListModel::sessionIdRole).toString());
}

// With LUMENOTE_SCREENSHOT_DIR set, the page is written there in light and
// dark for a person to look at.
TEST_F(HistoryPageTest, PaintsInLightAndDark) {
    const char* folder = std::getenv("LUMENOTE_SCREENSHOT_DIR");
    AppearanceController appearance;
    for (const auto& [mode, name] : {std::pair{settings::TallywiseAppearance::light, "light"},
                                     std::pair{settings::TallywiseAppearance::dark, "dark"}}) {
        appearance.apply(mode);
        QApplication::processEvents();
        page_->list().selectionModel()->select(page_->model().index(2),
                                               QItemSelectionModel::ClearAndSelect);
        const QImage image = page_->grab().toImage();
        EXPECT_EQ(image.size(), page_->size() * image.devicePixelRatio());
        const QStringList unnamed = lumenote::testing::unnamedKeyboardControls(*page_);
        EXPECT_TRUE(unnamed.isEmpty()) << unnamed.join(", ").toStdString();
        if (folder != nullptr) {
            QDir().mkpath(folder);
            EXPECT_TRUE(image.save(QDir(folder).filePath(
                QStringLiteral("history-page-%1.png").arg(QLatin1String(name)))));
        }
    }
    appearance.apply(settings::TallywiseAppearance::light);
}

}  // namespace
}  // namespace lumenote::ui
