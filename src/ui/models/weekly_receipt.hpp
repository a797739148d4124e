// The content of a weekly receipt: one local-calendar week's figures
// (insights/weekly_figures.hpp) in the words a receipt prints.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "foundation/dates.hpp"
#include "insights/weekly_figures.hpp"
#include "ui/models/receipt_options.hpp"
#include "ui/models/receipt_parts.hpp"

namespace lumenote::ui::models {

// Printed in place of the lists when no session of the week counts.
inline constexpr std::string_view kEmptyWeekText = "No study sessions this week.";

struct WeeklyReceiptDay {
    std::string weekday;  // "Mon"
    std::string studyTime;
    double seconds = 0.0;

    friend bool operator==(const WeeklyReceiptDay&, const WeeklyReceiptDay&) = default;
};

struct WeeklyReceipt {
    std::string datesText;  // "23 – 29 November 2026"
    std::string studyTime;
    std::string sessionsText;  // "4 sessions"
    // "82%", or absent with the sentence that says why.
    std::optional<std::string> focusScore;
    std::string focusScoreAbsence;       // empty when a score is shown
    std::vector<WeeklyReceiptDay> days;  // the seven days in week order
    ClassSplit split;
    std::vector<ReceiptLine> topFocused;
    std::vector<ReceiptLine> topDistracting;
    // Study time per subject; empty when includeSubjectSummary is off.
    std::vector<ReceiptLine> subjects;
    std::optional<std::string> streakText;  // "3-day streak"; absent below 2 days
    // kEmptyWeekText when the week has no session that counts.
    std::optional<std::string> emptyText;
    std::optional<std::string> branding;

    friend bool operator==(const WeeklyReceipt&, const WeeklyReceipt&) = default;
};

// The receipt of `figures`, the week's figures computed in `calendar`.
// `currentStreak` is the streak of days with study ending today: pass it
// only for the week that holds today (an older week's receipt must not claim
// today's streak). The activity lists hold at most
// kWeeklyReceiptActivityCount lines, the subjects kReceiptActivityCount.
WeeklyReceipt makeWeeklyReceipt(const insights::WeeklyFigures& figures,
                                std::optional<int> currentStreak, const ReceiptOptions& options,
                                const LocalCalendar& calendar);

}  // namespace lumenote::ui::models
