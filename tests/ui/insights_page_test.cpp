// The Insights page under Qt's offscreen platform over a real store and the
// real dismissal file in a temporary home: moving between weeks changes the
// figures and stops at the current week; dismissing a card removes it and
// stays dismissed in a page opened afresh; the weekly receipt is saved as a
// PNG of the receipt's size, and a destination that cannot be written says
// so in the banner.
#include "ui/insights_page.hpp"

#include <QApplication>
#include <QDir>
#include <QImage>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QTest>

#include <gtest/gtest.h>

#include "insights/file_insight_dismissal_repository.hpp"
#include "insights/insight_dismissal_store.hpp"
#include "settings/in_memory_defaults_domain.hpp"
#include "store/sqlite_recording_store.hpp"
#include "support/stored_sessions.hpp"
#include "support/temporary_home.hpp"
#include "ui/accessibility.hpp"
#include "ui/appearance.hpp"
#include "ui/design/metric.hpp"
#include "ui/design/year_calendar_view.hpp"
#include "ui/insight_card_widget.hpp"
#include "ui/offscreen_application.hpp"
#include "ui/receipts/receipt_painting.hpp"

namespace lumenote::ui {
namespace {

using lumenote::testing::SessionPlan;

Date at(const char* iso) {
    return parseIso8601(iso).value_or(Date{});
}

SessionPlan session(const char* iso, double focused, double distracted,
                    std::string subject = "Biology") {
    return {.start = at(iso),
            .subject = std::move(subject),
            .focusedRuns = {focused * 0.6, focused * 0.4},
            .distracted = distracted,
            .neutral = 300};
}

class InsightsPageTest : public ::testing::Test {
  protected:
    static void SetUpTestSuite() { lumenote::testing::ensureOffscreenApplication(); }

    void SetUp() override {
        auto opened = store::SqliteRecordingStore::open(home_.root() / "lumenote.sqlite");
        ASSERT_TRUE(opened.ok());
        store_ = std::move(*opened);
    }

    // Two weeks of study: four sessions on four days of the week of 23
    // November 2026 (the current one) and three in the week before.
    void fillHistory() {
        lumenote::testing::storeSessions(
            *store_, {session("2026-11-16T09:00:00+01:00", 1800, 600),
                      session("2026-11-18T09:00:00+01:00", 1200, 900, "Chemistry"),
                      session("2026-11-20T14:00:00+01:00", 2400, 300),
                      session("2026-11-23T09:00:00+01:00", 3000, 300),
                      session("2026-11-24T09:00:00+01:00", 2400, 300, "Chemistry"),
                      session("2026-11-24T15:00:00+01:00", 1800, 120, "Statistics"),
                      session("2026-11-25T09:00:00+01:00", 2700, 200),
                      session("2026-11-26T08:00:00+01:00", 1500, 100)});
    }

    std::unique_ptr<InsightsPage> openPage() {
        auto page = std::make_unique<InsightsPage>(*store_, *store_, dismissals_, defaults_,
                                                   calendar_, 1, [this] { return now_; });
        page->resize(1000, 1500);
        page->show();
        return page;
    }

    static QString text(InsightsPage& page, const char* name) {
        auto* label = page.findChild<QLabel*>(name);
        return label != nullptr ? label->text() : QString();
    }

    static QPushButton* button(InsightsPage& page, const char* name) {
        return page.findChild<QPushButton*>(name);
    }

    static QList<InsightCardWidget*> cards(InsightsPage& page) {
        return page.findChildren<InsightCardWidget*>();
    }

