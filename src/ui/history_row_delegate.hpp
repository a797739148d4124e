// Paints the History list's rows: a week's heading in small bold muted
// letters; a session as its start (date and time in the user's locale), its
// subject with the goal beneath, and on the right its duration, focus score
// and a status chip carrying its word.
#pragma once

#include <QStyledItemDelegate>

namespace lumenote::ui {

class HistoryRowDelegate final : public QStyledItemDelegate {
    Q_OBJECT

  public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};

}  // namespace lumenote::ui
