#include "ui/replay_relabel_dialog.hpp"

#include <cmath>

#include <QComboBox>
#include <QDateTimeEdit>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>

#include "recording/no_input_prompt.hpp"
#include "ui/design/qt_text.hpp"

namespace lumenote::ui {

namespace {

using recording::ConfirmedStudyState;

constexpr std::pair<std::string_view, std::optional<ConfirmedStudyState>> kStates[] = {
    {recording::kStudyingAwayFromMac, ConfirmedStudyState::passiveStudy},
    {recording::kBreakAnswer, ConfirmedStudyState::confirmedBreak},
    {"Unconfirmed", std::nullopt},
};

QDateTime qtDate(Date date) {
    return QDateTime::fromMSecsSinceEpoch(
        static_cast<qint64>(std::llround(date.unixSeconds() * 1000.0)));
}

Date dateOf(const QDateTime& time) {
    return Date::fromUnixSeconds(static_cast<double>(time.toMSecsSinceEpoch()) / 1000.0);
}

QDateTimeEdit* rangeEdit(Date value, Date start, Date end, const QString& name, QWidget* parent) {
    auto* edit = new QDateTimeEdit(qtDate(value), parent);
    edit->setDateTimeRange(qtDate(start), qtDate(end));
    edit->setDisplayFormat(QStringLiteral("HH:mm:ss"));
    edit->setAccessibleName(name);
    return edit;
}

}  // namespace

ReplayRelabelDialog::ReplayRelabelDialog(Date start, Date end, QWidget* parent) : QDialog(parent) {
    setWindowTitle(QStringLiteral("Relabel Time Without Input"));
    auto* explanation = new QLabel(
        QStringLiteral("Only time in which the computer recorded no keyboard or mouse input "
                       "changes; recorded activity in the range keeps its class."),
        this);
    explanation->setWordWrap(true);
    state_ = new QComboBox(this);
    state_->setAccessibleName(QStringLiteral("Label"));
    for (const auto& [word, state] : kStates) {
        state_->addItem(qt(word));
    }
    from_ = rangeEdit(start, start, end, QStringLiteral("From"), this);
    to_ = rangeEdit(end, start, end, QStringLiteral("To"), this);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
    buttons->addButton(QStringLiteral("Relabel"), QDialogButtonBox::AcceptRole);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* form = new QFormLayout(this);
    form->addRow(explanation);
    form->addRow(QStringLiteral("Label"), state_);
    form->addRow(QStringLiteral("From"), from_);
    form->addRow(QStringLiteral("To"), to_);
    form->addRow(buttons);
}

std::optional<recording::ConfirmedStudyState> ReplayRelabelDialog::state() const {
    return kStates[std::max(0, state_->currentIndex())].second;
}

Date ReplayRelabelDialog::from() const {
    return dateOf(from_->dateTime());
}

Date ReplayRelabelDialog::to() const {
    return dateOf(to_->dateTime());
}

}  // namespace lumenote::ui
