#include "recording/session_figures.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "foundation/numeric.hpp"
#include "recording/focus_runs.hpp"
#include "recording/tracking_calculation.hpp"

namespace lumenote::recording {

std::string clockDurationText(double seconds) {
    const double whole = std::isfinite(seconds) ? std::floor(std::max(0.0, seconds)) : 0.0;
    const auto total = static_cast<long long>(std::min(whole, kMaximumDurationSeconds));
    return fmt::format("{}:{:02}:{:02}", total / 3600, total / 60 % 60, total % 60);
}

std::optional<double> storedCoverage(const StudySession& session) {
    const double evidence = session.focusedDuration + session.distractedDuration;
    const double accounted = evidence + session.neutralDuration + session.unclassifiedDuration() +
                             session.inactiveDuration;
    if (!std::isfinite(accounted) || accounted < 1.0) {
        return std::nullopt;
    }
    return percentRatio(evidence, accounted);
}

SessionRuns sessionRuns(const StudySession& session) {
    namespace Tracking = TrackingCalculationService;
    const auto calculated = Tracking::calculateSessionTotals(
        session, session.endDate.value_or(session.startDate.addingSeconds(session.timerDuration)),
        Tracking::effectiveCalculationVersion(session));
    return {Tracking::longestFocusedRun(calculated.contributions),
            Tracking::meaningfulInterruptionCount(calculated.contributions)};
}

}  // namespace lumenote::recording
