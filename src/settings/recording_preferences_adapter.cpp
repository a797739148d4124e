#include "settings/recording_preferences_adapter.hpp"

namespace lumenote::settings {

std::optional<double> PreferencesForRecording::longSleepThreshold() const {
    const LongSleepPreference preference = store_.longSleep();
    if (preference == LongSleepPreference::never) {
        return std::nullopt;
    }
    return static_cast<double>(longSleepSeconds(preference));
}

}  // namespace lumenote::settings
