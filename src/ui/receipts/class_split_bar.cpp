#include "ui/receipts/class_split_bar.hpp"

#include <QPainterPath>
#include <algorithm>
#include <array>
#include <cmath>
#include <string>

#include "recording/study_time.hpp"
#include "shell/duration_text.hpp"
#include "ui/design/palette.hpp"

namespace lumenote::ui::receipts {

namespace {

using classification::ActivityClassification;

constexpr double kBarHeight = 40.0;
constexpr double kBarRadius = 12.0;
constexpr double kLegendTop = 22.0;
constexpr double kLegendRow = 46.0;
constexpr double kSwatch = 24.0;
constexpr double kLegendText = 27.0;

struct ClassShare {
    ActivityClassification classification;
    std::string_view name;
    double seconds;
};

std::array<ClassShare, 4> sharesOf(const models::ClassSplit& split) {
    // A negative stored total (a damaged record) takes no room in the bar.
    const auto positive = [](double seconds) { return std::max(0.0, seconds); };
    return {{
        {ActivityClassification::focused, recording::kFocusedName, positive(split.focused)},
        {ActivityClassification::distracting, recording::kDistractingName,
         positive(split.distracting)},
        {ActivityClassification::neutral, recording::kNeutralName, positive(split.neutral)},
        {ActivityClassification::unclassified, recording::kUnclassifiedName,
         positive(split.unclassified)},
    }};
}

void paintBar(ReceiptCanvas& canvas, const std::array<ClassShare, 4>& shares, double total) {
    QPainter& painter = canvas.painter();
    const QRectF bar(canvas.left(), canvas.y(), canvas.width(), canvas.scaled(kBarHeight));
    QPainterPath outline;
    outline.addRoundedRect(bar, canvas.scaled(kBarRadius), canvas.scaled(kBarRadius));
    painter.save();
    painter.setClipPath(outline);
    painter.fillRect(bar, kRuleColor);
    double x = bar.left();
    for (const ClassShare& share : shares) {
        if (total <= 0.0 || share.seconds <= 0.0) {
            continue;
        }
        const double width = bar.width() * share.seconds / total;
        painter.fillRect(QRectF(x, bar.top(), width, bar.height()),
                         design::classificationFill(share.classification, false));
        x += width;
    }
    painter.restore();
    canvas.advance(kBarHeight);
}

// "Focused 45 min · 62%".
std::string legendText(const ClassShare& share, double total) {
    const long long percent = std::llround(100.0 * share.seconds / total);
    return std::string(share.name) + "  " + shell::durationText(share.seconds) + " · " +
           std::to_string(percent) + "%";
}

}  // namespace

void paintClassSplit(ReceiptCanvas& canvas, const models::ClassSplit& split) {
    const auto shares = sharesOf(split);
    double total = 0.0;
    for (const ClassShare& share : shares) {
        total += share.seconds;
    }
    paintBar(canvas, shares, total);
    canvas.advance(kLegendTop);
    if (!(total > 0.0)) {
        canvas.line(kNoComputerStudyText, kLegendText, TextWeight::regular, kMutedInkColor);
        return;
    }
    // Two columns of two rows, in the order of the bar.
    const double column = canvas.width() / 2.0;
    const double top = canvas.y();
    for (std::size_t index = 0; index < shares.size(); ++index) {
        const double x = canvas.left() + column * static_cast<double>(index % 2);
        const double y = top + canvas.scaled(kLegendRow) * static_cast<double>(index / 2);
        const double swatch = canvas.scaled(kSwatch);
        const double rowHeight = canvas.scaled(kLegendRow);
        canvas.painter().fillRect(QRectF(x, y + (rowHeight - swatch) / 2.0, swatch, swatch),
                                  design::classificationFill(shares[index].classification, false));
        const double textLeft = x + swatch + canvas.scaled(14.0);
        canvas.textIn(QRectF(textLeft, y, column - (textLeft - x) - canvas.scaled(12.0), rowHeight),
                      legendText(shares[index], total), kLegendText, TextWeight::regular, kInkColor,
                      Qt::AlignLeft);
    }
    canvas.advance(2.0 * kLegendRow);
}

}  // namespace lumenote::ui::receipts
