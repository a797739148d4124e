// The questions the desktop asks: about time without input, about an
// unfinished session at start, and about an active session on quit. Each
// says what every answer does; closing one without an answer loses nothing.
#pragma once

#include <QDialog>

#include <optional>

#include "foundation/dates.hpp"
#include "recording/active_session_checkpoint.hpp"
#include "recording/no_input_prompt.hpp"
#include "recording/session_manager.hpp"
#include "shell/quit_decision.hpp"

class QMessageBox;

namespace lumenote::ui {

// "What were you doing?" with the run's times and the answers of the no-input
// rules (the end-there answer only for a run that may have been left
// running). Closing it leaves the time unconfirmed.
class NoInputQuestion final : public QDialog {
    Q_OBJECT

  public:
    NoInputQuestion(const recording::NoInputClassificationPrompt& prompt,
                    const LocalCalendar& calendar, QWidget* parent = nullptr);
    const recording::NoInputClassificationPrompt& prompt() const { return prompt_; }
    // Closing without an answer leaves the time unconfirmed.
    void reject() override;

  Q_SIGNALS:
    void answered(recording::SessionManager::NoInputPromptAnswer answer);

  private:
    void answer(recording::SessionManager::NoInputPromptAnswer answer);
    recording::NoInputClassificationPrompt prompt_;
    bool answered_ = false;
};

// The offer at start to continue an unfinished session from now or to end it
// as interrupted at its last confirmed boundary. Closing it asks again at the
// next start: nothing is decided.
class RecoveryQuestion final : public QDialog {
    Q_OBJECT

  public:
    RecoveryQuestion(const recording::ActiveSessionRecoverySummary& summary,
                     const std::string& subject, const LocalCalendar& calendar,
                     QWidget* parent = nullptr);

  Q_SIGNALS:
    void continueChosen();
    void endChosen();
};

// The quit question's three choices in their order; closing it keeps
// Lumenote running.
std::unique_ptr<QMessageBox> makeQuitQuestion(QWidget* parent = nullptr);
// The choice behind a button of the quit question; keep running for any
// other.
shell::QuitChoice quitChoiceOf(const QMessageBox& box);

}  // namespace lumenote::ui
