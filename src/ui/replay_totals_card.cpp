#include "ui/replay_totals_card.hpp"

#include <QGridLayout>
#include <QLabel>
#include <QVBoxLayout>

#include "ui/design/metric.hpp"
#include "ui/design/qt_text.hpp"

namespace lumenote::ui {

ReplayTotalsCard::ReplayTotalsCard(QWidget* parent) : QWidget(parent) {
    card_ = new design::Card(QStringLiteral("Totals"), {}, this);
    card_->setObjectName(QStringLiteral("replayTotals"));
    score_ = new design::Metric(card_);
    score_->setObjectName(QStringLiteral("replayFocusScore"));
    note_ = new QLabel(card_);
    note_->setObjectName(QStringLiteral("replayScoreNote"));
    note_->setWordWrap(true);
    note_->setForegroundRole(QPalette::PlaceholderText);
    figures_ = new QGridLayout;
    figures_->setHorizontalSpacing(16);
    figures_->setVerticalSpacing(4);
    figures_->setColumnStretch(0, 1);
    version_ = new QLabel(card_);
    version_->setObjectName(QStringLiteral("replayVersion"));
    version_->setWordWrap(true);
    version_->setForegroundRole(QPalette::PlaceholderText);

    QVBoxLayout* body = card_->bodyLayout();
    body->addWidget(score_);
    body->addWidget(note_);
    body->addSpacing(6);
    body->addLayout(figures_);
    body->addSpacing(6);
    body->addWidget(version_);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(card_);
}

void ReplayTotalsCard::show(const models::ReplayView& view) {
    score_->setValue(qt(view.focusScore), QStringLiteral("focus score"));
    note_->setText(qt(view.focusScoreNote));
    qDeleteAll(figureLabels_);
    figureLabels_.clear();
    int line = 0;
    for (const models::ReplayFigure& figure : view.figures) {
        auto* name = new QLabel(qt(figure.name), card_);
        auto* value = new QLabel(qt(figure.value), card_);
        value->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        if (line == 0) {
            // Study time heads the column; the others are what it is made of
            // or what is not counted.
            QFont bold = name->font();
            bold.setBold(true);
            name->setFont(bold);
            value->setFont(bold);
        }
        value->setAccessibleName(qt(figure.name + ": " + figure.value));
        figures_->addWidget(name, line, 0);
        figures_->addWidget(value, line, 1);
        figureLabels_ << name << value;
        ++line;
    }
    version_->setText(qt(view.versionText));
}

QStringList ReplayTotalsCard::figureTexts() const {
    QStringList texts;
    for (qsizetype i = 0; i + 1 < figureLabels_.size(); i += 2) {
        texts << figureLabels_[i]->text() + QStringLiteral(": ") + figureLabels_[i + 1]->text();
    }
    return texts;
}

QString ReplayTotalsCard::focusScoreText() const {
    return score_->value();
}

QString ReplayTotalsCard::versionText() const {
    return version_->text();
}

}  // namespace lumenote::ui
