#include "shell/global_hotkey_service.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "shell/hotkey_test_support.hpp"

namespace lumenote::shell {
namespace {

using settings::GlobalHotkeyBinding;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::kCtrlAltS;
using testing::kSuperShiftD;
using testing::RecordingGrabber;
using State = GlobalHotkeyRegistrationState;

constexpr const char* kModifierSentence = "A global shortcut needs at least one modifier key.";
constexpr const char* kHandlerSentence = "Lumenote could not install its shortcut handler.";

class GlobalHotkeyServiceTest : public ::testing::Test {
  protected:
    GlobalHotkeyServiceTest() {
        service_.setOnTrigger([this] { ++presses_; });
        service_.stateObservers().add([this](const State& state) { announced_.push_back(state); });
    }

    RecordingGrabber grabber_;
    GlobalHotkeyService service_{&grabber_};
    int presses_ = 0;
    std::vector<State> announced_;
};

TEST_F(GlobalHotkeyServiceTest, EachRequiredModifierAloneOrWithOtherBitsIsEnough) {
    // Caps Lock (0x400) and bits outside the Carbon set do not count, but do
    // not spoil a mask that has a required bit either.
    for (const std::uint32_t modifiers : {0x100u, 0x200u, 0x800u, 0x1000u, 0x1B00u, 0x10500u}) {
        SCOPED_TRACE(modifiers);
        const GlobalHotkeyBinding binding{0x7E, modifiers};  // Up Arrow, the table's last key
        service_.configure(true, binding);
        EXPECT_EQ(service_.state(), State::registered());
        EXPECT_EQ(grabber_.held, binding);
    }
}

TEST_F(GlobalHotkeyServiceTest, UnusableBindingsAreRefusedAndKeepThePreviousKeyRegistered) {
    const std::vector<GlobalHotkeyBinding> refused{
        {1, 0},              // no modifier at all
        {1, 0x400},          // Caps Lock is not a modifier of a shortcut
        {1, 0x200000},       // a bit outside the Carbon set
        {0x34, 0x1800},      // a key code without a display name, with modifiers
        {0x0A, 0x1B00},      // the ISO section key, left out of the table
        {0x7F, 0x100},       // one past the table's last key
        {0xFFFFFFFF, 0x100}  // the largest stored code
    };
    service_.configure(true, kCtrlAltS);
    for (const auto& binding : refused) {
        SCOPED_TRACE(RecordingGrabber::named("binding", binding));
        grabber_.calls.clear();
        service_.configure(true, binding);
        EXPECT_EQ(service_.state(), State::unavailable(kModifierSentence));
        EXPECT_EQ(service_.binding(), binding);
        EXPECT_THAT(grabber_.calls, IsEmpty());
        EXPECT_EQ(grabber_.held, kCtrlAltS);
    }
    // The key registered before still works until something replaces it.
    service_.trigger();
    EXPECT_EQ(presses_, 1);
    grabber_.calls.clear();
    service_.configure(true, kSuperShiftD);
    EXPECT_THAT(grabber_.calls, ElementsAre("release 1/0x1800", "grab 2/0x300"));
}

TEST_F(GlobalHotkeyServiceTest, DisablingComesFirstEvenForAnUnusableBinding) {
    service_.configure(true, kCtrlAltS);
    grabber_.calls.clear();
    service_.configure(false, {1, 0});
    EXPECT_EQ(service_.state(), State::disabled());
    EXPECT_THAT(grabber_.calls, ElementsAre("release 1/0x1800"));
}

TEST_F(GlobalHotkeyServiceTest, EnablingAndDisablingInstallsTheHandlerOnce) {
    service_.configure(false, kCtrlAltS);
    service_.trigger();
    service_.configure(true, kCtrlAltS);
    service_.trigger();
    service_.configure(false, kCtrlAltS);
    service_.trigger();  // a press queued before the release
    service_.configure(true, kCtrlAltS);
    EXPECT_EQ(presses_, 1);
    EXPECT_THAT(grabber_.calls,
                ElementsAre("install", "grab 1/0x1800", "release 1/0x1800", "grab 1/0x1800"));
    EXPECT_THAT(announced_,
                ElementsAre(State::registered(), State::disabled(), State::registered()));
    EXPECT_TRUE(service_.isEnabled());
}

TEST_F(GlobalHotkeyServiceTest, ARefusedGrabNamesTheShortcutAndHoldsNothing) {
    grabber_.taken = {{1, 0x1800}, {0x7B, 0x1B00}};
    service_.configure(true, kSuperShiftD);
    service_.configure(true, kCtrlAltS);
    EXPECT_EQ(service_.state(),
              State::unavailable("Ctrl+Alt+S is already used by macOS or another app. Choose a "
                                 "different shortcut."));
    EXPECT_THAT(grabber_.calls,
                ElementsAre("install", "grab 2/0x300", "release 2/0x300", "grab 1/0x1800"));
    service_.trigger();
    EXPECT_EQ(presses_, 0);

    service_.configure(true, {0x7B, 0x1B00});
    EXPECT_EQ(service_.state().message,
              "Ctrl+Alt+Shift+Super+Left Arrow is already used by macOS or another app. Choose a "
              "different shortcut.");
    EXPECT_EQ(announced_.size(), 3u);  // a different sentence is a different state

    // Nothing is held, so the next grab follows without a release.
    grabber_.calls.clear();
    service_.configure(true, kSuperShiftD);
    EXPECT_THAT(grabber_.calls, ElementsAre("grab 2/0x300"));
    EXPECT_EQ(service_.state(), State::registered());
}

TEST_F(GlobalHotkeyServiceTest, AHandlerThatFailedToInstallIsTriedAgain) {
    grabber_.installFailures = 1;
    service_.configure(true, kCtrlAltS);
    EXPECT_EQ(service_.state(), State::unavailable(kHandlerSentence));
    EXPECT_THAT(grabber_.calls, ElementsAre("install"));
    service_.configure(true, kCtrlAltS);
    EXPECT_EQ(service_.state(), State::registered());
    service_.configure(true, kSuperShiftD);
    EXPECT_THAT(grabber_.calls, ElementsAre("install", "install", "grab 1/0x1800",
                                            "release 1/0x1800", "grab 2/0x300"));
}

TEST_F(GlobalHotkeyServiceTest, SameStateAgainIsNotAnnounced) {
    service_.configure(false, kCtrlAltS);  // disabled, as it started
    service_.configure(true, {1, 0});
    service_.configure(true, {2, 0});
    EXPECT_THAT(announced_, ElementsAre(State::unavailable(kModifierSentence)));
}

TEST(GlobalHotkeyServiceWithoutGrabberTest, IsUnavailableWheneverEnabled) {
    const std::string sentence =
        "This desktop does not let applications use global shortcuts, so Lumenote's shortcut is "
        "unavailable.";
    GlobalHotkeyService service(nullptr);
    int presses = 0;
    service.setOnTrigger([&presses] { ++presses; });
    EXPECT_EQ(service.state(), State::disabled());
    service.configure(true, kCtrlAltS);
    EXPECT_EQ(service.state(), State::unavailable(sentence));
    service.configure(true, {1, 0});
    EXPECT_EQ(service.state(), State::unavailable(sentence));
    service.trigger();
    EXPECT_EQ(presses, 0);
    service.configure(false, kCtrlAltS);
    EXPECT_EQ(service.state(), State::disabled());
}

}  // namespace
}  // namespace lumenote::shell
