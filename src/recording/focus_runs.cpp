#include "recording/focus_runs.hpp"

#include <algorithm>
#include <functional>

#include "foundation/numeric.hpp"

namespace lumenote::recording::TrackingCalculationService {

namespace {

bool isAdjacent(const TrackingActivityContribution& previous,
                const TrackingActivityContribution& next) {
    return next.startDate.secondsSince(previous.endDate) <= kRunJoinToleranceSeconds;
}

// Calls `onRun(seconds, precededByFocus)` for each maximal run of adjacent
// pieces of `state`; `precededByFocus` tells whether Focused time came before
// the run since the last run that `onRun` accepted (returned true).
void forEachRun(const std::vector<TrackingActivityContribution>& contributions,
                AccountedState state, const std::function<bool(double, bool)>& onRun) {
    bool focusSeen = false;
    double run = 0.0;
    bool inRun = false;
    const auto closeRun = [&] {
        if (inRun && onRun(run, focusSeen)) {
            focusSeen = false;
        }
        inRun = false;
        run = 0.0;
    };
    for (std::size_t i = 0; i < contributions.size(); ++i) {
        const auto& piece = contributions[i];
        const bool continues = inRun && i > 0 && isAdjacent(contributions[i - 1], piece) &&
                               piece.classification == state;
        if (!continues) {
            closeRun();
        }
        if (piece.classification == state) {
            inRun = true;
            run = addClampedDuration(run, piece.duration);
        }
        if (piece.classification == AccountedState::focused && piece.duration > 0.0) {
            focusSeen = true;
        }
    }
    closeRun();
}

}  // namespace

double longestFocusedRun(const std::vector<TrackingActivityContribution>& contributions) {
    double longest = 0.0;
    forEachRun(contributions, AccountedState::focused, [&](double seconds, bool) {
        longest = std::max(longest, seconds);
        return false;
    });
    return longest;
}

int meaningfulInterruptionCount(const std::vector<TrackingActivityContribution>& contributions) {
    int count = 0;
    forEachRun(contributions, AccountedState::distracting, [&](double seconds, bool afterFocus) {
        if (afterFocus && seconds >= kMeaningfulInterruptionSeconds) {
            ++count;
            return true;
        }
        return false;
    });
    return count;
}

}  // namespace lumenote::recording::TrackingCalculationService