    lumenote::testing::TemporaryHome home_;
    LocalCalendar calendar_ = *LocalCalendar::named("Europe/Berlin");
    Date now_ = at("2026-11-26T18:00:00+01:00");
    std::unique_ptr<store::SqliteRecordingStore> store_;
    settings::InMemoryDefaultsDomain defaults_;
    insights::FileInsightDismissalRepository repository_{
        insights::FileInsightDismissalRepository::pathFor(home_.paths()), [this] { return now_; }};
    insights::InsightDismissalStore dismissals_{repository_, [this] { return now_; }};
};

TEST_F(InsightsPageTest, WeekNavigationChangesTheFiguresAndStopsAtThisWeek) {
    fillHistory();
    auto page = openPage();
    EXPECT_EQ(text(*page, "insightsWeekTitle"), "23 – 29 November 2026");
    EXPECT_FALSE(button(*page, "insightsNextWeek")->isEnabled());
    EXPECT_FALSE(button(*page, "insightsThisWeek")->isEnabled());
    EXPECT_EQ(page->view()->sessions.value, "5");

    QTest::mouseClick(button(*page, "insightsPreviousWeek"), Qt::LeftButton);
    EXPECT_EQ(text(*page, "insightsWeekTitle"), "16 – 22 November 2026");
    EXPECT_EQ(page->view()->sessions.value, "3");
    EXPECT_EQ(page->view()->studyTimePerDay.days[0].seconds, 1800 + 60 + 600 + 300);
    EXPECT_TRUE(button(*page, "insightsNextWeek")->isEnabled());
    // Three active days unlock this week too; its cards are its own.
    ASSERT_FALSE(cards(*page).isEmpty());
    EXPECT_TRUE(cards(*page).front()->insightId().endsWith("2026-11-16"));

    QTest::mouseClick(button(*page, "insightsPreviousWeek"), Qt::LeftButton);
    EXPECT_EQ(page->view()->sessions.value, "0");
    EXPECT_TRUE(page->view()->locked);
    EXPECT_TRUE(cards(*page).isEmpty());
    EXPECT_EQ(text(*page, "insightsDaysNeeded"),
              "Study on 3 more days this week to unlock insights.");

    QTest::mouseClick(button(*page, "insightsThisWeek"), Qt::LeftButton);
    EXPECT_EQ(text(*page, "insightsWeekTitle"), "23 – 29 November 2026");
    // Next never moves past the week that holds today.
    page->showNextWeek();
    EXPECT_EQ(text(*page, "insightsWeekTitle"), "23 – 29 November 2026");
}

TEST_F(InsightsPageTest, DismissingACardRemovesItAndItStaysDismissedAfterReload) {
    fillHistory();
    auto page = openPage();
    const QList<InsightCardWidget*> before = cards(*page);
    ASSERT_GE(before.size(), 2);
    const QString dismissed = before[1]->insightId();
    QTest::mouseClick(before[1]->findChild<QPushButton*>("insightDismiss"), Qt::LeftButton);

    const auto ids = [](InsightsPage& shown) {
        QStringList list;
        for (InsightCardWidget* card : cards(shown)) {
            list.append(card->insightId());
        }
        return list;
    };
    QTRY_COMPARE_WITH_TIMEOUT(ids(*page).size(), before.size() - 1, 3000);
    EXPECT_FALSE(ids(*page).contains(dismissed));

    // A page over a store that reads the file afresh shows the same.
    insights::FileInsightDismissalRepository repository(
        insights::FileInsightDismissalRepository::pathFor(home_.paths()), [this] { return now_; });
    insights::InsightDismissalStore reread(repository, [this] { return now_; });
    InsightsPage again(*store_, *store_, reread, defaults_, calendar_, 1, [this] { return now_; });
    EXPECT_EQ(ids(again), ids(*page));
    again.reload();
    EXPECT_FALSE(ids(again).contains(dismissed));
}

TEST_F(InsightsPageTest, SavesTheWeeklyReceiptAsAPngOfTheReceiptsSize) {
    fillHistory();
    auto page = openPage();
    const auto path = home_.root() / "receipts" / "week.png";
    ASSERT_TRUE(page->saveWeeklyReceipt(path, receipts::ReceiptFormat::png));
    const QImage image(QString::fromStdString(path.string()));
    EXPECT_EQ(image.size(), QSize(receipts::kReceiptImageWidth, receipts::kReceiptImageHeight));
    EXPECT_FALSE(page->findChild<QLabel*>("insightsBanner")->isVisible());

    // A folder in the file's place: nothing is written and the banner says why.
    const auto folder = home_.root() / "taken.png";
    std::filesystem::create_directories(folder);
    EXPECT_FALSE(page->saveWeeklyReceipt(folder, receipts::ReceiptFormat::png));
    auto* banner = page->findChild<QLabel*>("insightsBanner");
    EXPECT_TRUE(banner->isVisible());
    EXPECT_TRUE(banner->text().startsWith("The receipt could not be saved"))
        << banner->text().toStdString();
}

TEST_F(InsightsPageTest, TheYearCalendarIsReadDayByDayFromTheKeyboard) {
    fillHistory();
    auto page = openPage();
    auto* year = page->findChild<design::YearCalendarView*>("insightsYearCalendar");
    ASSERT_NE(year, nullptr);
    // End is today; Left steps a week back, Up a day back; Home is the first
    // day of the twelve months.
    const struct {
        Qt::Key key;
        const char* day;
    } steps[] = {{Qt::Key_End, "Thursday 26 November 2026: 32 min"},
                 {Qt::Key_Left, "Thursday 19 November 2026: no study"},
                 {Qt::Key_Up, "Wednesday 18 November 2026: 41 min"},
                 {Qt::Key_Home, "Thursday 27 November 2025: no study"},
                 {Qt::Key_Left, "Thursday 27 November 2025: no study"}};
    for (const auto& step : steps) {
        QTest::keyClick(year, step.key);
        EXPECT_EQ(year->currentDayText().toStdString(), step.day);
        EXPECT_EQ(year->accessibleDescription(), year->currentDayText());
    }
    EXPECT_TRUE(year->tableText().startsWith("Day\tStudy time\n"));
}

TEST_F(InsightsPageTest, AReadOnlyDismissalFileKeepsTheCardAndSaysWhy) {
    fillHistory();
    const auto file = insights::FileInsightDismissalRepository::pathFor(home_.paths());
    lumenote::testing::writeFile(file, R"({"formatVersion": 2, "records": []})");
    insights::InsightDismissalStore readOnly(repository_, [this] { return now_; });
    InsightsPage page(*store_, *store_, readOnly, defaults_, calendar_, 1, [this] { return now_; });
    const QString expected = QStringLiteral(
        "Insight dismissals use unsupported format version 2. The file was left unchanged.");
    EXPECT_EQ(text(page, "insightsBanner"), expected);
    const qsizetype shown = cards(page).size();
    ASSERT_GT(shown, 0);
    QTest::mouseClick(cards(page).front()->findChild<QPushButton*>("insightDismiss"),
                      Qt::LeftButton);
    QApplication::processEvents();
    EXPECT_EQ(cards(page).size(), shown);
    EXPECT_EQ(text(page, "insightsBanner"), expected);
    EXPECT_EQ(lumenote::testing::readFile(file), R"({"formatVersion": 2, "records": []})");
}

// A history that cannot be read: its sentence in the banner, no figures, and
// nothing to save.
TEST_F(InsightsPageTest, AnUnreadableHistoryShowsItsSentenceInTheBanner) {
    struct FailingReader final : recording::SessionHistoryReader {
        Result<void, StoreError> forEachSession(const recording::SessionWalkQuery&,
                                                const SessionVisitor&) override {
            return fail(StoreError{"disk I/O error", StoreErrorKind::other});
        }
        Result<void, StoreError> forEachSegment(const recording::SegmentWalkQuery&,
                                                const SegmentVisitor&) override {
            return fail(StoreError{"disk I/O error", StoreErrorKind::other});
        }
        Result<void, StoreError> forEachUnclassifiedActivityTally(const TallyVisitor&) override {
            return fail(StoreError{"disk I/O error", StoreErrorKind::other});
        }
    } reader;
    InsightsPage page(reader, *store_, dismissals_, defaults_, calendar_, 1,
                      [this] { return now_; });
    EXPECT_EQ(text(page, "insightsBanner"),
              "The study history could not be read (disk I/O error).");
    EXPECT_FALSE(page.view().has_value());
    EXPECT_FALSE(button(page, "insightsSaveReceipt")->isEnabled());
    EXPECT_FALSE(page.saveWeeklyReceipt(home_.root() / "week.png", receipts::ReceiptFormat::png));
    EXPECT_FALSE(std::filesystem::exists(home_.root() / "week.png"));
}

// Every control the keyboard reaches (Tab) has a name a screen reader can say.
TEST_F(InsightsPageTest, EveryControlHasAnAccessibleName) {
    fillHistory();
    auto page = openPage();
    const QStringList unnamed = lumenote::testing::unnamedKeyboardControls(*page);
    EXPECT_TRUE(unnamed.isEmpty()) << unnamed.join(", ").toStdString();
}

// With LUMENOTE_SCREENSHOT_DIR set, the page is written there in light and
// dark, with a filled history and with an empty one, for a person to look at.
TEST_F(InsightsPageTest, PaintsInLightAndDark) {
    const char* folder = std::getenv("LUMENOTE_SCREENSHOT_DIR");
    AppearanceController appearance;
    auto empty = openPage();
    fillHistory();
    auto filled = openPage();
    for (const auto& [mode, name] : {std::pair{settings::TallywiseAppearance::light, "light"},
                                     std::pair{settings::TallywiseAppearance::dark, "dark"}}) {
        appearance.apply(mode);
        QApplication::processEvents();
        for (const auto& [page, history] :
             {std::pair{filled.get(), "filled"}, std::pair{empty.get(), "empty"}}) {
            const QImage image = page->grab().toImage();
            EXPECT_EQ(image.size(), page->size() * image.devicePixelRatio());
            // The whole scrolled content too, down to the personal records.
            const QImage content = page->findChild<QScrollArea*>()->widget()->grab().toImage();
            if (folder != nullptr) {
                QDir().mkpath(folder);
                const QString stem = QStringLiteral("insights-page-%1-%2")
                                         .arg(QLatin1String(history), QLatin1String(name));
                EXPECT_TRUE(image.save(QDir(folder).filePath(stem + QStringLiteral(".png"))));
                EXPECT_TRUE(
                    content.save(QDir(folder).filePath(stem + QStringLiteral("-content.png"))));
            }
        }
    }
    appearance.apply(settings::TallywiseAppearance::light);
}

}  // namespace
}  // namespace lumenote::ui
