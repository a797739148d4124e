#include "recording/no_input_prompt.hpp"

#include <algorithm>
#include <cmath>

#include <fmt/format.h>

#include "foundation/numeric.hpp"
#include "recording/no_input_periods.hpp"

namespace lumenote::recording {

namespace {

constexpr long long kSecondsPerDay = 86400;

std::string minutesQuestion(double seconds) {
    const double known = std::isnan(seconds) || seconds < 0.0 ? 0.0 : seconds;
    const double minutes = roundHalfAwayFromZero(known / 60.0);
    return fmt::format("You had no computer input for {} minute{}. What were you doing?",
                       static_cast<long long>(std::max(minutes, 1.0)), minutes > 1.0 ? "s" : "");
}

}  // namespace

double promptDuration(const NoInputClassificationPrompt& prompt) {
    return prompt.endDate.secondsSince(prompt.startDate);
}

bool asksToEndSession(const NoInputClassificationPrompt& prompt) {
    return promptDuration(prompt) >= kEndSessionQuestionSeconds;
}

std::string shortLocalTime(Date date, const LocalCalendar& calendar) {
    const Date known = std::isfinite(date.secondsSinceReferenceDate) ? date : Date{};
    const auto unix = static_cast<long long>(std::floor(known.unixSeconds()));
    const long long local = unix + calendar.utcOffsetSeconds(known);
    const long long ofDay = ((local % kSecondsPerDay) + kSecondsPerDay) % kSecondsPerDay;
    return fmt::format("{:02}:{:02}", ofDay / 3600, ofDay % 3600 / 60);
}

std::string noInputPromptText(const NoInputClassificationPrompt& prompt,
                              const LocalCalendar& calendar) {
    if (!asksToEndSession(prompt)) {
        return minutesQuestion(promptDuration(prompt));
    }
    return fmt::format("No meaningful activity was recorded after {}. End the session there?",
                       shortLocalTime(prompt.startDate, calendar));
}

std::string shortUnconfirmedGapsSummary(std::size_t count) {
    return fmt::format("{} short unconfirmed gap{}", count, count == 1 ? "" : "s");
}

std::size_t countShortUnconfirmedGaps(const StudySession& session, double promptThresholdSeconds,
                                      double inactivityThresholdSeconds) {
    const double lead =
        std::isfinite(inactivityThresholdSeconds) ? std::max(inactivityThresholdSeconds, 0.0) : 0.0;
    std::size_t count = 0;
    for (const auto& run : noInputRuns(session.segments)) {
        if (run.length() < kNoInputBoundaryToleranceSeconds ||
            !(run.length() + lead < promptThresholdSeconds)) {
            continue;
        }
        const auto periods = noInputPeriodsOfRuns({run}, session.confirmedNoInputIntervals);
        const bool confirmed = std::any_of(periods.begin(), periods.end(),
                                           [](const auto& p) { return p.confirmedState; });
        if (!confirmed) {
            ++count;
        }
    }
    return count;
}

}  // namespace lumenote::recording
