#include "ui/design/card.hpp"

#include <QLabel>
#include <QPainter>
#include <QVBoxLayout>

namespace lumenote::ui::design {

namespace {

constexpr qreal kRadius = 10.0;

}  // namespace

Card::Card(const QString& title, const QString& subtitle, QWidget* parent) : QFrame(parent) {
    title_ = new QLabel(this);
    title_->setObjectName(QStringLiteral("cardTitle"));
    QFont heading = title_->font();
    heading.setBold(true);
    heading.setPointSizeF(heading.pointSizeF() * 1.15);
    title_->setFont(heading);
    title_->setWordWrap(true);
    subtitle_ = new QLabel(this);
    subtitle_->setObjectName(QStringLiteral("cardSubtitle"));
    subtitle_->setWordWrap(true);
    // The palette's muted text: it follows light and dark by itself.
    subtitle_->setForegroundRole(QPalette::PlaceholderText);
    body_ = new QVBoxLayout;
    body_->setSpacing(8);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(16, 14, 16, 16);
    layout->setSpacing(4);
    layout->addWidget(title_);
    layout->addWidget(subtitle_);
    layout->addSpacing(6);
    layout->addLayout(body_);
    setTitle(title);
    setSubtitle(subtitle);
}

void Card::setTitle(const QString& title) {
    title_->setText(title);
    setAccessibleName(title);
}

void Card::setSubtitle(const QString& subtitle) {
    subtitle_->setText(subtitle);
    subtitle_->setVisible(!subtitle.isEmpty());
}

QString Card::title() const {
    return title_->text();
}
QString Card::subtitle() const {
    return subtitle_->text();
}

void Card::paintEvent(QPaintEvent*) {
    // Painted from the palette at every paint, so that a change of
    // appearance needs no restyling.
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(palette().color(QPalette::Mid), 1.0));
    painter.setBrush(palette().color(QPalette::Base));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), kRadius, kRadius);
}

}  // namespace lumenote::ui::design
