// Whether a session counts for analytics at a given moment: the gate the
// end-of-session celebration uses. The weekly figures will add their own
// conditions to this rule.
#pragma once

#include <functional>

#include "foundation/dates.hpp"
#include "recording/session_records.hpp"

namespace lumenote::insights {

// A session must have started at least this many seconds before the check.
inline constexpr double kMinimumAnalyticsSessionAgeSeconds = 300.0;

// Tells the application's own set-up test sessions apart; supplied by the
// set-up flow that records them. An empty predicate means there are none.
using SetupTestSessionPredicate = std::function<bool(const recording::StudySession&)>;

// True when the session's start date is finite and at least 300 seconds before
// `now`, and the session is not a set-up test session.
bool countsForAnalytics(const recording::StudySession& session, Date now,
                        const SetupTestSessionPredicate& isSetupTestSession);

}  // namespace lumenote::insights
