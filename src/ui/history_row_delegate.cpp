#include "ui/history_row_delegate.hpp"

#include <QDateTime>
#include <QLocale>
#include <QPainter>

#include "ui/design/chip.hpp"
#include "ui/design/palette.hpp"
#include "ui/history_list_model.hpp"

namespace lumenote::ui {

namespace {

constexpr int kHeadingHeight = 30;
constexpr int kSessionHeight = 48;
constexpr int kMargin = 12;
constexpr int kDateWidth = 150;
constexpr int kFigureWidth = 90;
constexpr int kChipWidth = 96;

QColor muted(const QPalette& palette) {
    QColor color = palette.color(QPalette::WindowText);
    color.setAlphaF(0.62f);
    return color;
}

void paintStatusChip(QPainter& painter, const QRectF& area, const QVariant& status, bool dark) {
    if (!status.isValid()) {
        return;
    }
    const auto value = static_cast<recording::StudySessionStatus>(status.toInt());
    design::paintChip(painter, area, Qt::AlignRight, design::statusChipText(value),
                      design::statusColor(value, dark), design::chipTextColor(dark),
                      painter.font());
}

// The locale's short time without its seconds: "14:05", "2:05 PM".
QString shortTime(const QLocale& locale, const QTime& time) {
    QString format = locale.timeFormat(QLocale::ShortFormat);
    format.remove(QStringLiteral(":ss")).remove(QStringLiteral(".ss"));
    return locale.toString(time, format);
}

}  // namespace

QSize HistoryRowDelegate::sizeHint(const QStyleOptionViewItem& option,
                                   const QModelIndex& index) const {
    const bool heading = index.data(HistoryListModel::isHeadingRole).toBool();
    return {option.rect.width(), heading ? kHeadingHeight : kSessionHeight};
}

void HistoryRowDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                               const QModelIndex& index) const {
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    const QPalette& palette = option.palette;
    const bool dark = design::isDark(palette);
    const QRect area = option.rect.adjusted(kMargin, 0, -kMargin, 0);
    QFont font = option.font;

    if (index.data(HistoryListModel::isHeadingRole).toBool()) {
        font.setWeight(QFont::Bold);
        font.setPointSizeF(font.pointSizeF() * 0.9);
        painter->setFont(font);
        painter->setPen(muted(palette));
        painter->drawText(area.adjusted(0, 8, 0, 0), Qt::AlignLeft | Qt::AlignVCenter,
                          index.data(Qt::DisplayRole).toString().toUpper());
        painter->restore();
        return;
    }

    const bool selected = option.state & QStyle::State_Selected;
    if (selected) {
        painter->fillRect(option.rect, palette.color(QPalette::Highlight));
    } else if (option.state & QStyle::State_MouseOver) {
        QColor hover = palette.color(QPalette::Highlight);
        hover.setAlphaF(0.12f);
        painter->fillRect(option.rect, hover);
    }
    const QColor text = palette.color(selected ? QPalette::HighlightedText : QPalette::WindowText);
    const QColor secondary = selected ? text : muted(palette);

    const QDateTime start = index.data(HistoryListModel::startRole).toDateTime();
    const QLocale locale;
    QRect dateArea(area.left(), area.top(), kDateWidth, area.height());
    painter->setFont(font);
    painter->setPen(text);
    painter->drawText(dateArea.adjusted(0, 6, 0, -area.height() / 2),
                      Qt::AlignLeft | Qt::AlignVCenter,
                      locale.toString(start.date(), QLocale::ShortFormat));
    painter->setPen(secondary);
    painter->drawText(dateArea.adjusted(0, area.height() / 2, 0, -6),
                      Qt::AlignLeft | Qt::AlignVCenter, shortTime(locale, start.time()));

    const int figuresLeft = area.right() - kChipWidth - 2 * kFigureWidth;
    QRect subjectArea(dateArea.right() + kMargin, area.top(),
                      figuresLeft - dateArea.right() - 2 * kMargin, area.height());
    const QString goal = index.data(HistoryListModel::goalRole).toString();
    QFont bold = font;
    bold.setWeight(QFont::DemiBold);
    painter->setFont(bold);
    painter->setPen(text);
    const QFontMetrics boldMetrics(bold);
    const QString subject = boldMetrics.elidedText(
        index.data(HistoryListModel::subjectRole).toString(), Qt::ElideRight, subjectArea.width());
    if (goal.isEmpty()) {
        painter->drawText(subjectArea, Qt::AlignLeft | Qt::AlignVCenter, subject);
    } else {
        painter->drawText(subjectArea.adjusted(0, 6, 0, -area.height() / 2),
                          Qt::AlignLeft | Qt::AlignVCenter, subject);
        painter->setFont(font);
        painter->setPen(secondary);
        painter->drawText(subjectArea.adjusted(0, area.height() / 2, 0, -6),
                          Qt::AlignLeft | Qt::AlignVCenter,
                          QFontMetrics(font).elidedText(goal, Qt::ElideRight, subjectArea.width()));
    }

    painter->setFont(font);
    painter->setPen(text);
    const QRect durationArea(figuresLeft, area.top(), kFigureWidth, area.height());
    painter->drawText(durationArea, Qt::AlignRight | Qt::AlignVCenter,
                      index.data(HistoryListModel::durationRole).toString());
    const QRect scoreArea(durationArea.right(), area.top(), kFigureWidth, area.height());
    painter->drawText(scoreArea, Qt::AlignRight | Qt::AlignVCenter,
                      index.data(HistoryListModel::focusScoreRole).toString());
    paintStatusChip(
        *painter,
        QRectF(scoreArea.right() + kMargin, area.top(), kChipWidth - kMargin, area.height()),
        index.data(HistoryListModel::statusRole).toString(), dark && !selected);
    painter->restore();
}

}  // namespace lumenote::ui
