#include "ui/replay_chip_delegate.hpp"

#include <QApplication>
#include <QPainter>

#include "ui/design/chip.hpp"
#include "ui/design/palette.hpp"
#include "ui/replay_rows_model.hpp"

namespace lumenote::ui {

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
    design::paintChip(*painter, QRectF(option.rect).adjusted(4.0, 0.0, -4.0, 0.0), Qt::AlignLeft,
                      word, background, foreground, option.font);
}

QSize ReplayChipDelegate::sizeHint(const QStyleOptionViewItem& option,
                                   const QModelIndex& index) const {
    const QString word = index.data(Qt::DisplayRole).toString();
    const QSizeF chip = design::chipSize(word, option.font);
    return {static_cast<int>(chip.width() + 8.0), static_cast<int>(chip.height() + 8.0)};
}

}  // namespace lumenote::ui
