// The enumerations the preferences store keeps: the appearance, the long-sleep
// threshold, and the quick duration choices of the session set-up form.
#pragma once

#include <array>
#include <optional>
#include <string_view>
#include <utility>

#include "foundation/raw_enum.hpp"

namespace lumenote::settings {

enum class TallywiseAppearance { system, light, dark };

}  // namespace lumenote::settings

// Raw values are specialised where the template lives.
namespace lumenote {

template <>
struct RawValues<settings::TallywiseAppearance> {
    using E = settings::TallywiseAppearance;
    static constexpr std::array<std::pair<E, std::string_view>, 3> entries{{
        {E::system, "system"},
        {E::light, "light"},
        {E::dark, "dark"},
    }};
};

}  // namespace lumenote

namespace lumenote::settings {

// How long a system sleep must last before the session treats it as a long
// sleep. Stored as its whole number of seconds, 0 for never.
enum class LongSleepPreference { fiveMinutes, tenMinutes, thirtyMinutes, never };

// The stored seconds of a choice: 300, 600, 1800 or 0.
long long longSleepSeconds(LongSleepPreference preference);

// The choice a stored value stands for: 0 is never, 300 five minutes, 1800
// thirty minutes; every other integer (600 included) and a missing or
// non-integer value is ten minutes.
LongSleepPreference longSleepPreferenceFromStored(std::optional<long long> storedSeconds);

// The quick choices of the session set-up form; `custom` takes minutes typed
// by the user. Not stored by the preferences.
enum class DurationChoice { fifteen, twentyFive, fortyFive, sixty, ninety, custom };

// 15, 25, 45, 60 or 90 minutes; nullopt for `custom`.
std::optional<int> durationChoiceMinutes(DurationChoice choice);

}  // namespace lumenote::settings
