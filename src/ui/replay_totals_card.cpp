#include "ui/replay_totals_card.hpp"

#include <QGridLayout>
#include <QLabel>
#include <QVBoxLayout>

#include "ui/design/metric.hpp"
#include "ui/design/qt_text.hpp"

namespace lumenote::ui {

namespace {

// The card's inner width: its width less the card's side margins.
constexpr int kTextWidth = kReplayTotalsCardWidth - 32;

// Gives `widget` the height its content takes at the card's inner width.
void fitHeight(QWidget& widget) {
    widget.setFixedHeight(widget.hasHeightForWidth() ? widget.heightForWidth(kTextWidth)
                                                     : widget.sizeHint().height());
}

void setWrappedText(QLabel& label, const QString& text) {
    label.setText(text);
    fitHeight(label);
}

}  // namespace

ReplayTotalsCard::ReplayTotalsCard(QWidget* parent) : QWidget(parent) {
    setFixedWidth(kReplayTotalsCardWidth);
    // The card is as tall as its content, never squeezed: the notes below
    // take what room is left.
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
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
    // Without a score the metric says why in its place, muted, rather than
    // showing a figure that would mean nothing.
    if (view.focusScore) {
        score_->setValue(qt(*view.focusScore), QStringLiteral("focus score"));
        setWrappedText(*note_, qt(view.focusScoreNote));
    } else {
        score_->setValue({}, QStringLiteral("focus score"));
        score_->setUnavailable(qt(view.focusScoreNote));
        setWrappedText(*note_, {});
    }
    note_->setVisible(view.focusScore.has_value());
    fitHeight(*score_);
    // The view always has the same lines; rows are made once and kept.
    for (std::size_t line = 0; line < view.figures.size(); ++line) {
        const auto row = static_cast<int>(line);
        if (2 * line >= static_cast<std::size_t>(figureLabels_.size())) {
            auto* name = new QLabel(card_);
            auto* value = new QLabel(card_);
            value->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
            if (line == 0) {
                // Study time heads the column; the others are what it is
                // made of or what is not counted.
                QFont bold = name->font();
                bold.setBold(true);
                name->setFont(bold);
                value->setFont(bold);
            }
            figures_->addWidget(name, row, 0);
            figures_->addWidget(value, row, 1);
            figureLabels_ << name << value;
        }
        const models::ReplayFigure& figure = view.figures[line];
        figureLabels_[2 * row]->setText(qt(figure.name));
        figureLabels_[2 * row + 1]->setText(qt(figure.value));
        figureLabels_[2 * row + 1]->setAccessibleName(qt(figure.name + ": " + figure.value));
    }
    setWrappedText(*version_, qt(view.versionText));
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
