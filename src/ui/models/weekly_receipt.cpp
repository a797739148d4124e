#include "ui/models/weekly_receipt.hpp"

#include "recording/focus_score_text.hpp"
#include "shell/duration_text.hpp"
#include "ui/models/receipt_dates.hpp"

namespace lumenote::ui::models {

namespace {

namespace Tracking = recording::TrackingCalculationService;

// A streak is worth printing from two days on.
constexpr int kShownStreakDays = 2;

std::vector<ReceiptLine> lines(const std::vector<insights::LabelledDuration>& items,
                               std::size_t most) {
    std::vector<ReceiptLine> result;
    for (const insights::LabelledDuration& item : items) {
        if (result.size() == most) {
            break;
        }
        result.push_back(receiptLine(item.label, item.seconds));
    }
    return result;
}

}  // namespace

WeeklyReceipt makeWeeklyReceipt(const insights::WeeklyFigures& figures,
                                std::optional<int> currentStreak, const ReceiptOptions& options,
                                const LocalCalendar& calendar) {
    WeeklyReceipt receipt;
    receipt.datesText =
        receiptDayRangeText(figures.days.front().start, figures.days.back().start, calendar);
    receipt.studyTime = shell::durationText(figures.studyTime);
    receipt.sessionsText =
        std::to_string(figures.sessions) + (figures.sessions == 1 ? " session" : " sessions");
    if (figures.focusScore) {
        receipt.focusScore = Tracking::formatFocusScore(figures.focusScore);
    } else {
        receipt.focusScoreAbsence = std::string(Tracking::kNotEnoughEvidenceToShowScoreText);
    }
    for (const insights::DayFigures& day : figures.days) {
        receipt.days.push_back(
            {receiptShortWeekday(day.weekday), shell::durationText(day.studyTime), day.studyTime});
    }
    receipt.split = {.focused = figures.focused,
                     .distracting = figures.distracted,
                     .neutral = figures.neutral,
                     .unclassified = figures.unclassified};
    receipt.topFocused = lines(figures.topFocused, kWeeklyReceiptActivityCount);
    receipt.topDistracting = lines(figures.topDistracting, kWeeklyReceiptActivityCount);
    if (options.includeSubjectSummary) {
        receipt.subjects = lines(figures.subjects, kReceiptActivityCount);
    }
    if (currentStreak && *currentStreak >= kShownStreakDays) {
        receipt.streakText = std::to_string(*currentStreak) + "-day streak";
    }
    if (figures.sessions == 0) {
        receipt.emptyText = std::string(kEmptyWeekText);
    }
    if (options.includeBranding) {
        receipt.branding = std::string(kReceiptBrandingText);
    }
    return receipt;
}

}  // namespace lumenote::ui::models
