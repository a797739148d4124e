#include "settings/preference_enumerations.hpp"

namespace lumenote::settings {

long long longSleepSeconds(LongSleepPreference preference) {
    switch (preference) {
        case LongSleepPreference::fiveMinutes:
            return 300;
        case LongSleepPreference::tenMinutes:
            return 600;
        case LongSleepPreference::thirtyMinutes:
            return 1800;
        case LongSleepPreference::never:
            return 0;
    }
    return 600;
}

LongSleepPreference longSleepPreferenceFromStored(std::optional<long long> storedSeconds) {
    if (storedSeconds == 0) {
        return LongSleepPreference::never;
    }
    if (storedSeconds == 300) {
        return LongSleepPreference::fiveMinutes;
    }
    if (storedSeconds == 1800) {
        return LongSleepPreference::thirtyMinutes;
    }
    return LongSleepPreference::tenMinutes;
}

std::optional<int> durationChoiceMinutes(DurationChoice choice) {
    switch (choice) {
        case DurationChoice::fifteen:
            return 15;
        case DurationChoice::twentyFive:
            return 25;
        case DurationChoice::fortyFive:
            return 45;
        case DurationChoice::sixty:
            return 60;
        case DurationChoice::ninety:
            return 90;
        case DurationChoice::custom:
            return std::nullopt;
    }
    return std::nullopt;
}

}  // namespace lumenote::settings
