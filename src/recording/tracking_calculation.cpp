#include "recording/tracking_calculation.hpp"

#include <algorithm>
#include <array>
#include <cmath>

#include "foundation/numeric.hpp"
#include "recording/tracking_reconciliation.hpp"

namespace lumenote::TrackingCalculationService {

namespace {

double& totalFor(TrackingCalculationResult& result, AccountedState state) {
    switch (state) {
        case AccountedState::focused:
            return result.focusedDuration;
        case AccountedState::distracting:
            return result.distractedDuration;
        case AccountedState::neutral:
            return result.neutralDuration;
        case AccountedState::unclassified:
            return result.unclassifiedDuration;
        case AccountedState::ignored:
            return result.ignoredDuration;
        case AccountedState::noInput:
            return result.inactiveDuration;
        case AccountedState::systemExcluded:
            break;
    }
    return result.systemExcludedDuration;
}

void addContributions(TrackingCalculationResult& result) {
    for (const auto& contribution : result.contributions) {
        double& total = totalFor(result, contribution.classification);
        total = addClampedDuration(total, contribution.duration);
    }
}

// Classes cut back, in this order, when the class totals exceed the limit.
constexpr std::array<AccountedState, 4> kCutOrder{AccountedState::ignored, AccountedState::noInput,
                                                  AccountedState::unclassified,
                                                  AccountedState::neutral};

constexpr std::array<AccountedState, 6> kClasses{
    AccountedState::focused,      AccountedState::distracting, AccountedState::neutral,
    AccountedState::unclassified, AccountedState::ignored,     AccountedState::noInput};

void limitToAccountable(TrackingCalculationResult& result, double limit) {
    double excess = result.classTotalDuration() - limit;
    if (!(excess > 0.0)) {
        return;
    }
    std::array<double, kClasses.size()> before{};
    for (std::size_t i = 0; i < kClasses.size(); ++i) {
        before[i] = totalFor(result, kClasses[i]);
    }
    for (AccountedState state : kCutOrder) {
        double& total = totalFor(result, state);
        const double cut = std::min(total, excess);
        total -= cut;
        excess -= cut;
    }
    if (excess > 0.0) {
        const double evidence = result.evidenceDuration();
        const double kept = std::max(0.0, evidence - excess);
        const double factor = evidence > 0.0 ? kept / evidence : 0.0;
        result.focusedDuration *= factor;
        result.distractedDuration = std::max(0.0, kept - result.focusedDuration);
    }
    for (auto& contribution : result.contributions) {
        const auto at = std::find(kClasses.begin(), kClasses.end(), contribution.classification);
        if (at == kClasses.end()) {
            continue;
        }
        const double previous = before[static_cast<std::size_t>(at - kClasses.begin())];
        const double now = totalFor(result, contribution.classification);
        contribution.duration = previous > 0.0 ? contribution.duration * (now / previous) : 0.0;
    }
}

void addConfirmedTime(TrackingCalculationResult& result,
                      const std::vector<ConfirmedStudyInterval>& confirmedIntervals) {
    for (const auto& interval : confirmedIntervals) {
        const double length = clampDuration(interval.endDate.secondsSince(interval.startDate));
        double& sum = interval.state == ConfirmedStudyState::passiveStudy
                          ? result.passiveStudyDuration
                          : result.confirmedBreakDuration;
        sum = addClampedDuration(sum, length);
    }
    const double confirmed =
        addClampedDuration(result.passiveStudyDuration, result.confirmedBreakDuration);
    result.studyShare =
        confirmed >= 1.0 ? percentRatio(result.passiveStudyDuration, confirmed) : 0.0;
}

void scoreEvidence(TrackingCalculationResult& result) {
    const double evidence = result.evidenceDuration();
    if (evidence >= kMinimumScoreEvidenceSeconds) {
        result.focusScore = percentRatio(result.focusedDuration, evidence);
    }
    const double accounted = result.accountedDuration();
    if (accounted >= 1.0) {
        result.coverage = percentRatio(evidence, accounted);
    }
}

// v1 places each sample as recorded, without reconciliation.
std::vector<TrackingActivityContribution> unreconciledContributions(
    const std::vector<SessionAccountingSample>& samples) {
    std::vector<TrackingActivityContribution> contributions;
    for (const auto& interval : placeIntervals(samples)) {
        contributions.push_back(TrackingActivityContribution{
            interval.stableIdentifier, interval.start, interval.end, interval.measuredDuration,
            interval.classification, interval.source});
    }
    return contributions;
}

}  // namespace

double TrackingCalculationResult::evidenceDuration() const {
    return addClampedDuration(focusedDuration, distractedDuration);
}

double TrackingCalculationResult::accountedDuration() const {
    double sum = evidenceDuration();
    sum = addClampedDuration(sum, neutralDuration);
    sum = addClampedDuration(sum, unclassifiedDuration);
    return addClampedDuration(sum, inactiveDuration);
}

double TrackingCalculationResult::classTotalDuration() const {
    return addClampedDuration(accountedDuration(), ignoredDuration);
}

bool TrackingCalculationResult::isLowCoverage() const {
    return coverage.has_value() && *coverage < kLowCoveragePercent;
}

SessionAccountingSample makeAccountingSample(const ActivitySegment& segment) {
    SessionAccountingSample sample{segment.startDate,       segment.endDate,
                                   segment.duration,        segment.classification(),
                                   segment.isInactive,      segment.activitySource(),
                                   segment.bundleIdentifier};
    if (sample.source == ActivitySourceType::website && segment.hostname) {
        sample.stableIdentifier = *segment.hostname;
    } else if (sample.source == ActivitySourceType::localPDF && segment.pdfIdentifier) {
        sample.stableIdentifier = segment.pdfIdentifier->upperString();
    }
    return sample;
}

std::vector<SessionAccountingSample> makeAccountingSamples(
    const std::vector<ActivitySegment>& segments) {
    std::vector<SessionAccountingSample> samples;
    samples.reserve(segments.size());
    for (const auto& segment : segments) {
        samples.push_back(makeAccountingSample(segment));
    }
    return samples;
}

TrackingCalculationResult calculateTotals(
    const std::vector<SessionAccountingSample>& samples,
    const std::vector<ConfirmedStudyInterval>& confirmedIntervals, Date sessionStart,
    Date sessionEndOrNow, double accountableDuration, TrackingCalculationVersion version) {
    TrackingCalculationResult result;
    result.version = version;
    if (version == TrackingCalculationVersion::v1) {
        result.contributions = unreconciledContributions(samples);
        for (const auto& sample : samples) {
            double& total = totalFor(result, accountedState(sample));
            total = addClampedDuration(total, sample.duration);
        }
        scoreEvidence(result);
        return result;
    }

    result.contributions = reconcileIntervals(placeIntervals(samples));
    addContributions(result);
    const double limit = std::isfinite(accountableDuration)
                             ? clampDuration(accountableDuration)
                             : clampDuration(sessionEndOrNow.secondsSince(sessionStart));
    limitToAccountable(result, limit);
    scoreEvidence(result);
    if (version == TrackingCalculationVersion::v3) {
        addConfirmedTime(result, confirmedIntervals);
    }
    return result;
}

TrackingCalculationVersion effectiveCalculationVersion(const StudySession& session) {
    return session.calculationVersion().value_or(TrackingCalculationVersion::v1);
}

TrackingCalculationResult calculateSessionTotals(const StudySession& session, Date now,
                                                 TrackingCalculationVersion version) {
    return calculateTotals(makeAccountingSamples(session.segments),
                           confirmedStudyIntervalsInForce(session.confirmedNoInputIntervals),
                           session.startDate, session.endDate.value_or(now), session.timerDuration,
                           version);
}

void applyTotals(const TrackingCalculationResult& result, StudySession& session) {
    session.focusedDuration = result.focusedDuration;
    session.distractedDuration = result.distractedDuration;
    session.neutralDuration = result.neutralDuration;
    session.setUnclassifiedDuration(result.unclassifiedDuration);
    session.inactiveDuration = result.inactiveDuration;
    session.setIgnoredDuration(result.ignoredDuration);
    if (result.version == TrackingCalculationVersion::v3) {
        session.setPassiveStudyDuration(result.passiveStudyDuration);
        session.setConfirmedBreakDuration(result.confirmedBreakDuration);
    } else {
        session.passiveStudyDurationStorage.reset();
        session.confirmedBreakDurationStorage.reset();
    }
    session.setSystemExcludedDuration(result.systemExcludedDuration);
    session.focusScore = result.focusScore;
    session.setCalculationVersion(result.version);
}

}  // namespace lumenote::TrackingCalculationService
