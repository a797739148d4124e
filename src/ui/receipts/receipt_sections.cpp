#include "ui/receipts/receipt_sections.hpp"

#include <QFontMetricsF>
#include <algorithm>
#include <cmath>

#include "ui/design/palette.hpp"
#include "ui/design/qt_text.hpp"

namespace lumenote::ui::receipts {

namespace {

constexpr double kKindText = 26.0;
constexpr double kMetricValue = 54.0;
constexpr double kMetricCaption = 26.0;
constexpr double kHeadingText = 30.0;
constexpr double kListText = 28.0;
constexpr double kListRow = 44.0;
constexpr double kListHeading = 52.0;
constexpr double kDurationColumn = 190.0;
constexpr double kColumnGap = 36.0;
constexpr double kBrandingText = 24.0;
constexpr double kMetricValueMinimum = 30.0;

// The largest size up to kMetricValue at which every value fits its
// column, so that the figures share one size and none is elided.
double metricValueSize(const ReceiptCanvas& canvas, const std::vector<Metric>& metrics,
                       double inner) {
    const QFontMetricsF measure(canvas.font(kMetricValue, TextWeight::bold));
    double size = kMetricValue;
    for (const Metric& metric : metrics) {
        const double width = measure.horizontalAdvance(qt(metric.value));
        if (width > inner) {
            size = std::min(size, kMetricValue * inner / width);
        }
    }
    return std::max(kMetricValueMinimum, std::floor(size));
}

}  // namespace

void paintKindLine(ReceiptCanvas& canvas, std::string_view kind) {
    canvas.line(kind, kKindText, TextWeight::bold, design::accentColor(false));
    canvas.advance(8.0);
}

void paintMetrics(ReceiptCanvas& canvas, const std::vector<Metric>& metrics) {
    const double column = canvas.width() / static_cast<double>(metrics.size());
    const double inner = column - canvas.scaled(kColumnGap);
    const double valueSize = metricValueSize(canvas, metrics, inner);
    const double valueHeight = canvas.scaled(kMetricValue * 1.3);
    const double captionHeight = canvas.scaled(kMetricCaption * 1.4);
    for (std::size_t index = 0; index < metrics.size(); ++index) {
        const double x = canvas.left() + column * static_cast<double>(index);
        canvas.textIn(QRectF(x, canvas.y(), inner, valueHeight), metrics[index].value, valueSize,
                      TextWeight::bold, kInkColor, Qt::AlignLeft | Qt::AlignBottom);
        canvas.textIn(QRectF(x, canvas.y() + valueHeight, inner, captionHeight),
                      metrics[index].caption, kMetricCaption, TextWeight::regular, kMutedInkColor,
                      Qt::AlignLeft);
    }
    canvas.advance(kMetricValue * 1.3 + kMetricCaption * 1.4);
}

void paintHeading(ReceiptCanvas& canvas, std::string_view heading) {
    canvas.line(heading, kHeadingText, TextWeight::bold, kInkColor);
    canvas.advance(10.0);
}

double paintListAt(ReceiptCanvas& canvas, double x, double width, std::string_view heading,
                   const std::vector<models::ReceiptLine>& lines) {
    const double top = canvas.y();
    canvas.textIn(QRectF(x, top, width, canvas.scaled(kListHeading)), heading, kHeadingText,
                  TextWeight::bold, kInkColor, Qt::AlignLeft);
    const double row = canvas.scaled(kListRow);
    const double durationWidth = std::min(canvas.scaled(kDurationColumn), width / 2.0);
    double y = top + canvas.scaled(kListHeading);
    for (const models::ReceiptLine& line : lines) {
        const double nameWidth = width - durationWidth - canvas.scaled(kColumnGap) / 2.0;
        canvas.textIn(QRectF(x, y, nameWidth, row), line.name, kListText, TextWeight::regular,
                      kInkColor, Qt::AlignLeft);
        canvas.textIn(QRectF(x + width - durationWidth, y, durationWidth, row), line.duration,
                      kListText, TextWeight::regular, kMutedInkColor, Qt::AlignRight);
        y += row;
    }
    return kListHeading + kListRow * static_cast<double>(lines.size());
}

void paintBranding(ReceiptCanvas& canvas, const std::optional<std::string>& branding) {
    if (!branding) {
        return;
    }
    const double height = canvas.scaled(kBrandingText * 1.4);
    canvas.textIn(QRectF(canvas.left(), canvas.bottom() - height, canvas.width(), height),
                  *branding, kBrandingText, TextWeight::regular, kMutedInkColor, Qt::AlignHCenter);
}

}  // namespace lumenote::ui::receipts
