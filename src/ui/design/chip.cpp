#include "ui/design/chip.hpp"

#include <algorithm>

#include <QApplication>
#include <QEvent>
#include <QFontMetricsF>
#include <QPainter>

#include "shell/panel_model.hpp"
#include "ui/design/palette.hpp"
#include "ui/design/qt_text.hpp"

namespace lumenote::ui::design {

using classification::ActivityClassification;
using recording::StudySessionStatus;

QString statusChipText(StudySessionStatus status) {
    switch (status) {
        case StudySessionStatus::running:
            return QStringLiteral("Running");
        case StudySessionStatus::paused:
            return QStringLiteral("Paused");
        case StudySessionStatus::completed:
            return QStringLiteral("Completed");
        case StudySessionStatus::interrupted:
            return QStringLiteral("Interrupted");
    }
    return {};
}

Chip::Chip(QWidget* parent) : QLabel(parent) {
    setAlignment(Qt::AlignCenter);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    restyle();
}

void Chip::setClassification(ActivityClassification classification) {
    shown_ = classification;
    restyle();
}

void Chip::setStatus(StudySessionStatus status) {
    shown_ = status;
    restyle();
}

QColor Chip::background() const {
    // The application's palette, not the chip's own, which its style sheet
    // colours.
    const bool dark = isDark(QApplication::palette());
    if (const auto* classification = std::get_if<ActivityClassification>(&shown_)) {
        return classificationColor(*classification, dark);
    }
    return statusColor(std::get<StudySessionStatus>(shown_), dark);
}

void Chip::changeEvent(QEvent* event) {
    QLabel::changeEvent(event);
    // A change of appearance reaches the chip as one of these, depending on
    // whether the style changed with the palette; restyling is idempotent.
    if (event->type() == QEvent::ApplicationPaletteChange ||
        event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange) {
        restyle();
    }
}

void Chip::restyle() {
    const QColor foreground = chipTextColor(isDark(QApplication::palette()));
    const auto* classification = std::get_if<ActivityClassification>(&shown_);
    const QString word = classification != nullptr
                             ? qt(shell::classificationChipText(*classification))
                             : statusChipText(std::get<StudySessionStatus>(shown_));
    setText(word);
    setAccessibleName(word);
    const QString style = QStringLiteral(
                              "QLabel { background: %1; color: %2; border-radius: 9px; "
                              "padding: 2px 10px; font-weight: 600; }")
                              .arg(background().name(), foreground.name());
    // A style sheet may change the palette: set it only when it differs, so
    // that the palette change it causes ends here.
    if (styleSheet() != style) {
        setStyleSheet(style);
    }
}

namespace {

constexpr qreal kPaintedChipHeight = 20.0;
constexpr qreal kPaintedChipPadding = 20.0;

QFont paintedChipFont(const QFont& base) {
    QFont font = base;
    font.setWeight(QFont::DemiBold);
    font.setPointSizeF(font.pointSizeF() * 0.9);
    return font;
}

}  // namespace

QSizeF chipSize(const QString& word, const QFont& base) {
    return {QFontMetricsF(paintedChipFont(base)).horizontalAdvance(word) + kPaintedChipPadding,
            kPaintedChipHeight};
}

void paintChip(QPainter& painter, const QRectF& area, Qt::Alignment edge, const QString& word,
               const QColor& background, const QColor& foreground, const QFont& base) {
    const qreal width = std::min(area.width(), chipSize(word, base).width());
    const qreal left = edge == Qt::AlignLeft ? area.left() : area.right() - width;
    const QRectF chip(left, area.center().y() - kPaintedChipHeight / 2.0, width,
                      kPaintedChipHeight);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setFont(paintedChipFont(base));
    painter.setPen(Qt::NoPen);
    painter.setBrush(background);
    painter.drawRoundedRect(chip, kPaintedChipHeight / 2.0, kPaintedChipHeight / 2.0);
    painter.setPen(foreground);
    painter.drawText(chip, Qt::AlignCenter, word);
    painter.restore();
}

}  // namespace lumenote::ui::design
