// The plain values the totals calculation reads and produces: accounting
// samples, reconciled contributions and the calculated totals of a session.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "foundation/dates.hpp"
#include "recording/enumerations.hpp"
#include "recording/tracking_calculation_version.hpp"

namespace lumenote::recording::TrackingCalculationService {

// What a stretch of time counts as in the totals: its classification; no input
// when the user gave no keyboard or mouse input (whatever the classification);
// system-excluded when the computer itself could not be observed (asleep,
// locked, another user active: source `system`, whatever the other fields say).
enum class AccountedState {
    focused,
    distracting,
    neutral,
    unclassified,
    ignored,
    noInput,
    systemExcluded
};

// One recorded stretch as the calculation sees it.
struct SessionAccountingSample {
    Date startDate;
    Date endDate;
    // Measured length in seconds, from the monotonic clock; may differ from
    // endDate - startDate when the wall clock jumped.
    double duration = 0.0;
    classification::ActivityClassification classification =
        classification::ActivityClassification::unclassified;
    bool isInactive = false;
    ActivitySourceType source = ActivitySourceType::application;
    // Bundle identifier, website hostname or upper-case PDF identity.
    std::string stableIdentifier;

    friend bool operator==(const SessionAccountingSample&,
                           const SessionAccountingSample&) = default;
};

// What one activity contributed after reconciliation: a piece of time in which
// no other stretch was counted. One sample may give several pieces when a
// stretch that outranks it cuts through it.
struct TrackingActivityContribution {
    std::string stableIdentifier;
    Date startDate;
    Date endDate;
    double duration = 0.0;  // seconds counted in the totals
    AccountedState classification = AccountedState::unclassified;
    ActivitySourceType source = ActivitySourceType::application;

    friend bool operator==(const TrackingActivityContribution&,
                           const TrackingActivityContribution&) = default;
};

// The totals of one session under one calculation version. Every duration is
// in seconds within 0 ... 3155760000.
struct TrackingCalculationResult {
    TrackingCalculationVersion version = kCurrentTrackingCalculationVersion;
    double focusedDuration = 0.0;
    double distractedDuration = 0.0;
    double neutralDuration = 0.0;
    double unclassifiedDuration = 0.0;
    double inactiveDuration = 0.0;  // no-input time, confirmed later or not
    double ignoredDuration = 0.0;
    double passiveStudyDuration = 0.0;    // v3 only; 0 under v1 and v2
    double confirmedBreakDuration = 0.0;  // v3 only; 0 under v1 and v2
    double systemExcludedDuration = 0.0;
    // Percentage 0 ... 100, unrounded; absent below one minute of evidence.
    std::optional<double> focusScore;
    // Evidence as a percentage of accounted time; absent below one second of
    // accounted time.
    std::optional<double> coverage;
    // Passive study as a percentage of confirmed time (v3); 0 when there is
    // less than one second of confirmed time.
    double studyShare = 0.0;
    // The reconciled pieces of time in time order (v1: one per placeable
    // sample, unreconciled, in start order).
    std::vector<TrackingActivityContribution> contributions;

    // Focused plus Distracted time: the evidence behind the score.
    double evidenceDuration() const;
    // Evidence plus Neutral, Unclassified and no-input time.
    double accountedDuration() const;
    // Focused, Distracted, Neutral, Unclassified, no-input and Ignored time.
    double classTotalDuration() const;
    bool isLowCoverage() const;

    friend bool operator==(const TrackingCalculationResult&,
                           const TrackingCalculationResult&) = default;
};

}  // namespace lumenote::recording::TrackingCalculationService
