#include "ui/design/year_calendar_view.hpp"

#include <QFontMetricsF>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QToolTip>
#include <algorithm>
#include <cmath>
#include <vector>

#include "ui/design/qt_text.hpp"

namespace lumenote::ui::design {

namespace {

constexpr int kRows = insights::kDaysPerWeek;
// The space between squares, as a share of a square's pitch.
constexpr qreal kGapShare = 0.18;
constexpr qreal kLargestSquare = 18.0;

// Where the grid goes inside a target: the squares' pitch and the top-left
// corner of the first square.
struct GridLayout {
    qreal pitch = 0.0;
    QPointF origin;
    qreal labelWidth = 0.0;
};

std::optional<GridLayout> layoutGrid(const QFontMetricsF& metrics, const QRectF& target,
                                     int weeks) {
    if (weeks == 0) {
        return std::nullopt;
    }
    GridLayout layout;
    layout.labelWidth =
        metrics.horizontalAdvance(QStringLiteral("Wed")) + metrics.averageCharWidth();
    const qreal top = metrics.height() + 2.0;
    // Below the grid, one line for the legend.
    const qreal bottom = metrics.height() + 6.0;
    layout.pitch = std::min({(target.width() - layout.labelWidth) / weeks,
                             (target.height() - top - bottom) / kRows, kLargestSquare});
    if (layout.pitch < 4.0) {
        return std::nullopt;
    }
    layout.origin = QPointF(target.left() + layout.labelWidth, target.top() + top);
    return layout;
}

// Level 0 is a faint square, so that the grid's shape shows; the others
// step up the accent's opacity.
QColor levelColor(int level, const ChartStyle& style) {
    if (level <= 0) {
        return style.grid;
    }
    QColor color = style.accent;
    color.setAlphaF(static_cast<float>(0.25 + 0.75 * level / models::kYearCalendarTopLevel));
    return color;
}

QRectF squareAt(const GridLayout& layout, int week, int row) {
    const qreal side = layout.pitch * (1.0 - kGapShare);
    return {layout.origin.x() + week * layout.pitch, layout.origin.y() + row * layout.pitch, side,
            side};
}

// The month names above their weeks. Where two would overlap (the partial
// month the grid begins with), the later one, a month's true start, wins.
void paintMonthLabels(QPainter& painter, const QFontMetricsF& metrics, const QRectF& target,
                      const GridLayout& layout, const models::YearCalendar& calendar,
                      const ChartStyle& style) {
    std::vector<std::pair<qreal, QString>> labels;
    for (std::size_t week = 0; week < calendar.weeks.size(); ++week) {
        if (!calendar.weeks[week].monthLabel.empty()) {
            labels.emplace_back(layout.origin.x() + static_cast<qreal>(week) * layout.pitch,
                                qt(calendar.weeks[week].monthLabel));
        }
    }
    painter.setPen(style.text);
    for (std::size_t index = 0; index < labels.size(); ++index) {
        const auto& [x, month] = labels[index];
        const qreal end = x + metrics.horizontalAdvance(month);
        const bool crowded =
            index + 1 < labels.size() && labels[index + 1].first < end + metrics.averageCharWidth();
        if (!crowded && end <= target.right()) {
            painter.drawText(QPointF(x, target.top() + metrics.ascent()), month);
        }
    }
}

// "Less", a square of each shade, "More", at the grid's bottom right.
void paintLegend(QPainter& painter, const QFontMetricsF& metrics, const GridLayout& layout,
                 qreal gridRight, const ChartStyle& style) {
    const qreal side = layout.pitch * (1.0 - kGapShare);
    const qreal top = layout.origin.y() + kRows * layout.pitch + 4.0;
    const QString less = QStringLiteral("Less");
    const QString more = QStringLiteral("More");
    const qreal gap = metrics.averageCharWidth();
    qreal x = gridRight - metrics.horizontalAdvance(more) - gap -
              (models::kYearCalendarTopLevel + 1) * layout.pitch - metrics.horizontalAdvance(less);
    const qreal baseline = top + (metrics.height() + metrics.ascent() - metrics.descent()) / 2.0;
    painter.setPen(style.text);
    painter.drawText(QPointF(x, baseline), less);
    x += metrics.horizontalAdvance(less) + gap;
    painter.setPen(Qt::NoPen);
    for (int level = 0; level <= models::kYearCalendarTopLevel; ++level) {
        painter.setBrush(levelColor(level, style));
        painter.drawRoundedRect(QRectF(x, top + (metrics.height() - side) / 2.0, side, side), 2.0,
                                2.0);
        x += layout.pitch;
    }
    painter.setPen(style.text);
    painter.drawText(QPointF(x + gap - layout.pitch * kGapShare, baseline), more);
}

}  // namespace

void paintYearCalendar(QPainter& painter, const QRectF& target,
                       const models::YearCalendar& calendar, const ChartStyle& style,
                       std::optional<std::pair<int, int>> current) {
    const QFontMetricsF metrics(painter.font(), painter.device());
    const auto layout = layoutGrid(metrics, target, static_cast<int>(calendar.weeks.size()));
    if (!layout) {
        return;
    }
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(style.text);
    // Every other weekday is named, as the rows are too close for all seven.
    for (int row = 0; row < kRows; row += 2) {
        const QRectF line(target.left(), layout->origin.y() + row * layout->pitch,
                          layout->labelWidth, layout->pitch);
        painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter,
                         qt(calendar.rowLabels[static_cast<std::size_t>(row)]));
    }
    paintMonthLabels(painter, metrics, target, *layout, calendar, style);
    for (std::size_t week = 0; week < calendar.weeks.size(); ++week) {
        for (int row = 0; row < kRows; ++row) {
            const auto& day = calendar.weeks[week].days[static_cast<std::size_t>(row)];
            if (!day.shown) {
                continue;
            }
            painter.setPen(Qt::NoPen);
            painter.setBrush(levelColor(day.level, style));
            const QRectF square = squareAt(*layout, static_cast<int>(week), row);
            painter.drawRoundedRect(square, 2.0, 2.0);
            if (current == std::pair{static_cast<int>(week), row}) {
                painter.setBrush(Qt::NoBrush);
                painter.setPen(QPen(style.text, 1.5));
                painter.drawRoundedRect(square.adjusted(-1.0, -1.0, 1.0, 1.0), 2.0, 2.0);
            }
        }
    }
    const qreal gridRight = layout->origin.x() +
                            static_cast<qreal>(calendar.weeks.size()) * layout->pitch -
                            layout->pitch * kGapShare;
    paintLegend(painter, metrics, *layout, gridRight, style);
    painter.restore();
}

