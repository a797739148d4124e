#include "shell/global_hotkey_coordinator.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

#include "settings/in_memory_defaults_domain.hpp"
#include "shell/hotkey_test_support.hpp"

namespace lumenote::shell {
namespace {

namespace keys = settings::preference_keys;
using settings::InMemoryDefaultsDomain;
using settings::PreferencesStore;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::kCtrlAltS;
using testing::kSuperShiftD;
using testing::RecordingGrabber;
using State = GlobalHotkeyRegistrationState;

const std::string kCtrlAltSTaken =
    "Ctrl+Alt+S is already used by macOS or another app. Choose a different shortcut.";

// A real preferences store over an in-memory domain; `stored` is what the
// domain holds when the application starts.
class GlobalHotkeyCoordinatorTest : public ::testing::Test {
  protected:
    PreferencesStore& open(std::map<std::string, settings::DefaultsValue, std::less<>> stored) {
        domain_.emplace(std::move(stored));
        preferences_.emplace(*domain_);
        preferences_->addObserver([this](settings::PreferenceProperty property) {
            if (property == settings::PreferenceProperty::globalHotkeyStatusMessage) {
                messages_.push_back(preferences_->globalHotkeyStatusMessage());
            }
        });
        return *preferences_;
    }

    RecordingGrabber grabber_;
    std::optional<InMemoryDefaultsDomain> domain_;
    std::optional<PreferencesStore> preferences_;
    std::vector<std::optional<std::string>> messages_;
};

TEST_F(GlobalHotkeyCoordinatorTest, RegistersTheStoredShortcutAtOnce) {
    open({{std::string(keys::globalHotkeyEnabled), true},
          {std::string(keys::globalHotkeyKeyCode), 2LL},
          {std::string(keys::globalHotkeyModifiers), 0x300LL}});
    GlobalHotkeyCoordinator coordinator(*preferences_, &grabber_);
    EXPECT_EQ(coordinator.service().state(), State::registered());
    EXPECT_THAT(grabber_.calls, ElementsAre("install", "grab 2/0x300"));
    EXPECT_THAT(messages_, IsEmpty());
}

TEST_F(GlobalHotkeyCoordinatorTest, FollowsTheTwoShortcutPreferencesAndNothingElse) {
    PreferencesStore& preferences = open({});
    GlobalHotkeyCoordinator coordinator(preferences, &grabber_);
    EXPECT_EQ(coordinator.service().state(), State::disabled());
    EXPECT_THAT(grabber_.calls, IsEmpty());

    preferences.setGlobalHotkeyEnabled(true);
    preferences.setGlobalHotkey(kCtrlAltS);
    preferences.setLaunchAtLogin(true);
    preferences.setInactivityThreshold(120);
    preferences.setGlobalHotkeyEnabled(false);
    EXPECT_THAT(grabber_.calls, ElementsAre("install", "grab 1/0x300", "release 1/0x300",
                                            "grab 1/0x1800", "release 1/0x1800"));
    EXPECT_EQ(coordinator.service().state(), State::disabled());
}

TEST_F(GlobalHotkeyCoordinatorTest, TheStatusMessageSaysWhyAndIsClearedOnceRegistered) {
    PreferencesStore& preferences = open({});
    grabber_.taken = {{1, 0x1800}};
    GlobalHotkeyCoordinator coordinator(preferences, &grabber_);
    preferences.setGlobalHotkeyEnabled(true);
    preferences.setGlobalHotkey(kCtrlAltS);
    EXPECT_EQ(preferences.globalHotkeyStatusMessage(), kCtrlAltSTaken);
    // The same refusal again writes nothing new.
    preferences.setGlobalHotkey(kCtrlAltS);
    preferences.setGlobalHotkey({1, 0});
    preferences.setGlobalHotkey(kSuperShiftD);
    EXPECT_EQ(preferences.globalHotkeyStatusMessage(), std::nullopt);
    EXPECT_THAT(messages_, ElementsAre(std::optional<std::string>(kCtrlAltSTaken),
                                       std::optional<std::string>(
                                           "A global shortcut needs at least one modifier key."),
                                       std::nullopt));
    // The unusable binding left the registered key alone; the next one
    // replaced it.
    EXPECT_THAT(grabber_.calls, ElementsAre("install", "grab 1/0x300", "release 1/0x300",
                                            "grab 1/0x1800", "grab 1/0x1800", "grab 2/0x300"));
}

TEST_F(GlobalHotkeyCoordinatorTest, WithoutAGrabberTheMessageExplainsTheDesktop) {
    PreferencesStore& preferences = open({{std::string(keys::globalHotkeyEnabled), true}});
    GlobalHotkeyCoordinator coordinator(preferences, nullptr);
    EXPECT_EQ(preferences.globalHotkeyStatusMessage(),
              "This desktop does not let applications use global shortcuts, so Lumenote's "
              "shortcut is unavailable.");
    preferences.setGlobalHotkeyEnabled(false);
    EXPECT_EQ(preferences.globalHotkeyStatusMessage(), std::nullopt);
}

TEST_F(GlobalHotkeyCoordinatorTest, DestroyedItReleasesTheKeyAndStopsFollowing) {
    PreferencesStore& preferences = open({{std::string(keys::globalHotkeyEnabled), true}});
    { GlobalHotkeyCoordinator coordinator(preferences, &grabber_); }
    preferences.setGlobalHotkey(kSuperShiftD);
    EXPECT_THAT(grabber_.calls, ElementsAre("install", "grab 1/0x300", "release 1/0x300"));
}

}  // namespace
}  // namespace lumenote::shell
