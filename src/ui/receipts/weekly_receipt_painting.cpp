#include <algorithm>

#include "recording/focus_score_text.hpp"
#include "ui/design/palette.hpp"
#include "ui/receipts/class_split_bar.hpp"
#include "ui/receipts/receipt_painting.hpp"
#include "ui/receipts/receipt_sections.hpp"

namespace lumenote::ui::receipts {

namespace {

constexpr double kDatesText = 48.0;
constexpr double kWeekDetailText = 28.0;
constexpr double kWeekNoteText = 26.0;
constexpr double kWeekSectionGap = 34.0;
constexpr double kChartBars = 150.0;
constexpr double kChartValueText = 20.0;
constexpr double kChartLabelText = 24.0;
constexpr double kBarShare = 0.56;  // of a day's column

void paintHeader(ReceiptCanvas& canvas, const models::WeeklyReceipt& receipt) {
    paintKindLine(canvas, "STUDY WEEK");
    canvas.line(receipt.datesText, kDatesText, TextWeight::bold, kInkColor);
    if (receipt.streakText) {
        canvas.line(*receipt.streakText, kWeekDetailText, TextWeight::regular, kMutedInkColor);
    }
}

std::vector<Metric> metricsOf(const models::WeeklyReceipt& receipt) {
    namespace Tracking = recording::TrackingCalculationService;
    return {{receipt.studyTime, "Study time"},
            {receipt.sessionsText, "Recorded"},
            {receipt.focusScore.value_or(std::string(Tracking::kAbsentScoreText)), "Focus score"}};
}

void paintFigures(ReceiptCanvas& canvas, const models::WeeklyReceipt& receipt) {
    paintMetrics(canvas, metricsOf(receipt));
    if (!receipt.focusScoreAbsence.empty()) {
        canvas.advance(6.0);
        canvas.line(receipt.focusScoreAbsence, kWeekNoteText, TextWeight::regular, kMutedInkColor);
    }
}

// One column per day: the day's study time above a bar whose height is its
// share of the week's longest day, the weekday beneath.
void paintDays(ReceiptCanvas& canvas, const std::vector<models::WeeklyReceiptDay>& days) {
    paintHeading(canvas, "Study time per day");
    double longest = 0.0;
    for (const models::WeeklyReceiptDay& day : days) {
        longest = std::max(longest, day.seconds);
    }
    const double column = canvas.width() / static_cast<double>(days.size());
    const double valueHeight = canvas.scaled(kChartValueText * 1.5);
    const double barsTop = canvas.y() + valueHeight;
    const double baseline = barsTop + canvas.scaled(kChartBars);
    for (std::size_t index = 0; index < days.size(); ++index) {
        const models::WeeklyReceiptDay& day = days[index];
        const double x = canvas.left() + column * static_cast<double>(index);
        if (day.seconds > 0.0 && longest > 0.0) {
            const double height = canvas.scaled(kChartBars) * day.seconds / longest;
            const double barWidth = column * kBarShare;
            canvas.painter().fillRect(
                QRectF(x + (column - barWidth) / 2.0, baseline - height, barWidth, height),
                design::accentColor(false));
            canvas.textIn(QRectF(x, baseline - height - valueHeight, column, valueHeight),
                          day.studyTime, kChartValueText, TextWeight::regular, kMutedInkColor,
                          Qt::AlignHCenter);
        }
        canvas.textIn(QRectF(x, baseline, column, canvas.scaled(kChartLabelText * 1.6)),
                      day.weekday, kChartLabelText, TextWeight::regular, kInkColor,
                      Qt::AlignHCenter);
    }
    canvas.painter().fillRect(
        QRectF(canvas.left(), baseline, canvas.width(), std::max(1.0, canvas.scaled(2.0))),
        kRuleColor);
    canvas.advance(kChartValueText * 1.5 + kChartBars + kChartLabelText * 1.6);
}

// The top Focused and Distracting activities side by side, each only when
// it has a line, then the subjects.
void paintLists(ReceiptCanvas& canvas, const models::WeeklyReceipt& receipt) {
    if (!receipt.topFocused.empty() || !receipt.topDistracting.empty()) {
        canvas.advance(kWeekSectionGap);
    }
    const double half = (canvas.width() - canvas.scaled(kWeekSectionGap)) / 2.0;
    double x = canvas.left();
    double used = 0.0;
    for (const auto& [heading, lines] : {std::pair{"Top focused", &receipt.topFocused},
                                         std::pair{"Top distracting", &receipt.topDistracting}}) {
        if (lines->empty()) {
            continue;
        }
        used = std::max(used, paintListAt(canvas, x, half, heading, *lines));
        x += half + canvas.scaled(kWeekSectionGap);
    }
    canvas.advance(used);
    if (!receipt.subjects.empty()) {
        canvas.advance(kWeekSectionGap);
        canvas.advance(
            paintListAt(canvas, canvas.left(), canvas.width(), "Subjects", receipt.subjects));
    }
}

}  // namespace

void paintWeeklyReceipt(QPainter& painter, const QRectF& page,
                        const models::WeeklyReceipt& receipt) {
    ReceiptCanvas canvas(painter, page);
    paintHeader(canvas, receipt);
    canvas.rule();
    // A week without sessions says so once, instead of an empty chart, an
    // empty bar and a missing score each explaining the same absence.
    if (receipt.emptyText) {
        paintMetrics(canvas, metricsOf(receipt));
        canvas.advance(kWeekSectionGap);
        canvas.line(*receipt.emptyText, kWeekDetailText, TextWeight::regular, kMutedInkColor);
        paintBranding(canvas, receipt.branding);
        return;
    }
    paintFigures(canvas, receipt);
    canvas.advance(kWeekSectionGap);
    paintDays(canvas, receipt.days);
    canvas.advance(kWeekSectionGap);
    paintHeading(canvas, "Computer study by class");
    paintClassSplit(canvas, receipt.split);
    paintLists(canvas, receipt);
    paintBranding(canvas, receipt.branding);
}

}  // namespace lumenote::ui::receipts
