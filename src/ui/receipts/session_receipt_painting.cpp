#include "recording/focus_score_text.hpp"
#include "ui/receipts/class_split_bar.hpp"
#include "ui/receipts/receipt_painting.hpp"
#include "ui/receipts/receipt_sections.hpp"

namespace lumenote::ui::receipts {

namespace {

constexpr double kSubjectText = 60.0;
constexpr double kDetailText = 30.0;
constexpr double kNoteText = 26.0;
constexpr double kSectionGap = 34.0;

void paintHeader(ReceiptCanvas& canvas, const models::SessionReceipt& receipt) {
    paintKindLine(canvas, "STUDY SESSION");
    canvas.line(receipt.subject, kSubjectText, TextWeight::bold, kInkColor);
    if (receipt.goal) {
        canvas.line("Goal: " + *receipt.goal, kDetailText, TextWeight::regular, kInkColor);
    }
    std::string when = receipt.dayText;
    if (receipt.timesText) {
        when += " · " + *receipt.timesText;
    }
    canvas.line(when, kDetailText, TextWeight::regular, kMutedInkColor);
}

void paintFigures(ReceiptCanvas& canvas, const models::SessionReceipt& receipt) {
    namespace Tracking = recording::TrackingCalculationService;
    paintMetrics(canvas, {{receipt.duration, "Duration"},
                          {receipt.studyTime, "Study time"},
                          {receipt.focusScore.value_or(std::string(Tracking::kAbsentScoreText)),
                           "Focus score"}});
    if (!receipt.focusScoreAbsence.empty()) {
        canvas.advance(6.0);
        canvas.line(receipt.focusScoreAbsence, kNoteText, TextWeight::regular, kMutedInkColor);
    }
}

void paintBests(ReceiptCanvas& canvas, const std::vector<std::string>& bests) {
    if (bests.empty()) {
        return;
    }
    canvas.advance(kSectionGap);
    paintHeading(canvas, "Personal bests");
    for (const std::string& best : bests) {
        canvas.line(best, kDetailText - 2.0, TextWeight::regular, kInkColor);
    }
}

}  // namespace

void paintSessionReceipt(QPainter& painter, const QRectF& page,
                         const models::SessionReceipt& receipt) {
    ReceiptCanvas canvas(painter, page);
    paintHeader(canvas, receipt);
    canvas.rule();
    paintFigures(canvas, receipt);
    canvas.rule();
    paintHeading(canvas, "Computer study by class");
    paintClassSplit(canvas, receipt.split);
    if (!receipt.topActivities.empty()) {
        canvas.advance(kSectionGap);
        canvas.advance(paintListAt(canvas, canvas.left(), canvas.width(), "Top activities",
                                   receipt.topActivities));
    }
    paintBests(canvas, receipt.personalBests);
    paintBranding(canvas, receipt.branding);
}

}  // namespace lumenote::ui::receipts
