// Reading what the Insights page shows: the selected week's part and the
// part that stands whatever week is selected, each through the store's
// streamed walks and the core's own calculators.
#pragma once

#include <vector>

#include "foundation/dates.hpp"
#include "foundation/result.hpp"
#include "foundation/store_error.hpp"
#include "insights/insight_dismissal_document.hpp"
#include "recording/recording_store.hpp"
#include "recording/session_history_reader.hpp"
#include "ui/models/insights_view.hpp"

namespace lumenote::ui::models {

struct InsightsRequest {
    Date weekDate;  // any instant of the selected week
    Date now;       // what counts for analytics, today and the year's end
    unsigned firstWeekday = 1;
    // Below 1: no daily goal.
    long long dailyGoalMinutes = 0;
};

// The selected week: its sessions with every figure, the seven weeks before
// it by their totals (the trend and the insights' comparison) and the
// insights with the dismissals marked. Fails with the store's error.
Result<InsightsWeekData, StoreError> readInsightsWeek(
    recording::SessionHistoryReader& reader, const LocalCalendar& calendar,
    const InsightsRequest& request,
    const std::vector<insights::InsightDismissalRecord>& dismissals);

// The year calendar, the current streak and the personal records at
// `request.now` (the selected week plays no part). Fails with the store's
// error.
Result<InsightsStandingData, StoreError> readInsightsStanding(
    recording::SessionHistoryReader& reader, recording::RecordingStore& store,
    const LocalCalendar& calendar, const InsightsRequest& request);

// Both of the above. Fails with the store's error.
Result<InsightsData, StoreError> readInsightsData(
    recording::SessionHistoryReader& reader, recording::RecordingStore& store,
    const LocalCalendar& calendar, const InsightsRequest& request,
    const std::vector<insights::InsightDismissalRecord>& dismissals);

}  // namespace lumenote::ui::models
