// Whether a session counts for analytics at a given moment: the one rule that
// the weekly figures, the insights and the end-of-session celebration share.
#pragma once

#include <functional>

#include "foundation/dates.hpp"
#include "recording/session_records.hpp"

namespace lumenote::insights {

// A session must have started at least this many seconds before the check.
inline constexpr double kMinimumAnalyticsSessionAgeSeconds = 300.0;
// A session must have at least this many seconds of timer time (pauses
// excluded): a session started and ended at once says nothing about study.
inline constexpr double kMinimumAnalyticsTimerSeconds = 60.0;

// Tells the application's own set-up test sessions apart; supplied by the
// set-up flow that records them. An empty predicate means there are none.
using SetupTestSessionPredicate = std::function<bool(const recording::StudySession&)>;

// True when the session
//   - is finished: completed, or interrupted (ended at its last confirmed
//     boundary after a crash); running and paused sessions never count,
//   - has a finite start date at least 300 seconds before `now`,
//   - has a finite timer time of at least 60 seconds,
//   - and is not a set-up test session.
bool countsForAnalytics(const recording::StudySession& session, Date now,
                        const SetupTestSessionPredicate& isSetupTestSession);

}  // namespace lumenote::insights
