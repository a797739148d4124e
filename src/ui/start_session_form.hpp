// The tray panel's "Start a study session" form: subject with completion,
// optional goal, timer or open end with duration presets and a custom value,
// study mode. A refusal is shown beside the field it is about.
#pragma once

#include <QWidget>

#include <string>
#include <vector>

#include "recording/session_manager.hpp"
#include "shell/session_start_form.hpp"

class QButtonGroup;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QStringListModel;

namespace lumenote::ui {

class StartSessionForm final : public QWidget {
    Q_OBJECT

  public:
    explicit StartSessionForm(QWidget* parent = nullptr);

    // Fills the fields and the subject completion; clears every message.
    void load(const shell::SessionStartForm& form, const std::vector<std::string>& subjects);
    shell::SessionStartForm values() const;
    // Shows `refusal` beside its field and moves the focus there.
    void showRefusal(const shell::FormRefusal& refusal);
    void clearMessages();
    void focusSubject();

  Q_SIGNALS:
    // The user asked to start with these values (the Start button or Return).
    void startRequested();

  private:
    void updateDurationControls();
    QLabel* messageLabel();

    QLineEdit* subject_;
    QLabel* subjectMessage_;
    QLineEdit* goal_;
    QLabel* goalMessage_;
    QRadioButton* timer_;
    QRadioButton* openEnded_;
    std::vector<QPushButton*> presets_;
    QLineEdit* minutes_;
    QLabel* durationMessage_;
    QComboBox* studyMode_;
    QLabel* formMessage_;
    QPushButton* start_;
    QStringListModel* subjects_;
};

}  // namespace lumenote::ui
