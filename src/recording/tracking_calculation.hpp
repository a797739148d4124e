// TrackingCalculationService: a session's totals, focus score and coverage
// under each calculation version. Pure functions over plain values.
//
// v1, the method of sessions recorded before v2: readers show a v1 session's
// stored totals as they are. When asked to compute under v1 (a recalculation
// of such a session), each sample's measured duration is added to its class as
// recorded: overlaps are not reconciled, the accountable duration is not
// applied and confirmed intervals are not read.
//
// v2: samples are placed and reconciled (tracking_reconciliation.hpp) so that
// no moment counts twice; system stretches count as system-excluded time, in
// no class. Then the six class totals are limited to the accountable duration.
// When their sum exceeds it the excess is taken first from time placed after
// the session's end date, latest first (a session ended where a long run
// without input began keeps everything recorded after that moment, which the
// timer no longer counts), and then, in this order, from
//   Ignored (time the user chose not to count), no input (nothing was observed
//   then), Unclassified, Neutral,
// and only when the evidence alone is above the limit are Focused and
// Distracted cut, both by the same factor: the evidence behind the score is
// kept whole as long as possible and the score does not move when it is cut.
// Contributions of a class that was cut have their durations scaled by the
// same factor (their dates stay). System-excluded time is not limited: the
// timer may leave out a long sleep that the timeline still records.
//
// v3: the v2 totals, score and coverage unchanged, plus confirmed passive study
// and Break time from the confirmed intervals and the study share. A moment
// covered by several confirmations counts once, for the newest of them (the
// last in the list), so overlapping confirmations never add up to more than
// their union, whichever path stored them (a live away period and the no-input
// time an offline session declares, a restored backup).
//
// Evidence is Focused + Distracted time. The score (unrounded) exists from 60
// seconds of evidence. Coverage is the evidence as a percentage of accounted
// time: evidence + Neutral + Unclassified + all no-input time, confirmed later
// or not, so that a confirmation changes neither the score nor its coverage.
// Ignored and system-excluded time are left out. Like every percentage it
// needs a denominator of at least one second, else it is absent.
#pragma once

#include <vector>

#include "recording/session_records.hpp"
#include "recording/tracking_calculation_types.hpp"

namespace lumenote::recording::TrackingCalculationService {

// Seconds of evidence from which a focus score exists and is shown.
inline constexpr double kMinimumScoreEvidenceSeconds = 60.0;
// Coverage below this percentage is low coverage.
inline constexpr double kLowCoveragePercent = 50.0;

// The sample of a stored segment. Its stable identifier is the hostname for a
// website, the upper-case PDF identity for a local PDF and the bundle
// identifier otherwise (also when a website or PDF segment lacks its field).
SessionAccountingSample makeAccountingSample(const ActivitySegment& segment);
std::vector<SessionAccountingSample> makeAccountingSamples(
    const std::vector<ActivitySegment>& segments);

// Totals of the samples under `version`. `sessionStart` and `sessionEndOrNow`
// are wall-clock dates; `accountableDuration` is the session timer's seconds
// (pauses excluded). An accountable duration that is not a finite number falls
// back to the wall-clock span from start to end (0 when that is not finite
// either). `confirmedIntervals` must be the confirmations in force; only v3
// reads them, oldest first (confirmedStudyIntervalsInForce gives that order).
// Never fails: bad numbers count 0 as described above.
TrackingCalculationResult calculateTotals(
    const std::vector<SessionAccountingSample>& samples,
    const std::vector<ConfirmedStudyInterval>& confirmedIntervals, Date sessionStart,
    Date sessionEndOrNow, double accountableDuration, TrackingCalculationVersion version);

// The version a stored session is read under: its own, v1 when it has none.
TrackingCalculationVersion effectiveCalculationVersion(const StudySession& session);

// Totals of a stored session from its segments and confirmations in force,
// up to its end date (or `now` while it is live), under `version`.
TrackingCalculationResult calculateSessionTotals(const StudySession& session, Date now,
                                                 TrackingCalculationVersion version);

// Writes the totals, score and version into the session's stored fields.
// Passive study and Break are written under v3 and cleared otherwise.
void applyTotals(const TrackingCalculationResult& result, StudySession& session);

}  // namespace lumenote::recording::TrackingCalculationService
