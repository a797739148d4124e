// The Today page under Qt's offscreen platform over a history recorded by a
// scenario script: the day's figures and sessions, a click on a session
// opening it, the review card only while something waits, and the live card
// asking for the right command in each state.
#include "ui/today_page.hpp"

#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

#include "platform/fake/fake_platform.hpp"
#include "recording/unclassified_review_service.hpp"
#include "ui/accessibility.hpp"
#include "ui/design/card.hpp"
#include "ui/design/metric.hpp"
#include "ui/design/row.hpp"
#include "ui/models/receipt_test_sessions.hpp"
#include "ui/models/scripted_history.hpp"
#include "ui/offscreen_application.hpp"
#include "ui/screenshots.hpp"

namespace lumenote::ui {
namespace {

using models::testing::at;

class TodayPageTest : public ::testing::Test {
  protected:
    static void SetUpTestSuite() { lumenote::testing::ensureOffscreenApplication(); }

    void SetUp() override {
        rules_ = std::make_unique<classification::ClassificationRules>(
            machine_.rulesFor(history_.store()));
        ASSERT_TRUE(rules_->load().empty());
        review_ = std::make_unique<recording::UnclassifiedReviewService>(history_.store(), *rules_);
        page_ = std::make_unique<TodayPage>(
            history_.store(), *review_, LocalCalendar::utc(), [this] { return now_; },
            [] { return 60LL; });
        page_->resize(900, 760);
        page_->show();
    }

    template <typename Widget>
    Widget* child(const char* name) {
        return page_->findChild<Widget*>(QString::fromLatin1(name));
    }

    models::testing::ScriptedHistory history_{"two_days_of_study.jsonl",
                                              at("2026-11-23T09:00:00Z")};
    Date now_ = at("2026-11-23T18:00:00Z");
    platform::fake::FakeMachine machine_;
    std::unique_ptr<classification::ClassificationRules> rules_;
    std::unique_ptr<recording::UnclassifiedReviewService> review_;
    std::unique_ptr<TodayPage> page_;
};

TEST_F(TodayPageTest, TheDaysFiguresAndSessionsOpenWhatWasClicked) {
    EXPECT_EQ(child<design::Metric>("todayStudied")->value(), "30 min");
    EXPECT_EQ(child<design::Metric>("todayStudied")->caption(), "of a 1 h 00 min daily goal");
    EXPECT_EQ(child<design::Metric>("todayFocus")->value(), "80%");
    const auto rows = page_->findChildren<design::Row*>("todaySession");
    ASSERT_EQ(rows.size(), 2);
    QSignalSpy opened(page_.get(), &TodayPage::sessionOpened);
    rows[1]->setFocus();
    QTest::keyClick(rows[1], Qt::Key_Return);
    ASSERT_EQ(opened.count(), 1);
    EXPECT_EQ(opened[0][0].toString().toStdString(), page_->view().sessions[1].id.upperString());
    lumenote::testing::saveScreenshots(*page_, "today");
    const QStringList unnamed = lumenote::testing::unnamedKeyboardControls(*page_);
    EXPECT_TRUE(unnamed.isEmpty()) << unnamed.join(", ").toStdString();

    // A day without sessions says so instead of a zero score.
    now_ = at("2026-11-25T10:00:00Z");
    page_->reload();
    EXPECT_TRUE(page_->findChildren<design::Row*>("todaySession").isEmpty());
    EXPECT_FALSE(child<design::Metric>("todayFocus")->isAvailable());
}

TEST_F(TodayPageTest, TheReviewCardShowsOnlyWhileSomethingWaits) {
    // Notes ran without a rule on Monday.
    auto* card = child<design::Card>("todayReviewCard");
    EXPECT_TRUE(card->isVisible());
    QSignalSpy asked(page_.get(), &TodayPage::reviewRequested);
    QTest::mouseClick(child<QPushButton>("todayReview"), Qt::LeftButton);
    EXPECT_EQ(asked.count(), 1);

    const auto groups = review_->groups();
    ASSERT_TRUE(groups.ok());
    ASSERT_EQ((*groups)->size(), 1u);
    const recording::UnclassifiedActivityGroup notes = (*groups)->front();
    ASSERT_TRUE(review_->classify(notes, classification::ActivityClassification::neutral).ok());
    page_->reload();
    EXPECT_FALSE(card->isVisible());
}

TEST_F(TodayPageTest, TheLiveCardAsksForTheCommandOfItsState) {
    EXPECT_TRUE(child<QPushButton>("todayStart")->isVisible());
    EXPECT_FALSE(child<QPushButton>("todayEnd")->isVisible());
    QSignalSpy start(page_.get(), &TodayPage::newSessionRequested);
    QTest::mouseClick(child<QPushButton>("todayStart"), Qt::LeftButton);
    EXPECT_EQ(start.count(), 1);

    shell::LiveSessionPanel live;
    live.subject = "Organic chemistry";
    live.elapsedText = "12:34";
    live.activityText = "Text Editor";
    live.classification = classification::ActivityClassification::focused;
    live.pauseTitle = "Pause";
    live.awayTitle = "Study away from Mac";
    page_->showLiveSession(live);
    EXPECT_FALSE(child<QPushButton>("todayStart")->isVisible());
    QSignalSpy commands(page_.get(), &TodayPage::commandRequested);
    QTest::mouseClick(child<QPushButton>("todayAway"), Qt::LeftButton);
    live.away = true;
    live.awayTitle = "Return to Computer Study";
    page_->showLiveSession(live);
    QTest::mouseClick(child<QPushButton>("todayAway"), Qt::LeftButton);
    QTest::mouseClick(child<QPushButton>("todayEnd"), Qt::LeftButton);
    ASSERT_EQ(commands.count(), 3);
    EXPECT_EQ(commands[0][0].value<shell::AppCommand>(), shell::AppCommand::startPassiveStudy);
    EXPECT_EQ(commands[1][0].value<shell::AppCommand>(), shell::AppCommand::returnToComputerStudy);
    EXPECT_EQ(commands[2][0].value<shell::AppCommand>(), shell::AppCommand::endSession);
    lumenote::testing::saveScreenshots(*page_, "today-live");
    const QStringList unnamed = lumenote::testing::unnamedKeyboardControls(*page_);
    EXPECT_TRUE(unnamed.isEmpty()) << unnamed.join(", ").toStdString();
}

}  // namespace
}  // namespace lumenote::ui
