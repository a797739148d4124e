// What the Insights page shows for one selected week, in words and chart
// figures: the week's title, its headline figures, the charts of the days,
// the focus score of the last eight weeks, the subjects and activities, the
// insight cards (or the locked state), the personal records and the year
// calendar. Built from the core's own figures (InsightsData, read by
// insights_source.hpp); nothing here sums or scores.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "foundation/dates.hpp"
#include "insights/insights_availability.hpp"
#include "insights/local_insight_types.hpp"
#include "insights/personal_records.hpp"
#include "insights/weekly_figures.hpp"
#include "ui/models/chart_data.hpp"
#include "ui/models/receipt_parts.hpp"
#include "ui/models/year_calendar.hpp"

namespace lumenote::ui::models {

// The weeks of the focus-score trend, the selected one last.
inline constexpr int kFocusTrendWeeks = 8;

// What the page reads for the selected week, all from the core.
struct InsightsWeekData {
    insights::WeeklyFigures figures;
    // The kFocusTrendWeeks weeks ending with the selected one, oldest first.
    std::vector<insights::WeeklyFigures> trend;
    insights::InsightsAvailability availability;
    // In kind order, dismissed ones marked.
    std::vector<insights::LocalInsightFact> facts;
};

// What the page reads whatever week is selected: it changes only with the
// history, so moving between weeks reads it no more.
struct InsightsStandingData {
    insights::PersonalRecords records;
    // The weeks of yearCalendarWeeks(now), oldest first.
    std::vector<insights::WeeklyFigures> year;
    int currentStreak = 0;
};

struct InsightsData {
    InsightsWeekData week;
    InsightsStandingData standing;
    Date now;  // when both were read
};

// A headline figure: its value and caption, or, where it means nothing, the
// sentence that says why in place of the value.
struct InsightsFigure {
    std::string value;
    std::string caption;
    std::optional<std::string> unavailable;

    friend bool operator==(const InsightsFigure&, const InsightsFigure&) = default;
};

struct EvidenceLine {
    std::string label;
    std::string value;

    friend bool operator==(const EvidenceLine&, const EvidenceLine&) = default;
};

struct InsightCard {
    std::string id;
    std::string evidenceRevision;
    std::string title;
    std::string statement;
    std::string explanation;
    std::vector<EvidenceLine> evidence;
    // "Limited evidence · 4 sessions on 3 days".
    std::string evidenceQuality;

    friend bool operator==(const InsightCard&, const InsightCard&) = default;
};

struct PersonalBestLine {
    std::string title;  // "Longest session"
    std::string value;  // "2 h 05 min", "92%"
    std::string day;    // "Monday 23 November 2026"

    friend bool operator==(const PersonalBestLine&, const PersonalBestLine&) = default;
};

// Said where the page shows no card although insights are unlocked.
inline constexpr std::string_view kNoInsightsText =
    "No statement has enough evidence this week yet.";
inline constexpr std::string_view kAllInsightsDismissedText =
    "You have dismissed every insight of this week.";
inline constexpr std::string_view kNoPersonalBestsText =
    "Your records appear here once a session has been counted.";

struct InsightsView {
    std::string weekTitle;  // "23 – 29 November 2026"
    // The selected week holds `now`: there is no later week to go to.
    bool isCurrentWeek = false;

    InsightsFigure studyTime;
    InsightsFigure sessions;
    InsightsFigure focusScore;
    InsightsFigure activeDays;
    // kEmptyWeekText (weekly_receipt.hpp) when no session of the week counts.
    std::optional<std::string> emptyWeek;

    BarChartData studyTimePerDay;
    StackedBarChartData classesPerDay;
    LineChartData focusTrend;
    std::vector<ReceiptLine> subjects;
    std::vector<ReceiptLine> topFocused;
    std::vector<ReceiptLine> topDistracting;

    // The locked state: the availability's title and message, and how many
    // more active days the week needs.
    bool locked = false;
    std::string availabilityTitle;
    std::string availabilityMessage;
    std::string daysNeeded;  // "Study on 2 more days this week to unlock insights."
    // The cards not dismissed, in kind order; empty while locked.
    std::vector<InsightCard> cards;
    // Said in place of the cards when unlocked and none is shown.
    std::optional<std::string> noCards;

    std::vector<PersonalBestLine> personalBests;
    std::optional<std::string> noPersonalBests;

    YearCalendar year;

    friend bool operator==(const InsightsView&, const InsightsView&) = default;
};

// The short label of a week in the trend: its first day, "23 Nov".
std::string trendWeekLabel(Date weekStart, const LocalCalendar& calendar);

// How an evidence value reads on a card: a duration in words, "82%",
// "+4 points" / "−4 points", a whole count or the value's text.
std::string evidenceValueText(const insights::InsightEvidenceValue& value);

// "Study on 1 more day this week to unlock insights." ("days" from 2 on);
// empty when none is needed.
std::string activeDaysNeededText(int days);

InsightsView makeInsightsView(const InsightsData& data, const LocalCalendar& calendar);

}  // namespace lumenote::ui::models
