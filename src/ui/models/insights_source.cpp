#include "ui/models/insights_source.hpp"

#include "insights/local_insights.hpp"
#include "insights/session_snapshot.hpp"
#include "insights/study_streak.hpp"

namespace lumenote::ui::models {

namespace {

using insights::SessionSnapshot;
using insights::WeekPeriod;

// The figures of each of `weeks` from `sessions`, which may hold sessions of
// other weeks (each week reads only its own).
std::vector<insights::WeeklyFigures> figuresOf(const std::vector<WeekPeriod>& weeks,
                                               const std::vector<SessionSnapshot>& sessions,
                                               const LocalCalendar& calendar,
                                               long long dailyGoalMinutes) {
    std::vector<insights::WeeklyFigures> figures;
    figures.reserve(weeks.size());
    for (const WeekPeriod& week : weeks) {
        figures.push_back(
            insights::computeWeeklyFigures(sessions, week, calendar, dailyGoalMinutes));
    }
    return figures;
}

}  // namespace

Result<InsightsWeekData, StoreError> readInsightsWeek(
    recording::SessionHistoryReader& reader, const LocalCalendar& calendar,
    const InsightsRequest& request,
    const std::vector<insights::InsightDismissalRecord>& dismissals) {
    const unsigned firstWeekday = request.firstWeekday;
    const WeekPeriod week = insights::weekContaining(request.weekDate, calendar, firstWeekday);
    std::vector<WeekPeriod> trendWeeks{week};
    while (trendWeeks.size() < static_cast<std::size_t>(kFocusTrendWeeks)) {
        trendWeeks.insert(trendWeeks.begin(),
                          insights::previousWeek(trendWeeks.front(), calendar, firstWeekday));
    }
    auto selected = insights::readAnalyticsSnapshots(reader, week.range(), request.now, {});
    if (!selected) {
        return fail(selected.error());
    }
    auto earlier =
        insights::readAnalyticsSnapshots(reader, {trendWeeks.front().start, week.start},
                                         request.now, {}, insights::SnapshotDetail::totals);
    if (!earlier) {
        return fail(earlier.error());
    }
    InsightsWeekData data;
    data.figures =
        insights::computeWeeklyFigures(*selected, week, calendar, request.dailyGoalMinutes);
    std::vector<SessionSnapshot> trendSessions = *earlier;
    trendSessions.insert(trendSessions.end(), selected->begin(), selected->end());
    data.trend = figuresOf(trendWeeks, trendSessions, calendar, request.dailyGoalMinutes);
    data.availability = insights::insightsAvailability(*selected, week);
    const WeekPeriod& before = trendWeeks[trendWeeks.size() - 2];
    data.facts =
        insights::buildLocalInsights(*selected, *earlier, week, before, calendar, dismissals);
    return data;
}

Result<InsightsStandingData, StoreError> readInsightsStanding(
    recording::SessionHistoryReader& reader, recording::RecordingStore& store,
    const LocalCalendar& calendar, const InsightsRequest& request) {
    const std::vector<WeekPeriod> yearWeeks =
        yearCalendarWeeks(request.now, calendar, request.firstWeekday);
    auto yearSessions =
        insights::readAnalyticsSnapshots(reader, {yearWeeks.front().start, yearWeeks.back().end},
                                         request.now, {}, insights::SnapshotDetail::totals);
    if (!yearSessions) {
        return fail(yearSessions.error());
    }
    auto streak = insights::readCurrentStudyStreak(reader, calendar, request.now, {});
    if (!streak) {
        return fail(streak.error());
    }
    auto records = insights::readPersonalRecords(reader, store, request.now, {});
    if (!records) {
        return fail(records.error());
    }
    return InsightsStandingData{
        *records, figuresOf(yearWeeks, *yearSessions, calendar, request.dailyGoalMinutes), *streak};
}

Result<InsightsData, StoreError> readInsightsData(
    recording::SessionHistoryReader& reader, recording::RecordingStore& store,
    const LocalCalendar& calendar, const InsightsRequest& request,
    const std::vector<insights::InsightDismissalRecord>& dismissals) {
    auto week = readInsightsWeek(reader, calendar, request, dismissals);
    if (!week) {
        return fail(week.error());
    }
    auto standing = readInsightsStanding(reader, store, calendar, request);
    if (!standing) {
        return fail(standing.error());
    }
    return InsightsData{std::move(*week), std::move(*standing), request.now};
}

}  // namespace lumenote::ui::models
