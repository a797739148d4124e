#include "ui/insight_card_widget.hpp"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "ui/design/card.hpp"
#include "ui/design/qt_text.hpp"

namespace lumenote::ui {

namespace {

QLabel* wrapped(const QString& text, QWidget* parent, bool muted = false) {
    auto* label = new QLabel(text, parent);
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    if (muted) {
        label->setForegroundRole(QPalette::PlaceholderText);
    }
    return label;
}

}  // namespace

InsightCardWidget::InsightCardWidget(const models::InsightCard& card, QWidget* parent)
    : QWidget(parent), id_(qt(card.id)) {
    setObjectName(QStringLiteral("insightCard"));
    auto* frame = new design::Card(qt(card.title), qt(card.evidenceQuality), this);
    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->addWidget(frame);
    setAccessibleName(frame->accessibleName());
    QVBoxLayout* body = frame->bodyLayout();
    auto* statement = wrapped(qt(card.statement), frame);
    statement->setObjectName(QStringLiteral("insightStatement"));
    QFont font = statement->font();
    font.setPointSizeF(font.pointSizeF() * 1.05);
    statement->setFont(font);
    body->addWidget(statement);

    auto* evidence = new QGridLayout;
    evidence->setHorizontalSpacing(16);
    evidence->setVerticalSpacing(2);
    int row = 0;
    for (const models::EvidenceLine& line : card.evidence) {
        evidence->addWidget(wrapped(qt(line.label), frame, true), row, 0);
        auto* value = new QLabel(qt(line.value), frame);
        value->setTextInteractionFlags(Qt::TextSelectableByMouse);
        evidence->addWidget(value, row, 1, Qt::AlignRight);
        ++row;
    }
    evidence->setColumnStretch(0, 1);
    body->addLayout(evidence);
    body->addWidget(wrapped(qt(card.explanation), frame, true));

    // Cards side by side share a height: the space goes above the button,
    // so that each card's texts stay together at its top.
    body->addStretch(1);
    auto* actions = new QHBoxLayout;
    actions->addStretch(1);
    auto* dismiss = new QPushButton(QStringLiteral("Dismiss"), frame);
    dismiss->setObjectName(QStringLiteral("insightDismiss"));
    dismiss->setAccessibleName(QStringLiteral("Dismiss insight: ") + qt(card.title));
    actions->addWidget(dismiss);
    body->addLayout(actions);
    const QString id = id_;
    const QString revision = qt(card.evidenceRevision);
    connect(dismiss, &QPushButton::clicked, this,
            [this, id, revision] { Q_EMIT dismissRequested(id, revision); });
}

}  // namespace lumenote::ui
