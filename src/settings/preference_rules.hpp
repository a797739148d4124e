// The range and normalisation rules of the preferences, applied alike to a
// value read from the defaults domain and to a value being assigned.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "recording/enumerations.hpp"
#include "settings/preference_enumerations.hpp"

namespace lumenote::settings {

// The range of a seconds threshold and the value that replaces a non-finite one.
struct ThresholdRange {
    double lower;
    double upper;
    double fallback;
};

inline constexpr ThresholdRange kDefaultDurationRange{60.0, 86400.0, 1500.0};
inline constexpr ThresholdRange kPassiveStudyPromptRange{300.0, 3600.0, 300.0};
inline constexpr ThresholdRange kInactivityThresholdRange{90.0, 1800.0, 90.0};

// Non-finite becomes the fallback; at or below the lower bound the lower
// bound, at or above the upper bound the upper bound.
double clampedThreshold(double seconds, const ThresholdRange& range);

inline constexpr long long kMaximumDailyStudyGoalMinutes = 720;

// 0 (no goal) stays 0; anything else is clamped to 1 ... 720.
long long clampedDailyStudyGoal(long long minutes);

inline constexpr std::size_t kMaximumFirstNameCharacters = 40;

// Trimmed, inner white space collapsed to single spaces, then the first 40
// characters.
std::string normalisedFirstName(std::string_view name);

// A missing value is `mixedStudy`, but a stored string naming no mode is
// `computerBased`: the two fall-backs differ on purpose.
recording::StudySessionMode studyModeFromStored(const std::optional<std::string>& stored);

// Anything but "open_ended" is `timer`.
recording::SessionTimingMode timingModeFromStored(const std::optional<std::string>& stored);

// Anything but "light" or "dark" is `system`.
TallywiseAppearance appearanceFromStored(const std::optional<std::string>& stored);

// The only AI provider identifier there is: no phrasing provider exists.
inline constexpr std::string_view kNoAIProvider = "none";

}  // namespace lumenote::settings
