// Keeps the browser tracking coordinator's settings in step with the user's
// preferences and the local-PDF preferences, from construction until it is
// destroyed.
#pragma once

#include "bridge/bridge_tracking_coordinator.hpp"
#include "classification/classification_rules.hpp"
#include "settings/preferences_store.hpp"

namespace lumenote::bridge {

// The coordinator's settings as the stores hold them now.
BrowserTrackingSettings browserTrackingSettings(const settings::PreferencesStore& preferences,
                                                const classification::ClassificationRules& rules);

class BrowserSettingsBinding {
  public:
    // Applies the current settings at once, then after every change.
    BrowserSettingsBinding(BridgeTrackingCoordinator& coordinator,
                           settings::PreferencesStore& preferences,
                           classification::ClassificationRules& rules);
    ~BrowserSettingsBinding();
    BrowserSettingsBinding(const BrowserSettingsBinding&) = delete;
    BrowserSettingsBinding& operator=(const BrowserSettingsBinding&) = delete;

  private:
    void apply();

    BridgeTrackingCoordinator& coordinator_;
    settings::PreferencesStore& preferences_;
    classification::ClassificationRules& rules_;
    settings::PreferencesStore::Observers::Token preferencesToken_;
    ObserverList<>::Token rulesToken_;
};

}  // namespace lumenote::bridge
