// The questions as a person meets them: the no-input question's answers and
// what closing it means, the quit question's choices in their order with the
// answer that loses nothing as its default, and the start-up failure window.
#include "ui/questions.hpp"

#include <gtest/gtest.h>

#include <stdlib.h>
#include "ui/offscreen_application.hpp"

#include <QApplication>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>

#include "ui/startup_failure_window.hpp"

namespace lumenote::ui {
namespace {

using Answer = recording::SessionManager::NoInputPromptAnswer;

class QuestionsTest : public ::testing::Test {
  protected:
    static void SetUpTestSuite() { lumenote::testing::ensureOffscreenApplication(); }

    static recording::NoInputClassificationPrompt prompt(double seconds) {
        recording::NoInputClassificationPrompt made;
        made.id = Uuid::generate();
        made.sessionID = Uuid::generate();
        made.startDate = Date{1000.0};
        made.endDate = Date{1000.0 + seconds};
        made.timerDurationAtStartDate = 600.0;
        return made;
    }

    static QStringList buttonTitles(const QWidget& widget) {
        QStringList titles;
        for (const QPushButton* button : widget.findChildren<QPushButton*>()) {
            titles.append(button->text());
        }
        return titles;
    }

    static QPushButton* button(const QWidget& widget, const QString& title) {
        for (QPushButton* candidate : widget.findChildren<QPushButton*>()) {
            if (candidate->text() == title) {
                return candidate;
            }
        }
        ADD_FAILURE() << "no button " << title.toStdString();
        return nullptr;
    }
};

TEST_F(QuestionsTest, NoInputQuestionOffersEndingThereOnlyForALongRun) {
    NoInputQuestion shortRun(prompt(600.0), LocalCalendar::utc());
    EXPECT_EQ(buttonTitles(shortRun),
              (QStringList{"Studying away from Mac", "Break", "Leave Unconfirmed"}));
    NoInputQuestion longRun(prompt(3000.0), LocalCalendar::utc());
    EXPECT_EQ(buttonTitles(longRun), (QStringList{"End the Session There", "Studying away from Mac",
                                                  "Break", "Leave Unconfirmed"}));
    // The answer that changes nothing is the default.
    EXPECT_TRUE(button(longRun, "Leave Unconfirmed")->isDefault());
}

TEST_F(QuestionsTest, EachAnswerIsToldOnceAndClosingLeavesTheTimeUnconfirmed) {
    std::vector<Answer> told;
    {
        NoInputQuestion question(prompt(600.0), LocalCalendar::utc());
        QObject::connect(&question, &NoInputQuestion::answered,
                         [&](Answer answer) { told.push_back(answer); });
        button(question, "Break")->click();
        question.reject();  // closing after an answer tells nothing more
    }
    {
        NoInputQuestion question(prompt(600.0), LocalCalendar::utc());
        QObject::connect(&question, &NoInputQuestion::answered,
                         [&](Answer answer) { told.push_back(answer); });
        question.show();
        question.reject();
    }
    EXPECT_EQ(told, (std::vector<Answer>{Answer::confirmedBreak, Answer::leaveUnconfirmed}));
}

TEST_F(QuestionsTest, QuitQuestionOffersItsChoicesInOrderAndKeepsRunningByDefault) {
    auto box = makeQuitQuestion();
    EXPECT_EQ(box->text(), "A study session is active");
    EXPECT_EQ(box->informativeText(),
              "Choose how Lumenote should handle the active session before quitting.");
    QStringList titles;
    for (QAbstractButton* candidate : box->buttons()) {
        titles.append(candidate->text());
    }
    EXPECT_EQ(titles, (QStringList{"End Session and Quit", "Keep Lumenote Running",
                                   "Quit and Mark Session Interrupted"}));
    EXPECT_EQ(box->defaultButton()->text(), "Keep Lumenote Running");
    // Closing the question (Escape) keeps Lumenote running.
    EXPECT_EQ(box->escapeButton()->text(), "Keep Lumenote Running");
    EXPECT_EQ(quitChoiceOf(*box), shell::QuitChoice::keepRunning);
    button(*box, "Quit and Mark Session Interrupted")->click();
    EXPECT_EQ(quitChoiceOf(*box), shell::QuitChoice::quitAndMarkInterrupted);
}

TEST_F(QuestionsTest, TheFailureWindowSaysWhyAndOffersOnlyQuit) {
    const QString reason =
        "Local storage could not be opened (disk I/O error). No study activity was recorded.";
    StartupFailureWindow window(reason);
    EXPECT_EQ(window.windowTitle(), "Lumenote could not start");
    bool shown = false;
    for (const QLabel* label : window.findChildren<QLabel*>()) {
        shown = shown || label->text() == reason;
    }
    EXPECT_TRUE(shown);
    EXPECT_EQ(buttonTitles(window), QStringList{"Quit"});
}

}  // namespace
}  // namespace lumenote::ui
