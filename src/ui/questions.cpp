#include "ui/questions.hpp"

#include <QBoxLayout>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>

#include "recording/session_figures.hpp"
#include "ui/design/qt_text.hpp"

namespace lumenote::ui {

namespace {

using Answer = recording::SessionManager::NoInputPromptAnswer;

QLabel* wrapped(const QString& text, QWidget* parent, bool bold = false) {
    auto* label = new QLabel(text, parent);
    label->setWordWrap(true);
    QFont font = label->font();
    font.setBold(bold);
    if (bold) {
        font.setPointSizeF(font.pointSizeF() * 1.2);
    }
    label->setFont(font);
    return label;
}

}  // namespace

NoInputQuestion::NoInputQuestion(const recording::NoInputClassificationPrompt& prompt,
                                 const LocalCalendar& calendar, QWidget* parent)
    : QDialog(parent), prompt_(prompt) {
    setWindowTitle(qt(recording::kNoInputSheetTitle));
    setMinimumWidth(420);
    auto* layout = new QVBoxLayout(this);
    layout->setSpacing(10);
    layout->addWidget(wrapped(qt(recording::kNoInputSheetTitle), this, true));
    layout->addWidget(wrapped(qt(recording::noInputPromptText(prompt, calendar)), this));
    if (recording::asksToEndSession(prompt)) {
        layout->addWidget(wrapped(qt(recording::kLeftRunningExplanation), this));
    }
    auto* buttons = new QHBoxLayout;
    const auto add = [&](std::string_view title, Answer answer, std::string_view help) {
        auto* button = new QPushButton(qt(title), this);
        button->setToolTip(qt(help));
        button->setAccessibleDescription(qt(help));
        connect(button, &QPushButton::clicked, this, [this, answer] { this->answer(answer); });
        buttons->addWidget(button);
        return button;
    };
    if (recording::asksToEndSession(prompt)) {
        add(recording::kEndSessionThereAnswer, Answer::endThere,
            "Ends the session when the input stopped; everything recorded is kept.");
    }
    add(recording::kStudyingAwayFromMac, Answer::passiveStudy,
        recording::kPassiveStudyStateDescription);
    add(recording::kBreakAnswer, Answer::confirmedBreak,
        recording::kConfirmedBreakStateDescription);
    QPushButton* leave = add(recording::kLeaveUnconfirmedAnswer, Answer::leaveUnconfirmed,
                             recording::kUnconfirmedNoInputStateDescription);
    // The answer that changes nothing is the default.
    leave->setDefault(true);
    layout->addLayout(buttons);
}

void NoInputQuestion::answer(Answer answer) {
    answered_ = true;
    Q_EMIT answered(answer);
    accept();
}

void NoInputQuestion::reject() {
    if (!answered_) {
        answered_ = true;
        Q_EMIT answered(Answer::leaveUnconfirmed);
    }
    QDialog::reject();
}

RecoveryQuestion::RecoveryQuestion(const recording::ActiveSessionRecoverySummary& summary,
                                   const std::string& subject, const LocalCalendar& calendar,
                                   QWidget* parent)
    : QDialog(parent) {
    setWindowTitle(QStringLiteral("Unfinished session"));
    setMinimumWidth(440);
    auto* layout = new QVBoxLayout(this);
    layout->setSpacing(10);
    layout->addWidget(wrapped(qt(recording::kRecoveryPromptTitle), this, true));
    layout->addWidget(
        wrapped(QStringLiteral("“%1”, last confirmed at %2 (%3 of %4).")
                    .arg(qt(subject),
                         qt(recording::shortLocalTime(summary.lastConfirmedActivityAt, calendar)),
                         qt(recording::clockDurationText(summary.confirmedDuration)),
                         qt(calendar.dayKey(summary.startTime))),
                this));
    layout->addWidget(wrapped(qt(recording::kRecoveryPromptDetail), this));
    auto* buttons = new QHBoxLayout;
    auto* end = new QPushButton(QStringLiteral("End as Interrupted"), this);
    auto* keepGoing = new QPushButton(qt(recording::kContinueFromNowAction), this);
    keepGoing->setDefault(true);
    connect(end, &QPushButton::clicked, this, [this] {
        Q_EMIT endChosen();
        accept();
    });
    connect(keepGoing, &QPushButton::clicked, this, [this] {
        Q_EMIT continueChosen();
        accept();
    });
    buttons->addStretch();
    buttons->addWidget(end);
    buttons->addWidget(keepGoing);
    layout->addLayout(buttons);
}

std::unique_ptr<QMessageBox> makeQuitQuestion(QWidget* parent) {
    auto box = std::make_unique<QMessageBox>(parent);
    box->setIcon(QMessageBox::Question);
    box->setWindowTitle(QStringLiteral("Lumenote"));
    box->setText(qt(shell::kQuitQuestionTitle));
    box->setInformativeText(qt(shell::kQuitQuestionExplanation));
    for (const shell::QuitChoice choice : shell::kQuitChoices) {
        // One role for all three, so that no desktop's button order moves them.
        QPushButton* button =
            box->addButton(qt(shell::quitChoiceTitle(choice)), QMessageBox::ActionRole);
        button->setProperty("lumenoteQuitChoice", static_cast<int>(choice));
        if (choice == shell::QuitChoice::keepRunning) {
            box->setDefaultButton(button);
            box->setEscapeButton(button);
        }
    }
    return box;
}

shell::QuitChoice quitChoiceOf(const QMessageBox& box) {
    const QAbstractButton* clicked = box.clickedButton();
    if (clicked == nullptr || !clicked->property("lumenoteQuitChoice").isValid()) {
        return shell::QuitChoice::keepRunning;
    }
    return static_cast<shell::QuitChoice>(clicked->property("lumenoteQuitChoice").toInt());
}

}  // namespace lumenote::ui
