// Reading what the Insights page shows for a week: the week's sessions with
// every figure, the seven weeks before it by their totals (the trend and the
// insights' comparison), the last twelve months by their totals (the year
// calendar), the current streak and the personal records, all through the
// store's streamed walks and the core's own calculators.
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

// Fails with the store's error.
Result<InsightsData, StoreError> readInsightsData(
    recording::SessionHistoryReader& reader, recording::RecordingStore& store,
    const LocalCalendar& calendar, const InsightsRequest& request,
    const std::vector<insights::InsightDismissalRecord>& dismissals);

}  // namespace lumenote::ui::models
