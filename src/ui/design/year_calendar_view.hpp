// The year calendar on screen: the last twelve months of study as a grid of
// days, one column a week and one row a weekday, each day shaded by its
// study time (models::yearCalendarLevel) in the accent colour, with the month
// names above, the weekday names beside and a legend of the shades below. Hovering a day, or moving
// the keyboard onto it (arrow keys, Home and End), shows its date and study time as a tooltip and
// in the accessible description. The same figures as text, a row per day with study, are its
// tableText().
#pragma once

#include <QWidget>

#include <optional>
#include <utility>

#include "ui/design/charts.hpp"
#include "ui/models/year_calendar.hpp"

namespace lumenote::ui::design {

// Paints `calendar` into `target` (month names on top, weekday names on the
// left, the legend below, the squares as large as fit). `current` outlines one day (week,
// weekday index). Paints nothing when the target is too small.
void paintYearCalendar(QPainter& painter, const QRectF& target,
                       const models::YearCalendar& calendar, const ChartStyle& style,
                       std::optional<std::pair<int, int>> current = std::nullopt);

class YearCalendarView final : public QWidget {
    Q_OBJECT

  public:
    explicit YearCalendarView(QWidget* parent = nullptr);

    void setCalendar(models::YearCalendar calendar);
    const models::YearCalendar& calendar() const { return calendar_; }
    // The days with study as tab-separated lines, the header first.
    QString tableText() const;
    // The text of the day the keyboard is on, empty when none.
    QString currentDayText() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    bool hasHeightForWidth() const override;
    int heightForWidth(int width) const override;

  protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    bool event(QEvent* event) override;

  private:
    // The shown day under `point`, as (week, weekday index).
    std::optional<std::pair<int, int>> dayAt(QPointF point) const;
    void moveTo(std::pair<int, int> day);
    // The shown days in time order, as (week, weekday index).
    std::vector<std::pair<int, int>> shownDays() const;

    models::YearCalendar calendar_;
    std::optional<std::pair<int, int>> current_;
};

}  // namespace lumenote::ui::design
