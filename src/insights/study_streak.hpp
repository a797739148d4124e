// The current streak of days with study, read from the store: shared by the
// command line's `week` and weekly `receipt` and by the Insights page.
#pragma once

#include "foundation/dates.hpp"
#include "foundation/result.hpp"
#include "foundation/store_error.hpp"
#include "insights/analytics_count_rule.hpp"
#include "recording/session_history_reader.hpp"

namespace lumenote::insights {

// Days read per step when following the streak back in time.
inline constexpr int kStreakStepDays = 28;

// The number of consecutive local days with a session that counts for
// analytics at `now`, ending today (or yesterday, as currentStudyStreak
// counts it). Reads back four weeks at a time (sessions only, no segments)
// until a day without study ends the streak, so a long history costs only
// the weeks the streak spans. Fails with the store's error.
Result<int, StoreError> readCurrentStudyStreak(recording::SessionHistoryReader& reader,
                                               const LocalCalendar& calendar, Date now,
                                               const SetupTestSessionPredicate& isSetupTestSession);

}  // namespace lumenote::insights