YearCalendarView::YearCalendarView(QWidget* parent) : QWidget(parent) {
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setAccessibleName(QStringLiteral("Study calendar of the last 12 months"));
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

void YearCalendarView::setCalendar(models::YearCalendar calendar) {
    calendar_ = std::move(calendar);
    current_.reset();
    setAccessibleDescription(qt(calendar_.summaryText) + QStringLiteral(". ") +
                             qt(calendar_.streakText) + QStringLiteral(".\n") + tableText());
    updateGeometry();
    update();
}

QString YearCalendarView::tableText() const {
    return qt(models::tableText(calendar_.table));
}

QString YearCalendarView::currentDayText() const {
    if (!current_) {
        return {};
    }
    return qt(calendar_.weeks[static_cast<std::size_t>(current_->first)]
                  .days[static_cast<std::size_t>(current_->second)]
                  .text);
}

QSize YearCalendarView::sizeHint() const {
    const QFontMetricsF metrics(font());
    const qreal width = metrics.horizontalAdvance(QStringLiteral("Wed")) +
                        metrics.averageCharWidth() +
                        static_cast<qreal>(calendar_.weeks.size()) * kLargestSquare + 4.0;
    return {static_cast<int>(std::ceil(width)), heightForWidth(static_cast<int>(width))};
}

bool YearCalendarView::hasHeightForWidth() const {
    return true;
}

int YearCalendarView::heightForWidth(int width) const {
    // As tall as the squares that fit the width need, so that the grid
    // fills its card without empty bands above or below.
    const QFontMetricsF metrics(font());
    const qreal labels =
        metrics.horizontalAdvance(QStringLiteral("Wed")) + metrics.averageCharWidth();
    const qreal weeks = std::max<qreal>(1.0, static_cast<qreal>(calendar_.weeks.size()));
    const qreal pitch = std::clamp((width - 4.0 - labels) / weeks, 4.0, kLargestSquare);
    return static_cast<int>(std::ceil(2.0 * metrics.height() + 8.0 + kRows * pitch + 4.0));
}

QSize YearCalendarView::minimumSizeHint() const {
    return {240, heightForWidth(240)};
}

void YearCalendarView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    paintYearCalendar(painter, QRectF(rect()).adjusted(2, 2, -2, -2), calendar_,
                      chartStyle(palette()), hasFocus() ? current_ : std::nullopt);
}

