#include "insights/analytics_count_rule.hpp"

#include <cmath>

namespace lumenote::insights {

bool countsForAnalytics(const recording::StudySession& session, Date now,
                        const SetupTestSessionPredicate& isSetupTestSession) {
    const auto status = session.status();
    if (status != recording::StudySessionStatus::completed &&
        status != recording::StudySessionStatus::interrupted) {
        return false;
    }
    const double start = session.startDate.secondsSinceReferenceDate;
    if (!std::isfinite(start) ||
        !(now.secondsSince(session.startDate) >= kMinimumAnalyticsSessionAgeSeconds)) {
        return false;
    }
    if (!(std::isfinite(session.timerDuration) &&
          session.timerDuration >= kMinimumAnalyticsTimerSeconds)) {
        return false;
    }
    return !(isSetupTestSession && isSetupTestSession(session));
}

}  // namespace lumenote::insights
