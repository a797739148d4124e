// Keeps the global shortcut registered as the preferences say, from
// construction until it is destroyed, and tells the settings screens why it
// is not when it is not.
#pragma once

#include "settings/preferences_store.hpp"
#include "shell/global_hotkey_service.hpp"

namespace lumenote::shell {

class GlobalHotkeyCoordinator {
  public:
    // Registers the stored binding at once, then again whenever
    // "shortcuts.globalHotkeyEnabled" or the binding changes; after each
    // registration the state's sentence (nothing unless it is unavailable)
    // becomes the preferences' hotkey status message. `preferences` and
    // `grabber` (nullptr on a desktop without global shortcuts) must outlive
    // the coordinator.
    GlobalHotkeyCoordinator(settings::PreferencesStore& preferences, HotkeyGrabber* grabber);
    // Stops following the preferences; the service releases the key.
    ~GlobalHotkeyCoordinator();
    GlobalHotkeyCoordinator(const GlobalHotkeyCoordinator&) = delete;
    GlobalHotkeyCoordinator& operator=(const GlobalHotkeyCoordinator&) = delete;

    // Where the application sets the shortcut's action and reports presses.
    GlobalHotkeyService& service() { return service_; }

  private:
    void registerFromPreferences();

    settings::PreferencesStore& preferences_;
    GlobalHotkeyService service_;
    settings::PreferencesStore::Observers::Token preferencesToken_;
};

}  // namespace lumenote::shell
