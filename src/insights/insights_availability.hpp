// Whether insights are unlocked for a week, and the title and message that
// say so.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "insights/session_snapshot.hpp"
#include "insights/week_period.hpp"

namespace lumenote::insights {

// Insights unlock at this many active study days in the selected week.
inline constexpr int kActiveDaysToUnlockInsights = 3;

struct InsightsAvailability {
    int activeStudyDays = 0;
    int completedSessions = 0;

    bool isReady() const { return activeStudyDays >= kActiveDaysToUnlockInsights; }
    // How many more active study days the week needs before insights unlock;
    // 0 once they are ready.
    int activeDaysNeeded() const {
        return activeStudyDays >= kActiveDaysToUnlockInsights
                   ? 0
                   : kActiveDaysToUnlockInsights - activeStudyDays;
    }
    // "Insights are ready" or "Not enough study days yet".
    std::string_view title() const;
    // The message under the title; the locked one names the active days with
    // "day" for exactly 1 and "days" otherwise.
    std::string message() const;
};

// The availability of `week` from its counting sessions: the local days with
// at least one session that started on them, and the number of sessions.
InsightsAvailability insightsAvailability(const std::vector<SessionSnapshot>& sessions,
                                          const WeekPeriod& week);

}  // namespace lumenote::insights
