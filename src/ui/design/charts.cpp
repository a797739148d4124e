#include "ui/design/charts.hpp"

#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "shell/duration_text.hpp"
#include "ui/design/palette.hpp"
#include "ui/design/qt_text.hpp"
#include "ui/models/chart_table.hpp"

namespace lumenote::ui::design {

namespace {

using models::drawableSeconds;

// The smallest plot area worth drawing, in device pixels.
constexpr qreal kMinimumPlot = 8.0;

QColor withAlpha(QColor color, qreal alpha) {
    color.setAlphaF(static_cast<float>(alpha));
    return color;
}

// A step of the seconds axis that gives at most four lines over `maximum`.
double secondsStep(double maximum) {
    static constexpr std::array<double, 11> steps{60,   300,   600,   900,   1800, 3600,
                                                  7200, 10800, 14400, 21600, 43200};
    for (double step : steps) {
        if (maximum / step <= 4.0) {
            return step;
        }
    }
    return std::ceil(maximum / 4.0 / 86400.0) * 86400.0;
}

// A value axis with its labels: the plot is what remains of the target once
// the labels on the left and below have their room.
struct Axis {
    QRectF plot;
    double top = 1.0;
    std::vector<std::pair<double, QString>> ticks;
};

std::optional<Axis> layoutAxis(const QPainter& painter, const QRectF& target, double top,
                               std::vector<std::pair<double, QString>> ticks) {
    const QFontMetricsF metrics(painter.font(), painter.device());
    qreal labelWidth = 0.0;
    for (const auto& tick : ticks) {
        labelWidth = std::max(labelWidth, metrics.horizontalAdvance(tick.second));
    }
    const qreal gap = metrics.averageCharWidth();
    const qreal line = metrics.height();
    Axis axis;
    axis.plot = target.adjusted(labelWidth + gap, line / 2.0, -gap, -(line + gap / 2.0));
    axis.top = top;
    axis.ticks = std::move(ticks);
    if (axis.plot.width() < kMinimumPlot || axis.plot.height() < kMinimumPlot) {
        return std::nullopt;
    }
    return axis;
}

std::optional<Axis> secondsAxis(const QPainter& painter, const QRectF& target, double maximum) {
    if (!(maximum > 0.0)) {
        maximum = 3600.0;
    }
    const double step = secondsStep(maximum);
    const double top = std::ceil(maximum / step) * step;
    std::vector<std::pair<double, QString>> ticks;
    for (double value = 0.0; value <= top + step / 2.0; value += step) {
        ticks.emplace_back(value, qt(shell::durationText(value)));
    }
    return layoutAxis(painter, target, top, std::move(ticks));
}

qreal yOf(const Axis& axis, double value) {
    return axis.plot.bottom() - std::clamp(value / axis.top, 0.0, 1.0) * axis.plot.height();
}

void paintAxis(QPainter& painter, const Axis& axis, const ChartStyle& style) {
    const QFontMetricsF metrics(painter.font(), painter.device());
    const qreal gap = metrics.averageCharWidth();
    for (const auto& [value, label] : axis.ticks) {
        const qreal y = yOf(axis, value);
        painter.setPen(QPen(style.grid, 0));
        painter.drawLine(QPointF(axis.plot.left(), y), QPointF(axis.plot.right(), y));
        painter.setPen(style.text);
        const QRectF box(axis.plot.left() - gap - 1000.0, y - metrics.height() / 2.0, 1000.0,
                         metrics.height());
        painter.drawText(box, Qt::AlignRight | Qt::AlignVCenter, label);
    }
}

// The slots of `count` bars side by side across the plot.
QRectF slotOf(const Axis& axis, std::size_t count, std::size_t index) {
    const qreal width = axis.plot.width() / static_cast<qreal>(count);
    return {axis.plot.left() + width * static_cast<qreal>(index), axis.plot.top(), width,
            axis.plot.height()};
}

QRectF barIn(const QRectF& slot) {
    const qreal width = std::max<qreal>(1.0, std::min(slot.width() * 0.6, slot.width() - 2.0));
    return {slot.center().x() - width / 2.0, slot.top(), width, slot.height()};
}

void paintLabel(QPainter& painter, const Axis& axis, const QRectF& slot, const std::string& text,
                const ChartStyle& style) {
    const QFontMetricsF metrics(painter.font(), painter.device());
    const QString label = metrics.elidedText(qt(text), Qt::ElideRight, slot.width() - 2.0);
    painter.setPen(style.text);
    painter.drawText(QRectF(slot.left(), axis.plot.bottom() + metrics.averageCharWidth() / 2.0,
                            slot.width(), metrics.height()),
                     Qt::AlignHCenter | Qt::AlignTop, label);
}

void fillBar(QPainter& painter, const Axis& axis, const QRectF& bar, double from, double to,
             const QColor& color) {
    const qreal top = yOf(axis, to);
    const qreal bottom = yOf(axis, from);
    if (bottom - top <= 0.0) {
        return;
    }
    painter.fillRect(QRectF(bar.left(), top, bar.width(), std::max<qreal>(bottom - top, 1.0)),
                     color);
}

}  // namespace

ChartStyle chartStyle(const QPalette& palette) {
    const bool dark = isDark(palette);
    const QColor text = palette.color(QPalette::WindowText);
    return {dark, text, withAlpha(text, 0.18), accentColor(dark)};
}

void paintBarChart(QPainter& painter, const QRectF& target, const models::BarChartData& data,
                   const ChartStyle& style) {
    if (data.days.empty()) {
        return;
    }
    double maximum = 0.0;
    for (const auto& day : data.days) {
        maximum = std::max(maximum, drawableSeconds(day.seconds));
    }
    const double goal = data.goalSeconds ? drawableSeconds(*data.goalSeconds) : 0.0;
    const auto axis = secondsAxis(painter, target, std::max(maximum, goal));
    if (!axis) {
        return;
    }
    painter.save();
    paintAxis(painter, *axis, style);
    for (std::size_t i = 0; i < data.days.size(); ++i) {
        const QRectF slot = slotOf(*axis, data.days.size(), i);
        fillBar(painter, *axis, barIn(slot), 0.0, drawableSeconds(data.days[i].seconds),
                style.accent);
        paintLabel(painter, *axis, slot, data.days[i].label, style);
    }
    if (goal > 0.0) {
        QPen pen(style.text, 0, Qt::DashLine);
        painter.setPen(pen);
        const qreal y = yOf(*axis, goal);
        painter.drawLine(QPointF(axis->plot.left(), y), QPointF(axis->plot.right(), y));
    }
    painter.restore();
}

void paintStackedBarChart(QPainter& painter, const QRectF& target,
                          const models::StackedBarChartData& data, const ChartStyle& style) {
    if (data.days.empty()) {
        return;
    }
    double maximum = 0.0;
    for (const auto& day : data.days) {
        maximum = std::max(maximum, day.total());
    }
    const auto axis = secondsAxis(painter, target, maximum);
    if (!axis) {
        return;
    }
    painter.save();
    paintAxis(painter, *axis, style);
    for (std::size_t i = 0; i < data.days.size(); ++i) {
        const QRectF slot = slotOf(*axis, data.days.size(), i);
        const QRectF bar = barIn(slot);
        double base = 0.0;
        for (std::size_t part = 0; part < models::kStackedClassOrder.size(); ++part) {
            const double seconds = drawableSeconds(data.days[i].seconds[part]);
            fillBar(painter, *axis, bar, base, base + seconds,
                    classificationFill(models::kStackedClassOrder[part], style.dark));
            base += seconds;
        }
        paintLabel(painter, *axis, slot, data.days[i].label, style);
    }
    painter.restore();
}

void paintLineChart(QPainter& painter, const QRectF& target, const models::LineChartData& data,
                    const ChartStyle& style) {
    const auto scored = [](const models::LinePoint& point) {
        return point.value && std::isfinite(*point.value);
    };
    if (std::none_of(data.points.begin(), data.points.end(), scored)) {
        return;
    }
    std::vector<std::pair<double, QString>> ticks;
    for (double value : {0.0, 50.0, 100.0}) {
        ticks.emplace_back(value, qt(models::percentText(value)));
    }
    const auto axis = layoutAxis(painter, target, 100.0, std::move(ticks));
    if (!axis) {
        return;
    }
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    paintAxis(painter, *axis, style);
    const QFontMetricsF metrics(painter.font(), painter.device());
    const qreal thickness = std::max<qreal>(2.0, metrics.height() / 6.0);
    std::optional<QPointF> previous;
    for (std::size_t i = 0; i < data.points.size(); ++i) {
        const QRectF slot = slotOf(*axis, data.points.size(), i);
        paintLabel(painter, *axis, slot, data.points[i].label, style);
        if (!scored(data.points[i])) {
            previous.reset();
            continue;
        }
        const QPointF point(slot.center().x(), yOf(*axis, *data.points[i].value));
        painter.setPen(QPen(style.accent, thickness, Qt::SolidLine, Qt::RoundCap));
        if (previous) {
            painter.drawLine(*previous, point);
        }
        painter.setPen(Qt::NoPen);
        painter.setBrush(style.accent);
        painter.drawEllipse(point, thickness * 1.5, thickness * 1.5);
        previous = point;
    }
    painter.restore();
}

void paintRing(QPainter& painter, const QRectF& target, const models::RingData& data,
               const ChartStyle& style) {
    const qreal side = std::min(target.width(), target.height());
    if (!(side >= kMinimumPlot)) {
        return;
    }
    const double progress = models::clampedProgress(data.progress);
    const qreal thickness = std::max<qreal>(2.0, side * 0.14);
    const qreal inset = thickness / 2.0 + 1.0;
    const QRectF square(target.center().x() - side / 2.0, target.center().y() - side / 2.0, side,
                        side);
    const QRectF ring = square.adjusted(inset, inset, -inset, -inset);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(style.grid, thickness, Qt::SolidLine, Qt::RoundCap));
    painter.drawEllipse(ring);
    if (progress > 0.0) {
        painter.setPen(QPen(style.accent, thickness, Qt::SolidLine, Qt::RoundCap));
        painter.drawArc(ring, 90 * 16, -static_cast<int>(std::lround(progress * 360.0 * 16)));
    }
    const QString figure = qt(models::percentText(progress * 100.0));
    const QFontMetricsF metrics(painter.font(), painter.device());
    const QRectF inner = ring.adjusted(thickness, thickness, -thickness, -thickness);
    // Measured on the widest figure, so that a ring shows its figure at every
    // progress or at none.
    if (metrics.horizontalAdvance(QStringLiteral("100%")) <= inner.width() &&
        metrics.height() <= inner.height()) {
        painter.setPen(style.text);
        painter.drawText(inner, Qt::AlignCenter, figure);
    }
    painter.restore();
}

}  // namespace lumenote::ui::design
