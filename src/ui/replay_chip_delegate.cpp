#include "ui/replay_chip_delegate.hpp"

#include <QApplication>
#include <QPainter>

#include "ui/design/palette.hpp"
#include "ui/replay_rows_model.hpp"

namespace lumenote::ui {

namespace {

constexpr qreal kChipHeight = 20.0;
constexpr qreal kChipPadding = 20.0;

QFont chipFont(const QFont& base) {
    QFont font = base;
    font.setWeight(QFont::DemiBold);
    font.setPointSizeF(font.pointSizeF() * 0.9);
    return font;
}

}  // namespace

void ReplayChipDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                               const QModelIndex& index) const {
    const QString word = index.data(Qt::DisplayRole).toString();
    QStyleOptionViewItem plain = option;
    initStyleOption(&plain, index);
    plain.text.clear();
    QApplication::style()->drawControl(QStyle::CE_ItemViewItem, &plain, painter, plain.widget);
    if (word.isEmpty()) {
        return;
    }
    const bool dark = design::isDark(option.palette);
    const QVariant classification = index.data(ReplayRowsModel::classificationRole);
    QColor background;
    QColor foreground = design::chipTextColor(dark);
    if (classification.isValid()) {
        background = design::classificationColor(
            static_cast<classification::ActivityClassification>(classification.toInt()), dark);
    } else {
        background = option.palette.color(QPalette::Mid);
        background.setAlphaF(0.35f);
        foreground = option.palette.color(QPalette::WindowText);
    }
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    const QFont font = chipFont(option.font);
    painter->setFont(font);
    const QRectF area = QRectF(option.rect).adjusted(4.0, 0.0, -4.0, 0.0);
    const qreal width =
        std::min(area.width(), QFontMetricsF(font).horizontalAdvance(word) + kChipPadding);
    const QRectF chip(area.left(), area.center().y() - kChipHeight / 2.0, width, kChipHeight);
    painter->setPen(Qt::NoPen);
    painter->setBrush(background);
    painter->drawRoundedRect(chip, kChipHeight / 2.0, kChipHeight / 2.0);
    painter->setPen(foreground);
    painter->drawText(chip, Qt::AlignCenter, word);
    painter->restore();
}

QSize ReplayChipDelegate::sizeHint(const QStyleOptionViewItem& option,
                                   const QModelIndex& index) const {
    const QString word = index.data(Qt::DisplayRole).toString();
    const QFontMetricsF metrics(chipFont(option.font));
    return {static_cast<int>(metrics.horizontalAdvance(word) + kChipPadding + 8.0),
            static_cast<int>(kChipHeight + 8.0)};
}

}  // namespace lumenote::ui
