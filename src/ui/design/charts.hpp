// The charts of the design system, painted with any QPainter into a target
// rectangle: the same calls draw on screen, into a QImage for a PNG and into
// a QPdfWriter for a PDF. Each paints only inside its rectangle, uses the
// painter's font (measured on the painter's device) and leaves the painter's
// state as it found it. Empty data paints nothing, and so does a rectangle too
// small to hold the chart with its labels: better no chart than a garbled one.
// Figures that are not numbers or below 0 count as 0.
#pragma once

#include <QColor>
#include <QPalette>
#include <QRectF>

#include "ui/models/chart_data.hpp"

class QPainter;

namespace lumenote::ui::design {

// The colours a chart is drawn in: from a widget's palette on screen, from
// a light palette for a receipt.
struct ChartStyle {
    bool dark = false;
    QColor text;    // labels
    QColor grid;    // axis and grid lines, the ring's track
    QColor accent;  // study-time bars, the focus line, the ring
};
ChartStyle chartStyle(const QPalette& palette);

// Study time per day: one bar a day, the seconds axis on the left in
// durations ("1 h 00 min"), the day labels below (elided to their slot), and
// the goal as a dashed line when set.
void paintBarChart(QPainter& painter, const QRectF& target, const models::BarChartData& data,
                   const ChartStyle& style);
// Classes per day: one bar a day piled in kStackedClassOrder, bottom first,
// each class in its strong colour.
void paintStackedBarChart(QPainter& painter, const QRectF& target,
                          const models::StackedBarChartData& data, const ChartStyle& style);
// The weekly focus score, 0 ... 100 (clamped): a line through the weeks that
// have a score, broken where a week has none; a week alone between gaps is a
// dot. Paints nothing when no week has a score.
void paintLineChart(QPainter& painter, const QRectF& target, const models::LineChartData& data,
                    const ChartStyle& style);
// Progress as a ring in the largest square centred in `target`, filled
// clockwise from the top; its whole percentage in the middle when the ring
// is large enough to hold it.
void paintRing(QPainter& painter, const QRectF& target, const models::RingData& data,
               const ChartStyle& style);

}  // namespace lumenote::ui::design
