#include "settings/preference_rules.hpp"

#include <algorithm>
#include <cmath>

#include "foundation/text.hpp"

namespace lumenote::settings {

double clampedThreshold(double seconds, const ThresholdRange& range) {
    if (!std::isfinite(seconds)) {
        return range.fallback;
    }
    return std::clamp(seconds, range.lower, range.upper);
}

long long clampedDailyStudyGoal(long long minutes) {
    if (minutes == 0) {
        return 0;
    }
    return std::clamp(minutes, 1LL, kMaximumDailyStudyGoalMinutes);
}

std::string normalisedFirstName(std::string_view name) {
    return text::prefixCharacters(text::collapsingWhiteSpace(name), kMaximumFirstNameCharacters);
}

recording::StudySessionMode studyModeFromStored(const std::optional<std::string>& stored) {
    if (!stored) {
        return recording::StudySessionMode::mixedStudy;
    }
    return fromRawValue<recording::StudySessionMode>(*stored).value_or(
        recording::StudySessionMode::computerBased);
}

recording::SessionTimingMode timingModeFromStored(const std::optional<std::string>& stored) {
    if (!stored) {
        return recording::SessionTimingMode::timer;
    }
    return fromRawValue<recording::SessionTimingMode>(*stored).value_or(
        recording::SessionTimingMode::timer);
}

TallywiseAppearance appearanceFromStored(const std::optional<std::string>& stored) {
    if (!stored) {
        return TallywiseAppearance::system;
    }
    return fromRawValue<TallywiseAppearance>(*stored).value_or(TallywiseAppearance::system);
}

}  // namespace lumenote::settings
