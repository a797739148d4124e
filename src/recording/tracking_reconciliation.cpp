#include "recording/tracking_reconciliation.hpp"

#include <algorithm>
#include <cmath>
#include <set>

#include "foundation/numeric.hpp"

namespace lumenote::recording::TrackingCalculationService {

namespace {

// Order in which equal-start intervals keep shared time (lower keeps it).
int tieRank(AccountedState state) {
    switch (state) {
        case AccountedState::distracting:
            return 0;
        case AccountedState::focused:
            return 1;
        case AccountedState::neutral:
            return 2;
        case AccountedState::unclassified:
            return 3;
        case AccountedState::ignored:
            return 4;
        case AccountedState::noInput:
            return 5;
        case AccountedState::systemExcluded:
            return 6;
    }
    return 7;
}

// True when interval `a` (at list position `ia`) keeps a moment that `b` also
// claims. A strict total order over positions, so it can order a set.
bool outranks(const Interval& a, std::size_t ia, const Interval& b, std::size_t ib) {
    const bool aSystem = a.classification == AccountedState::systemExcluded;
    const bool bSystem = b.classification == AccountedState::systemExcluded;
    if (aSystem != bSystem) {
        return aSystem;
    }
    if (a.start != b.start) {
        return a.start > b.start;
    }
    if (tieRank(a.classification) != tieRank(b.classification)) {
        return tieRank(a.classification) < tieRank(b.classification);
    }
    if (a.end != b.end) {
        return a.end > b.end;
    }
    if (a.source != b.source) {
        return static_cast<int>(a.source) < static_cast<int>(b.source);
    }
    if (a.stableIdentifier != b.stableIdentifier) {
        return a.stableIdentifier < b.stableIdentifier;
    }
    if (a.measuredDuration != b.measuredDuration) {
        return a.measuredDuration > b.measuredDuration;
    }
    return ia < ib;
}

// A run of consecutive slices kept by one interval: slices [firstSlice, endSlice).
struct Piece {
    std::size_t index;
    std::size_t firstSlice;
    std::size_t endSlice;
};

}  // namespace

AccountedState accountedState(const SessionAccountingSample& sample) {
    if (sample.source == ActivitySourceType::system) {
        return AccountedState::systemExcluded;
    }
    if (sample.isInactive) {
        return AccountedState::noInput;
    }
    switch (sample.classification) {
        case classification::ActivityClassification::focused:
            return AccountedState::focused;
        case classification::ActivityClassification::distracting:
            return AccountedState::distracting;
        case classification::ActivityClassification::neutral:
            return AccountedState::neutral;
        case classification::ActivityClassification::unclassified:
            return AccountedState::unclassified;
        case classification::ActivityClassification::ignored:
            return AccountedState::ignored;
    }
    return AccountedState::unclassified;
}

std::vector<Interval> placeIntervals(const std::vector<SessionAccountingSample>& samples) {
    std::vector<Interval> intervals;
    intervals.reserve(samples.size());
    for (const auto& sample : samples) {
        if (!std::isfinite(sample.startDate.secondsSinceReferenceDate)) {
            continue;
        }
        const double length = clampDuration(sample.duration);
        const Date end = sample.startDate.addingSeconds(length);
        if (!(end > sample.startDate)) {
            continue;
        }
        intervals.push_back(Interval{sample.startDate, end, accountedState(sample), sample.source,
                                     sample.stableIdentifier, length});
    }
    std::stable_sort(intervals.begin(), intervals.end(),
                     [](const Interval& a, const Interval& b) { return a.start < b.start; });
    return intervals;
}

std::vector<TrackingActivityContribution> reconcileIntervals(
    const std::vector<Interval>& intervals) {
    std::vector<double> positions;
    positions.reserve(intervals.size() * 2);
    for (const auto& interval : intervals) {
        if (interval.end > interval.start) {
            positions.push_back(interval.start.secondsSinceReferenceDate);
            positions.push_back(interval.end.secondsSinceReferenceDate);
        }
    }
    std::sort(positions.begin(), positions.end());
    positions.erase(std::unique(positions.begin(), positions.end()), positions.end());

    // Slice k is [positions[k], positions[k + 1]); an interval covers the
    // slices from the one it opens to the one it closes, exclusive.
    const auto sliceAt = [&](Date date) {
        return static_cast<std::size_t>(
            std::lower_bound(positions.begin(), positions.end(), date.secondsSinceReferenceDate) -
            positions.begin());
    };
    std::vector<std::vector<std::size_t>> opensAt(positions.size());
    std::vector<std::vector<std::size_t>> closesAt(positions.size());
    std::vector<std::size_t> spanned(intervals.size(), 0);
    for (std::size_t i = 0; i < intervals.size(); ++i) {
        if (!(intervals[i].end > intervals[i].start)) {
            continue;
        }
        const std::size_t open = sliceAt(intervals[i].start);
        const std::size_t close = sliceAt(intervals[i].end);
        opensAt[open].push_back(i);
        closesAt[close].push_back(i);
        spanned[i] = close - open;
    }

    const auto keepsFirst = [&](std::size_t a, std::size_t b) {
        return outranks(intervals[a], a, intervals[b], b);
    };
    std::set<std::size_t, decltype(keepsFirst)> active(keepsFirst);
    std::vector<std::size_t> won(intervals.size(), 0);
    std::vector<Piece> pieces;
    for (std::size_t k = 0; k + 1 < positions.size(); ++k) {
        for (std::size_t i : closesAt[k]) {
            active.erase(i);
        }
        for (std::size_t i : opensAt[k]) {
            active.insert(i);
        }
        if (active.empty()) {
            continue;
        }
        const std::size_t winner = *active.begin();
        ++won[winner];
        if (!pieces.empty() && pieces.back().index == winner && pieces.back().endSlice == k) {
            pieces.back().endSlice = k + 1;
        } else {
            pieces.push_back(Piece{winner, k, k + 1});
        }
    }

    std::vector<TrackingActivityContribution> contributions;
    contributions.reserve(pieces.size());
    for (const auto& piece : pieces) {
        const Interval& interval = intervals[piece.index];
        TrackingActivityContribution contribution{
            interval.stableIdentifier, interval.start,          interval.end,
            interval.measuredDuration, interval.classification, interval.source};
        if (won[piece.index] != spanned[piece.index]) {
            contribution.startDate = Date{positions[piece.firstSlice]};
            contribution.endDate = Date{positions[piece.endSlice]};
            contribution.duration =
                clampDuration(contribution.endDate.secondsSince(contribution.startDate));
        }
        contributions.push_back(std::move(contribution));
    }
    return contributions;
}

}  // namespace lumenote::recording::TrackingCalculationService
