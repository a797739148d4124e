#include "recording/tracking_calculation.hpp"

#include <algorithm>
#include <array>
#include <cmath>

#include "foundation/numeric.hpp"
#include "recording/tracking_reconciliation.hpp"

namespace lumenote::recording::TrackingCalculationService {

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

bool isClass(AccountedState state) {
    return std::find(kClasses.begin(), kClasses.end(), state) != kClasses.end();
}

// Takes up to `excess` seconds from the time that lies after `sessionEnd`,
// latest first; returns what is left of the excess. A cut piece ends where its
// remaining time ends (at the session's end when all of its later part went);
// a piece cut to nothing is dropped.
double cutAfterSessionEnd(TrackingCalculationResult& result, Date sessionEnd, double excess) {
    auto& pieces = result.contributions;
    for (auto piece = pieces.rbegin(); piece != pieces.rend() && excess > 0.0; ++piece) {
        if (!isClass(piece->classification) || !(piece->endDate > sessionEnd)) {
            continue;
        }
        const double span = piece->endDate.secondsSince(piece->startDate);
        const double after = piece->endDate.secondsSince(std::max(piece->startDate, sessionEnd));
        const double portion =
            span > 0.0 ? piece->duration * std::min(1.0, after / span) : piece->duration;
        const double cut = std::min(portion, excess);
        if (cut >= portion) {
            piece->endDate = std::max(piece->startDate, sessionEnd);
        } else if (span > 0.0 && piece->duration > 0.0) {
            piece->endDate = piece->endDate.addingSeconds(-cut * span / piece->duration);
        }
        piece->duration -= cut;
        totalFor(result, piece->classification) -= cut;
        excess -= cut;
    }
    std::erase_if(pieces, [](const TrackingActivityContribution& piece) {
        return isClass(piece.classification) && !(piece.duration > 0.0);
    });
    return excess;
}

void limitToAccountable(TrackingCalculationResult& result, double limit, Date sessionEnd) {
    double excess = result.classTotalDuration() - limit;
    if (!(excess > 0.0)) {
        return;
    }
    excess = cutAfterSessionEnd(result, sessionEnd, excess);
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

// Moments already counted for a confirmation, as sorted disjoint spans.
class CoveredTime {
  public:
    // The seconds of [start, end] not covered yet; they become covered.
    double cover(Date start, Date end) {
        double uncovered = 0.0;
        Date cursor = start;
        auto span = std::lower_bound(spans_.begin(), spans_.end(), start,
                                     [](const Span& s, Date at) { return s.second < at; });
        auto first = span;
        for (; span != spans_.end() && span->first <= end; ++span) {
            if (span->first > cursor) {
                uncovered += span->first.secondsSince(cursor);
            }
            cursor = std::max(cursor, span->second);
            start = std::min(start, span->first);
        }
        if (end > cursor) {
            uncovered += end.secondsSince(cursor);
        }
        const Date merged = std::max(end, cursor);
        span = spans_.erase(first, span);
        spans_.insert(span, Span{start, merged});
        return uncovered;
    }

  private:
    using Span = std::pair<Date, Date>;
    std::vector<Span> spans_;
};

void addConfirmedTime(TrackingCalculationResult& result,
                      const std::vector<ConfirmedStudyInterval>& confirmedIntervals) {
    CoveredTime covered;
    for (auto interval = confirmedIntervals.rbegin(); interval != confirmedIntervals.rend();
         ++interval) {
        const double span = clampDuration(interval->endDate.secondsSince(interval->startDate));
        if (!(span > 0.0)) {
            continue;
        }
        const double length = clampDuration(covered.cover(interval->startDate, interval->endDate));
        double& sum = interval->state == ConfirmedStudyState::passiveStudy
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
    limitToAccountable(result, limit, sessionEndOrNow);
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

}  // namespace lumenote::recording::TrackingCalculationService
