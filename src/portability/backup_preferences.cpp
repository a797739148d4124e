#include "portability/backup_preferences.hpp"

#include "settings/preference_enumerations.hpp"

namespace lumenote::portability {

BackupPreferences backupPreferencesOf(const settings::PreferencesStore& preferences) {
    BackupPreferences backup;
    backup.appearance = std::string(rawValue(preferences.appearance()));
    backup.defaultDuration = preferences.defaultDuration();
    backup.inactivityThreshold = preferences.inactivityThreshold();
    backup.longSleep = settings::longSleepSeconds(preferences.longSleep());
    backup.notificationsEnabled = preferences.notificationsEnabled();
    backup.notificationsIncludeSubject = preferences.notificationsIncludeSubject();
    backup.browserTrackingEnabled = preferences.browserTrackingEnabled();
    backup.hostnameTrackingEnabled = preferences.hostnameTrackingEnabled();
    backup.localPDFDetectionEnabled = preferences.localPDFDetectionEnabled();
    backup.manualPDFLabelsEnabled = preferences.manualPDFLabelsEnabled();
    backup.rememberSubject = preferences.rememberLastSubject();
    backup.rememberGoal = preferences.rememberLastGoal();
    backup.rememberDuration = preferences.rememberLastDuration();
    backup.onboardingCompletedVersion = preferences.onboardingCompletedVersion();
    return backup;
}

void applyBackupPreferences(const BackupPreferences& backup,
                            settings::PreferencesStore& preferences) {
    if (backup.appearance) {
        preferences.setAppearance(fromRawValue<settings::TallywiseAppearance>(*backup.appearance)
                                      .value_or(settings::TallywiseAppearance::system));
    }
    if (backup.defaultDuration) {
        preferences.setDefaultDuration(*backup.defaultDuration);
    }
    if (backup.inactivityThreshold) {
        preferences.setInactivityThreshold(*backup.inactivityThreshold);
    }
    if (backup.longSleep) {
        preferences.setLongSleep(settings::longSleepPreferenceFromStored(*backup.longSleep));
    }
    const std::pair<const std::optional<bool>&, void (settings::PreferencesStore::*)(bool)>
        switches[] = {
            {backup.notificationsEnabled, &settings::PreferencesStore::setNotificationsEnabled},
            {backup.notificationsIncludeSubject,
             &settings::PreferencesStore::setNotificationsIncludeSubject},
            {backup.browserTrackingEnabled, &settings::PreferencesStore::setBrowserTrackingEnabled},
            {backup.hostnameTrackingEnabled,
             &settings::PreferencesStore::setHostnameTrackingEnabled},
            {backup.localPDFDetectionEnabled,
             &settings::PreferencesStore::setLocalPDFDetectionEnabled},
            {backup.manualPDFLabelsEnabled, &settings::PreferencesStore::setManualPDFLabelsEnabled},
            {backup.rememberSubject, &settings::PreferencesStore::setRememberLastSubject},
            {backup.rememberGoal, &settings::PreferencesStore::setRememberLastGoal},
            {backup.rememberDuration, &settings::PreferencesStore::setRememberLastDuration},
        };
    for (const auto& [value, set] : switches) {
        if (value) {
            (preferences.*set)(*value);
        }
    }
    if (backup.onboardingCompletedVersion) {
        preferences.setOnboardingCompletedVersion(*backup.onboardingCompletedVersion);
    }
}

}  // namespace lumenote::portability
