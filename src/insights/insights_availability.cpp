#include "insights/insights_availability.hpp"

#include <fmt/format.h>

#include <array>

namespace lumenote::insights {

std::string_view InsightsAvailability::title() const {
    return isReady() ? "Insights are ready" : "Not enough study days yet";
}

std::string InsightsAvailability::message() const {
    if (isReady()) {
        return "Lumenote has enough local study data to describe patterns.";
    }
    return fmt::format(
        "Insights compare one week against another, so they need at least {} days of study "
        "before they can say anything true. Nothing is uploaded, and nothing is inferred from "
        "sparse data. You have studied on {} {}. Below that, a comparison would be describing "
        "noise, so Lumenote waits rather than guessing.",
        kActiveDaysToUnlockInsights, activeStudyDays, activeStudyDays == 1 ? "day" : "days");
}

InsightsAvailability insightsAvailability(const std::vector<SessionSnapshot>& sessions,
                                          const WeekPeriod& week) {
    InsightsAvailability availability;
    std::array<bool, kDaysPerWeek> active{};
    for (const SessionSnapshot& session : sessions) {
        if (const auto day = week.dayIndex(session.startDate)) {
            active[static_cast<std::size_t>(*day)] = true;
            ++availability.completedSessions;
        }
    }
    for (const bool day : active) {
        availability.activeStudyDays += day ? 1 : 0;
    }
    return availability;
}

}  // namespace lumenote::insights
