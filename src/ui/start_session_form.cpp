#include "ui/start_session_form.hpp"
#include "ui/design/qt_text.hpp"

#include <QAbstractItemView>
#include <QBoxLayout>
#include <QButtonGroup>
#include <QComboBox>
#include <QCompleter>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QStringListModel>

namespace lumenote::ui {

namespace {

constexpr recording::StudySessionMode kModes[] = {recording::StudySessionMode::computerBased,
                                                  recording::StudySessionMode::mixedStudy,
                                                  recording::StudySessionMode::offlineBookStudy};

}  // namespace

QLabel* StartSessionForm::messageLabel() {
    auto* label = new QLabel(this);
    label->setWordWrap(true);
    label->setVisible(false);
    label->setStyleSheet(QStringLiteral("color: #c01c28;"));
    return label;
}

StartSessionForm::StartSessionForm(QWidget* parent)
    : QWidget(parent), subjects_(new QStringListModel(this)) {
    subject_ = new QLineEdit(this);
    subject_->setPlaceholderText(QStringLiteral("What are you studying?"));
    subject_->setAccessibleName(QStringLiteral("Subject"));
    auto* completer = new QCompleter(subjects_, this);
    completer->setCaseSensitivity(Qt::CaseInsensitive);
    completer->setFilterMode(Qt::MatchContains);
    subject_->setCompleter(completer);
    subjectMessage_ = messageLabel();

    goal_ = new QLineEdit(this);
    goal_->setPlaceholderText(QStringLiteral("Optional"));
    goal_->setAccessibleName(QStringLiteral("Goal"));
    goalMessage_ = messageLabel();

    timer_ = new QRadioButton(QStringLiteral("Timer"), this);
    openEnded_ = new QRadioButton(QStringLiteral("Open end"), this);
    auto* timing = new QButtonGroup(this);
    timing->addButton(timer_);
    timing->addButton(openEnded_);
    auto* timingRow = new QHBoxLayout;
    timingRow->addWidget(timer_);
    timingRow->addWidget(openEnded_);
    timingRow->addStretch();

    auto* durationRow = new QHBoxLayout;
    for (const int preset : shell::kDurationPresetsMinutes) {
        auto* button = new QPushButton(QStringLiteral("%1 min").arg(preset), this);
        button->setAccessibleName(QStringLiteral("%1 minutes").arg(preset));
        connect(button, &QPushButton::clicked, this, [this, preset] {
            minutes_->setText(QString::number(preset));
            timer_->setChecked(true);
            updateDurationControls();
        });
        presets_.push_back(button);
        durationRow->addWidget(button);
    }
    minutes_ = new QLineEdit(this);
    minutes_->setAccessibleName(QStringLiteral("Duration in minutes"));
    minutes_->setFixedWidth(56);
    minutes_->setAlignment(Qt::AlignRight);
    durationRow->addWidget(minutes_);
    durationRow->addWidget(new QLabel(QStringLiteral("min"), this));
    durationMessage_ = messageLabel();

    studyMode_ = new QComboBox(this);
    studyMode_->setAccessibleName(QStringLiteral("Study mode"));
    for (const recording::StudySessionMode mode : kModes) {
        studyMode_->addItem(qt(shell::studyModeTitle(mode)), static_cast<int>(mode));
    }

    formMessage_ = messageLabel();
    start_ = new QPushButton(QStringLiteral("Start Session"), this);
    // Names that tests and accessibility tools find the fields by.
    subject_->setObjectName(QStringLiteral("subject"));
    subjectMessage_->setObjectName(QStringLiteral("subjectMessage"));
    goal_->setObjectName(QStringLiteral("goal"));
    goalMessage_->setObjectName(QStringLiteral("goalMessage"));
    timer_->setObjectName(QStringLiteral("timer"));
    openEnded_->setObjectName(QStringLiteral("openEnded"));
    minutes_->setObjectName(QStringLiteral("duration"));
    durationMessage_->setObjectName(QStringLiteral("durationMessage"));
    studyMode_->setObjectName(QStringLiteral("studyMode"));
    formMessage_->setObjectName(QStringLiteral("formMessage"));
    start_->setObjectName(QStringLiteral("start"));
    start_->setDefault(true);
    start_->setAutoDefault(true);

    auto* form = new QFormLayout;
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    form->addRow(QStringLiteral("Subject"), subject_);
    form->addRow(QString(), subjectMessage_);
    form->addRow(QStringLiteral("Goal"), goal_);
    form->addRow(QString(), goalMessage_);
    form->addRow(QStringLiteral("Timing"), timingRow);
    form->addRow(QStringLiteral("Duration"), durationRow);
    form->addRow(QString(), durationMessage_);
    form->addRow(QStringLiteral("Study mode"), studyMode_);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(form);
    layout->addWidget(formMessage_);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(start_);
    layout->addLayout(buttons);

    connect(timer_, &QRadioButton::toggled, this, [this] { updateDurationControls(); });
    connect(start_, &QPushButton::clicked, this, &StartSessionForm::startRequested);
    for (QLineEdit* field : {subject_, goal_, minutes_}) {
        connect(field, &QLineEdit::returnPressed, this, [this] {
            // Return picks a completion first; a second Return starts.
            if (!subject_->completer()->popup()->isVisible()) {
                Q_EMIT startRequested();
            }
        });
    }
    connect(minutes_, &QLineEdit::textChanged, this, [this] { updateDurationControls(); });
}

void StartSessionForm::load(const shell::SessionStartForm& form,
                            const std::vector<std::string>& subjects) {
    QStringList list;
    for (const std::string& subject : subjects) {
        list.append(qt(subject));
    }
    subjects_->setStringList(list);
    subject_->setText(qt(form.subject));
    goal_->setText(qt(form.goal));
    minutes_->setText(qt(form.durationMinutes));
    (form.timingMode == recording::SessionTimingMode::timer ? timer_ : openEnded_)
        ->setChecked(true);
    studyMode_->setCurrentIndex(studyMode_->findData(static_cast<int>(form.studyMode)));
    clearMessages();
    updateDurationControls();
}

shell::SessionStartForm StartSessionForm::values() const {
    shell::SessionStartForm form;
    form.subject = subject_->text().toStdString();
    form.goal = goal_->text().toStdString();
    form.timingMode = timer_->isChecked() ? recording::SessionTimingMode::timer
                                          : recording::SessionTimingMode::openEnded;
    form.durationMinutes = minutes_->text().toStdString();
    form.studyMode = static_cast<recording::StudySessionMode>(studyMode_->currentData().toInt());
    return form;
}

void StartSessionForm::showRefusal(const shell::FormRefusal& refusal) {
    clearMessages();
    QLabel* label = formMessage_;
    QWidget* field = start_;
    switch (refusal.field) {
        case shell::FormField::subject:
            label = subjectMessage_;
            field = subject_;
            break;
        case shell::FormField::goal:
            label = goalMessage_;
            field = goal_;
            break;
        case shell::FormField::duration:
            label = durationMessage_;
            field = minutes_;
            break;
        case shell::FormField::wholeForm:
            break;
    }
    label->setText(qt(refusal.message));
    label->setVisible(true);
    field->setAccessibleDescription(label->text());
    field->setFocus();
}

void StartSessionForm::clearMessages() {
    for (QLabel* label : {subjectMessage_, goalMessage_, durationMessage_, formMessage_}) {
        label->clear();
        label->setVisible(false);
    }
    for (QWidget* field : std::initializer_list<QWidget*>{subject_, goal_, minutes_, start_}) {
        field->setAccessibleDescription(QString());
    }
}

void StartSessionForm::focusSubject() {
    subject_->setFocus();
    subject_->selectAll();
}

void StartSessionForm::updateDurationControls() {
    const bool timed = timer_->isChecked();
    minutes_->setEnabled(timed);
    for (std::size_t i = 0; i < presets_.size(); ++i) {
        const bool chosen = timed && minutes_->text().trimmed() ==
                                         QString::number(shell::kDurationPresetsMinutes[i]);
        presets_[i]->setEnabled(timed);
        presets_[i]->setCheckable(true);
        presets_[i]->setChecked(chosen);
    }
}

}  // namespace lumenote::ui