std::optional<std::pair<int, int>> YearCalendarView::dayAt(QPointF point) const {
    const QFontMetricsF metrics(font());
    const auto layout = layoutGrid(metrics, QRectF(rect()).adjusted(2, 2, -2, -2),
                                   static_cast<int>(calendar_.weeks.size()));
    if (!layout) {
        return std::nullopt;
    }
    const int week = static_cast<int>(std::floor((point.x() - layout->origin.x()) / layout->pitch));
    const int row = static_cast<int>(std::floor((point.y() - layout->origin.y()) / layout->pitch));
    if (week < 0 || row < 0 || week >= static_cast<int>(calendar_.weeks.size()) || row >= kRows ||
        !calendar_.weeks[static_cast<std::size_t>(week)]
             .days[static_cast<std::size_t>(row)]
             .shown) {
        return std::nullopt;
    }
    return std::pair{week, row};
}

std::vector<std::pair<int, int>> YearCalendarView::shownDays() const {
    std::vector<std::pair<int, int>> days;
    for (std::size_t week = 0; week < calendar_.weeks.size(); ++week) {
        for (int row = 0; row < kRows; ++row) {
            if (calendar_.weeks[week].days[static_cast<std::size_t>(row)].shown) {
                days.emplace_back(static_cast<int>(week), row);
            }
        }
    }
    return days;
}

void YearCalendarView::moveTo(std::pair<int, int> day) {
    current_ = day;
    const QString text = currentDayText();
    setAccessibleDescription(text);
    const QFontMetricsF metrics(font());
    if (const auto layout = layoutGrid(metrics, QRectF(rect()).adjusted(2, 2, -2, -2),
                                       static_cast<int>(calendar_.weeks.size()))) {
        const QRectF square = squareAt(*layout, day.first, day.second);
        QToolTip::showText(mapToGlobal(square.bottomRight().toPoint()), text, this);
    }
    update();
}

void YearCalendarView::keyPressEvent(QKeyEvent* event) {
    const std::vector<std::pair<int, int>> days = shownDays();
    if (days.empty()) {
        QWidget::keyPressEvent(event);
        return;
    }
    const auto at = std::find(days.begin(), days.end(), current_.value_or(days.back()));
    const auto index = static_cast<int>(at == days.end() ? days.size() - 1 : at - days.begin());
    // Left and Right step a week (the columns), Up and Down a day.
    int step = 0;
    switch (event->key()) {
        case Qt::Key_Left:
            step = -kRows;
            break;
        case Qt::Key_Right:
            step = kRows;
            break;
        case Qt::Key_Up:
            step = -1;
            break;
        case Qt::Key_Down:
            step = 1;
            break;
        case Qt::Key_Home:
            moveTo(days.front());
            return;
        case Qt::Key_End:
            moveTo(days.back());
            return;
        default:
            QWidget::keyPressEvent(event);
            return;
    }
    const int last = static_cast<int>(days.size()) - 1;
    moveTo(days[static_cast<std::size_t>(std::clamp(index + step, 0, last))]);
}

void YearCalendarView::focusInEvent(QFocusEvent* event) {
    QWidget::focusInEvent(event);
    if (!current_) {
        const std::vector<std::pair<int, int>> days = shownDays();
        if (!days.empty()) {
            current_ = days.back();  // today
            setAccessibleDescription(currentDayText());
        }
    }
    update();
}

bool YearCalendarView::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip) {
        auto* help = static_cast<QHelpEvent*>(event);
        if (const auto day = dayAt(help->pos())) {
            QToolTip::showText(help->globalPos(),
                               qt(calendar_.weeks[static_cast<std::size_t>(day->first)]
                                      .days[static_cast<std::size_t>(day->second)]
                                      .text),
                               this);
        } else {
            QToolTip::hideText();
            event->ignore();
        }
        return true;
    }
    return QWidget::event(event);
}

}  // namespace lumenote::ui::design
