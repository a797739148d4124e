// Paints the class column of the replay rows as a chip: a class in its soft
// colour from the design palette, a state of no-input or system time in a
// quiet grey. Every chip carries its word, so colour is never the only sign.
#pragma once

#include <QStyledItemDelegate>

namespace lumenote::ui {

class ReplayChipDelegate final : public QStyledItemDelegate {
    Q_OBJECT

  public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};

}  // namespace lumenote::ui
