// The insights engine: at most six short, evidence-gated statements about the
// sessions of a selected local-calendar week (and, for the trend, the week
// before it). Pure: the caller reads the sessions and the dismissals.
//
// Decisions of this engine:
// - "Completed sessions" are the finished sessions that count for analytics
//   (completed or interrupted, analytics_count_rule.hpp): an interrupted
//   session ended at its last confirmed boundary and its time is real. The
//   focus trend reads only versioned ones (a stored calculation version).
// - Durations in statements read "1 h 25 min" (insight_text.hpp); weekdays
//   by their English names.
// - The strongest study day is the day with the most Focused time; ties go to
//   the earlier day of the week; a week without Focused time has none.
// - The top subject is the one with the most study time, the common
//   distraction the activity with the most Distracted time; ties go to the
//   label that sorts first (byte order).
// - Besides the listed keys, the strongest day carries "weekday" and
//   "focusedDuration", the top subject "subject", and the distraction
//   "activityLabel" and "recordedIntervals": the statements rest on them.
//   Every kind adds "calculationVersions" ("Mixed calculation versions") when
//   its sessions were computed under more than one version, and
//   "unversionedSessions" ("Calculation method unavailable") when some have
//   no stored version (they are read as v1 and listed as v1).
// - Quality is graded by gradeEvidenceQuality from the sample size and the
//   active days of the selected week.
#pragma once

#include <vector>

#include "insights/insight_dismissal_document.hpp"
#include "insights/local_insight_types.hpp"
#include "insights/session_snapshot.hpp"
#include "insights/week_period.hpp"

namespace lumenote::insights {

// Seconds of Focused + Distracted time, and of a Focused run or of
// Distracted intervals, that the statements need at least.
inline constexpr double kMinimumInsightEvidenceSeconds = 60.0;
// A focus-score difference within this many points either way is similar.
inline constexpr double kSimilarFocusBandPoints = 1.0;

// The statements for `selectedWeek`, in kind order; kinds whose minimum is not
// met are left out. `selected` and `previous` are the counting sessions
// (readAnalyticsSnapshots); sessions outside their week are ignored. Only the
// totals of `previous` are compared, so it may be read with
// SnapshotDetail::totals, without its segments. A fact
// is marked dismissed when `dismissals` hold its id with its current
// evidence revision. Availability is not checked here (see
// insights_availability.hpp).
std::vector<LocalInsightFact> buildLocalInsights(
    const std::vector<SessionSnapshot>& selected, const std::vector<SessionSnapshot>& previous,
    const WeekPeriod& selectedWeek, const WeekPeriod& previousWeek, const LocalCalendar& calendar,
    const std::vector<InsightDismissalRecord>& dismissals);

}  // namespace lumenote::insights
