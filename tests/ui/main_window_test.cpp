// The main window's sidebar: pages join it in their fixed order whatever the
// order they are added in, Ctrl+1 … choose by position among the pages
// present, an absent page cannot be shown, and closing only hides.
#include "ui/main_window.hpp"

#include <QLabel>
#include <QListWidget>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

#include "ui/offscreen_application.hpp"

namespace lumenote::ui {
namespace {

class MainWindowTest : public ::testing::Test {
  protected:
    static void SetUpTestSuite() { lumenote::testing::ensureOffscreenApplication(); }

    QStringList sidebarTitles() {
        QStringList titles;
        auto* sidebar = window_.findChild<QListWidget*>("sidebar");
        for (int row = 0; row < sidebar->count(); ++row) {
            titles.append(sidebar->item(row)->text());
        }
        return titles;
    }

    MainWindow window_;
};

TEST_F(MainWindowTest, PagesJoinTheSidebarInTheirOrder) {
    window_.addPage(MainPage::settings, new QLabel(QStringLiteral("settings")));
    window_.addPage(MainPage::history, new QLabel(QStringLiteral("history")));
    EXPECT_EQ(sidebarTitles(), (QStringList{"History", "Settings"}));
    // The first page added is shown until another is chosen.
    EXPECT_EQ(window_.currentPage(), MainPage::settings);
    EXPECT_EQ(window_.firstPage(), MainPage::history);
    EXPECT_FALSE(window_.showPage(MainPage::insights));
    EXPECT_EQ(window_.currentPage(), MainPage::settings);
    EXPECT_TRUE(window_.showPage(MainPage::history));
    EXPECT_EQ(window_.currentPage(), MainPage::history);
    EXPECT_EQ(window_.windowTitle(), "History — Lumenote");
}

TEST_F(MainWindowTest, ShortcutsChooseByPositionAndAskForANewSession) {
    window_.addPage(MainPage::history, new QLabel(QStringLiteral("history")));
    window_.addPage(MainPage::today, new QLabel(QStringLiteral("today")));
    window_.present();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window_));
    QTest::keyClick(&window_, Qt::Key_2, Qt::ControlModifier);
    EXPECT_EQ(window_.currentPage(), MainPage::history);
    QTest::keyClick(&window_, Qt::Key_1, Qt::ControlModifier);
    EXPECT_EQ(window_.currentPage(), MainPage::today);
    // No fifth page: nothing changes.
    QTest::keyClick(&window_, Qt::Key_5, Qt::ControlModifier);
    EXPECT_EQ(window_.currentPage(), MainPage::today);
    QSignalSpy newSession(&window_, &MainWindow::newSessionRequested);
    QTest::keyClick(&window_, Qt::Key_N, Qt::ControlModifier);
    EXPECT_EQ(newSession.count(), 1);
}

TEST_F(MainWindowTest, ClosingHidesTheWindowAndKeepsItsPage) {
    window_.addPage(MainPage::history, new QLabel(QStringLiteral("history")));
    window_.present();
    EXPECT_TRUE(window_.isVisible());
    window_.close();
    EXPECT_FALSE(window_.isVisible());
    window_.present();
    EXPECT_EQ(window_.currentPage(), MainPage::history);
}

}  // namespace
}  // namespace lumenote::ui

namespace lumenote::ui {
namespace {

TEST(MainWindowReviewTest, TheReviewIsAPageWithoutASidebarEntry) {
    lumenote::testing::ensureOffscreenApplication();
    MainWindow window;
    // A window holding only the review still has no sidebar entry to choose.
    window.addPage(MainPage::review, new QLabel(QStringLiteral("review")));
    auto* sidebar = window.findChild<QListWidget*>("sidebar");
    EXPECT_EQ(sidebar->count(), 0);
    EXPECT_EQ(window.firstPage(), std::nullopt);
    window.addPage(MainPage::today, new QLabel(QStringLiteral("today")));
    EXPECT_EQ(sidebar->count(), 1);

    EXPECT_TRUE(window.showPage(MainPage::review));
    EXPECT_EQ(window.currentPage(), MainPage::review);
    EXPECT_EQ(sidebar->currentRow(), -1);
    EXPECT_EQ(window.windowTitle(), "Review — Lumenote");
    window.present();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    QTest::keyClick(&window, Qt::Key_1, Qt::ControlModifier);
    EXPECT_EQ(window.currentPage(), MainPage::today);
}

}  // namespace
}  // namespace lumenote::ui

namespace lumenote::ui {
namespace {

TEST(MainWindowPageShownTest, EveryWayOfShowingAPageAnnouncesIt) {
    lumenote::testing::ensureOffscreenApplication();
    MainWindow window;
    window.addPage(MainPage::today, new QLabel(QStringLiteral("today")));
    window.addPage(MainPage::replay, new QLabel(QStringLiteral("replay")));
    window.addPage(MainPage::review, new QLabel(QStringLiteral("review")));
    QSignalSpy shown(&window, &MainWindow::pageShown);
    window.present();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    QTest::keyClick(&window, Qt::Key_2, Qt::ControlModifier);
    ASSERT_TRUE(window.showPage(MainPage::replay));
    ASSERT_TRUE(window.showPage(MainPage::review));
    ASSERT_EQ(shown.count(), 3);
    EXPECT_EQ(shown[0][0].value<MainPage>(), MainPage::replay);
    // Shown again while in view: announced again, so the page can refresh.
    EXPECT_EQ(shown[1][0].value<MainPage>(), MainPage::replay);
    EXPECT_EQ(shown[2][0].value<MainPage>(), MainPage::review);
}

}  // namespace
}  // namespace lumenote::ui
