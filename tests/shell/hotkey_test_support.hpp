// A grabber that records what the shortcut service asks of it and refuses
// what a test tells it to.
#pragma once

#include <fmt/format.h>

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "shell/global_hotkey_service.hpp"

namespace lumenote::shell::testing {

class RecordingGrabber final : public HotkeyGrabber {
  public:
    Result<void, GlobalHotkeyFailure> installHandler() override {
        calls.push_back("install");
        if (installFailures > 0) {
            --installFailures;
            return fail(GlobalHotkeyFailure::handlerUnavailable);
        }
        return {};
    }

    Result<void, GlobalHotkeyFailure> grab(const settings::GlobalHotkeyBinding& binding) override {
        calls.push_back(named("grab", binding));
        if (taken.contains({binding.keyCode, binding.modifiers})) {
            return fail(GlobalHotkeyFailure::shortcutTaken);
        }
        held = binding;
        return {};
    }

    void release() override {
        calls.push_back(held ? named("release", *held) : "release nothing");
        held.reset();
    }

    // "grab 1/0x1800": the call and the key code and modifiers it was about.
    static std::string named(std::string_view call, const settings::GlobalHotkeyBinding& binding) {
        return fmt::format("{} {}/{:#x}", call, binding.keyCode, binding.modifiers);
    }

    std::vector<std::string> calls;
    int installFailures = 0;
    std::set<std::pair<std::uint32_t, std::uint32_t>> taken;  // key code, modifiers
    std::optional<settings::GlobalHotkeyBinding> held;
};

inline constexpr settings::GlobalHotkeyBinding kCtrlAltS{1, 0x1800};
inline constexpr settings::GlobalHotkeyBinding kSuperShiftD{2, 0x300};

}  // namespace lumenote::shell::testing
