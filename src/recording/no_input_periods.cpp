#include "recording/no_input_periods.hpp"

#include <algorithm>
#include <cmath>

namespace lumenote::recording {

namespace {

bool isFinite(Date date) {
    return std::isfinite(date.secondsSinceReferenceDate);
}

// The confirmation covering the piece [from, to] of a run, or none.
const ConfirmedNoInputInterval* coveringConfirmation(
    const std::vector<const ConfirmedNoInputInterval*>& candidates, Date from, Date to) {
    const ConfirmedNoInputInterval* chosen = nullptr;
    for (const auto* candidate : candidates) {
        if (candidate->startDate <= from && candidate->endDate >= to &&
            (chosen == nullptr || candidate->createdAt >= chosen->createdAt)) {
            chosen = candidate;
        }
    }
    return chosen;
}

NoInputPeriod periodOf(Date from, Date to, const ConfirmedNoInputInterval* confirmation) {
    NoInputPeriod period{from, to, std::nullopt, std::nullopt, std::nullopt};
    if (confirmation != nullptr) {
        period.confirmedState = confirmation->state();
        period.source = confirmation->source();
        period.confirmationID = confirmation->id;
    }
    return period;
}

void appendPeriod(std::vector<NoInputPeriod>& periods, NoInputPeriod period) {
    if (period.endDate.secondsSince(period.startDate) < kNoInputBoundaryToleranceSeconds) {
        return;
    }
    if (!periods.empty()) {
        auto& last = periods.back();
        const bool sameLabel = last.confirmationID == period.confirmationID;
        const bool touching =
            period.startDate.secondsSince(last.endDate) <= kNoInputBoundaryToleranceSeconds;
        if (sameLabel && touching) {
            last.endDate = std::max(last.endDate, period.endDate);
            return;
        }
    }
    periods.push_back(period);
}

void labelRun(const DateSpan& run, const std::vector<const ConfirmedNoInputInterval*>& inForce,
              std::vector<NoInputPeriod>& periods) {
    std::vector<const ConfirmedNoInputInterval*> overlapping;
    std::vector<Date> cuts{run.start, run.end};
    for (const auto* confirmation : inForce) {
        if (confirmation->startDate < run.end && confirmation->endDate > run.start) {
            overlapping.push_back(confirmation);
            for (Date cut : {confirmation->startDate, confirmation->endDate}) {
                if (cut > run.start && cut < run.end) {
                    cuts.push_back(cut);
                }
            }
        }
    }
    std::sort(cuts.begin(), cuts.end());
    cuts.erase(std::unique(cuts.begin(), cuts.end()), cuts.end());
    for (std::size_t i = 0; i + 1 < cuts.size(); ++i) {
        appendPeriod(periods, periodOf(cuts[i], cuts[i + 1],
                                       coveringConfirmation(overlapping, cuts[i], cuts[i + 1])));
    }
}

}  // namespace

double DateSpan::length() const {
    const double seconds = end.secondsSince(start);
    return seconds > 0.0 ? seconds : 0.0;
}

std::vector<DateSpan> noInputRuns(const std::vector<ActivitySegment>& segments) {
    std::vector<DateSpan> placed;
    for (const auto& segment : segments) {
        if (!segment.isInactive || segment.activitySource() == ActivitySourceType::system ||
            !isFinite(segment.startDate) || !std::isfinite(segment.duration) ||
            segment.duration <= 0.0) {
            continue;
        }
        placed.push_back({segment.startDate, segment.startDate.addingSeconds(segment.duration)});
    }
    std::sort(placed.begin(), placed.end(),
              [](const DateSpan& a, const DateSpan& b) { return a.start < b.start; });
    std::vector<DateSpan> runs;
    for (const auto& span : placed) {
        if (!runs.empty() &&
            span.start.secondsSince(runs.back().end) <= kNoInputBoundaryToleranceSeconds) {
            runs.back().end = std::max(runs.back().end, span.end);
        } else {
            runs.push_back(span);
        }
    }
    return runs;
}

std::vector<NoInputPeriod> noInputPeriodsOfRuns(
    const std::vector<DateSpan>& runs, const std::vector<ConfirmedNoInputInterval>& confirmations) {
    std::vector<const ConfirmedNoInputInterval*> inForce;
    for (const auto& confirmation : confirmations) {
        if (confirmation.isInForce() && isFinite(confirmation.startDate) &&
            isFinite(confirmation.endDate)) {
            inForce.push_back(&confirmation);
        }
    }
    std::vector<NoInputPeriod> periods;
    for (const auto& run : runs) {
        labelRun(run, inForce, periods);
    }
    return periods;
}

std::vector<NoInputPeriod> noInputPeriods(const StudySession& session) {
    return noInputPeriodsOfRuns(noInputRuns(session.segments), session.confirmedNoInputIntervals);
}

}  // namespace lumenote::recording
