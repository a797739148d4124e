#include "bridge/browser_settings_binding.hpp"

namespace lumenote::bridge {

BrowserTrackingSettings browserTrackingSettings(const settings::PreferencesStore& preferences,
                                                const classification::ClassificationRules& rules) {
    BrowserTrackingSettings settings;
    settings.browserTrackingEnabled = preferences.browserTrackingEnabled();
    settings.hostnameTrackingEnabled = preferences.hostnameTrackingEnabled();
    settings.localPDFDetectionEnabled = preferences.localPDFDetectionEnabled();
    settings.manualPDFLabelsEnabled = preferences.manualPDFLabelsEnabled();
    settings.filenameLabelsEnabled = rules.localPDFFilenameLabelsEnabled();
    settings.browserTrackingPaused = preferences.pauseAllBrowserTracking();
    return settings;
}

BrowserSettingsBinding::BrowserSettingsBinding(BridgeTrackingCoordinator& coordinator,
                                               settings::PreferencesStore& preferences,
                                               classification::ClassificationRules& rules)
    : coordinator_(coordinator), preferences_(preferences), rules_(rules) {
    apply();
    preferencesToken_ = preferences_.addObserver([this](settings::PreferenceProperty) { apply(); });
    rulesToken_ = rules_.changed().add([this] { apply(); });
}

BrowserSettingsBinding::~BrowserSettingsBinding() {
    preferences_.removeObserver(preferencesToken_);
    rules_.changed().remove(rulesToken_);
}

void BrowserSettingsBinding::apply() {
    coordinator_.applySettings(browserTrackingSettings(preferences_, rules_));
}

}  // namespace lumenote::bridge
