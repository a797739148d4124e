#include "ui/models/insights_view.hpp"

#include "foundation/numeric.hpp"
#include "insights/insight_text.hpp"
#include "recording/focus_score_text.hpp"
#include "shell/duration_text.hpp"
#include "ui/models/chart_table.hpp"
#include "ui/models/receipt_dates.hpp"
#include "ui/models/weekly_receipt.hpp"

namespace lumenote::ui::models {

namespace {

namespace Tracking = recording::TrackingCalculationService;
using insights::InsightEvidenceQuality;
using insights::InsightEvidenceUnit;

std::vector<ReceiptLine> lines(const std::vector<insights::LabelledDuration>& items) {
    std::vector<ReceiptLine> result;
    for (const insights::LabelledDuration& item : items) {
        result.push_back(receiptLine(item.label, item.seconds));
    }
    return result;
}

std::string plural(int count, std::string_view one, std::string_view many) {
    return std::to_string(count) + ' ' + std::string(count == 1 ? one : many);
}

std::string qualityText(const insights::LocalInsightFact& fact) {
    std::string_view grade = "Limited evidence";
    if (fact.evidenceQuality == InsightEvidenceQuality::moderate) {
        grade = "Moderate evidence";
    } else if (fact.evidenceQuality == InsightEvidenceQuality::strong) {
        grade = "Strong evidence";
    }
    return std::string(grade) + " · " + plural(fact.sampleSize, "session", "sessions") + " on " +
           plural(fact.minimumDataRule.actualActiveDays, "day", "days");
}

InsightCard cardOf(const insights::LocalInsightFact& fact) {
    InsightCard card{fact.id, fact.evidenceRevision, fact.title, fact.statement, fact.explanation,
                     {},      qualityText(fact)};
    for (const insights::InsightEvidenceValue& value : fact.evidenceValues) {
        card.evidence.push_back({value.label, evidenceValueText(value)});
    }
    return card;
}

void addRecord(std::vector<PersonalBestLine>& lines, std::string_view title,
               const std::optional<insights::PersonalRecord>& record, std::string value,
               const LocalCalendar& calendar) {
    if (record) {
        lines.push_back(
            {std::string(title), std::move(value), receiptDayText(record->sessionStart, calendar)});
    }
}

std::vector<PersonalBestLine> personalBests(const insights::PersonalRecords& records,
                                            const LocalCalendar& calendar) {
    std::vector<PersonalBestLine> result;
    const auto seconds = [](const std::optional<insights::PersonalRecord>& record) {
        return record ? shell::durationText(record->value) : std::string();
    };
    addRecord(result, "Longest session", records.longestSession, seconds(records.longestSession),
              calendar);
    addRecord(result, "Longest focus", records.longestFocusedRun,
              seconds(records.longestFocusedRun), calendar);
    addRecord(result, "Highest focus score", records.highestFocusScore,
              records.highestFocusScore
                  ? Tracking::formatFocusScore(records.highestFocusScore->value)
                  : std::string(),
              calendar);
    return result;
}

void fillCharts(InsightsView& view, const insights::WeeklyFigures& figures) {
    view.studyTimePerDay.goalSeconds = figures.dailyGoalSeconds;
    for (const insights::DayFigures& day : figures.days) {
        const std::string label = receiptShortWeekday(day.weekday);
        view.studyTimePerDay.days.push_back({label, day.studyTime});
        // Indexed as kStackedClassOrder: Focused, Neutral, Distracting,
        // Unclassified, Ignored (never counted, so never piled).
        view.classesPerDay.days.push_back(
            {label, {day.focused, day.neutral, day.distracted, day.unclassified, 0.0}});
    }
}

}  // namespace

std::string trendWeekLabel(Date weekStart, const LocalCalendar& calendar) {
    // "Monday 23 November 2026" -> "23 Nov".
    const std::string day = receiptDayText(weekStart, calendar);
    const std::size_t first = day.find(' ') + 1;
    const std::size_t second = day.find(' ', first);
    return day.substr(first, second - first) + ' ' + day.substr(second + 1, 3);
}

std::string evidenceValueText(const insights::InsightEvidenceValue& value) {
    if (value.textValue) {
        return *value.textValue;
    }
    const double number = value.numericValue.value_or(0.0);
    switch (value.unit) {
        case InsightEvidenceUnit::seconds:
            return insights::insightDurationText(number);
        case InsightEvidenceUnit::percent:
            return Tracking::formatFocusScore(number);
        case InsightEvidenceUnit::percentagePoints: {
            const long long points = insights::printedPoints(number);
            if (points == 0) {
                return "0 points";
            }
            return std::string(number > 0 ? "+" : "−") +
                   plural(static_cast<int>(points), "point", "points");
        }
        case InsightEvidenceUnit::count:
        case InsightEvidenceUnit::text:
            break;
    }
    return std::to_string(static_cast<long long>(roundHalfAwayFromZero(number)));
}

std::string activeDaysNeededText(int days) {
    if (days <= 0) {
        return {};
    }
    return "Study on " + plural(days, "more day", "more days") + " this week to unlock insights.";
}

InsightsView makeInsightsView(const InsightsData& data, const LocalCalendar& calendar) {
    const insights::WeeklyFigures& figures = data.week.figures;
    InsightsView view;
    view.weekTitle =
        receiptDayRangeText(figures.days.front().start, figures.days.back().start, calendar);
    view.isCurrentWeek = figures.period.dayIndex(data.now).has_value();

    view.studyTime = {shell::durationText(figures.studyTime), "studied this week", std::nullopt};
    view.sessions = {std::to_string(figures.sessions),
                     figures.sessions == 1 ? "session" : "sessions", std::nullopt};
    view.focusScore = {Tracking::formatFocusScore(figures.focusScore), "focus score", std::nullopt};
    if (!figures.focusScore) {
        view.focusScore.unavailable = std::string(Tracking::kNotEnoughEvidenceToShowScoreText);
    }
    view.activeDays = {std::to_string(figures.activeDays) + " of 7", "active days", std::nullopt};
    if (figures.sessions == 0) {
        view.emptyWeek = std::string(kEmptyWeekText);
    }

    fillCharts(view, figures);
    for (const insights::WeeklyFigures& week : data.week.trend) {
        view.focusTrend.points.push_back(
            {trendWeekLabel(week.period.start, calendar), week.focusScore});
    }
    view.subjects = lines(figures.subjects);
    view.topFocused = lines(figures.topFocused);
    view.topDistracting = lines(figures.topDistracting);

    view.locked = !data.week.availability.isReady();
    view.availabilityTitle = std::string(data.week.availability.title());
    view.availabilityMessage = data.week.availability.message();
    view.daysNeeded = activeDaysNeededText(data.week.availability.activeDaysNeeded());
    if (!view.locked) {
        for (const insights::LocalInsightFact& fact : data.week.facts) {
            if (!fact.isDismissed) {
                view.cards.push_back(cardOf(fact));
            }
        }
        if (view.cards.empty()) {
            view.noCards =
                std::string(data.week.facts.empty() ? kNoInsightsText : kAllInsightsDismissedText);
        }
    }

    view.personalBests = personalBests(data.standing.records, calendar);
    if (view.personalBests.empty()) {
        view.noPersonalBests = std::string(kNoPersonalBestsText);
    }
    view.year =
        makeYearCalendar(data.standing.year, data.now, data.standing.currentStreak, calendar);
    return view;
}

}  // namespace lumenote::ui::models
