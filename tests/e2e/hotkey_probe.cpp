// lumenote-hotkey-probe: the global shortcut on its own, printing JSON lines,
// for the end-to-end tests.
//
//   lumenote-hotkey-probe KEY_CODE MODIFIERS
//
// Registers the binding (a macOS key code and a Carbon modifier mask as the
// preferences store them, decimal or 0x hexadecimal) through the shortcut
// service and the X11 key grab, prints {"event":"registration","state":...,
// "message":...}, then {"event":"triggered"} for each press, and exits 0 on
// end of input or SIGTERM (releasing the key), or once the X server goes away
// ({"event":"connectionLost"}). Without a display the service has no grabber
// and says so. 64 on bad arguments.
//
// Each line of input asks for {"event":"synced"}, printed once every key
// event the server sent before it has been handled: a test that typed keys
// and then sees "synced" knows that any trigger they caused came before.
#include <poll.h>
#include <signal.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <limits>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "platform/linux/x11_hotkey_grabber.hpp"
#include "shell/global_hotkey_service.hpp"

// Last: its macros (None, Status) break headers included after it.
#include <X11/Xlib.h>

namespace {

using lumenote::platform::linux_desktop::X11HotkeyGrabber;
using lumenote::shell::GlobalHotkeyRegistrationState;
using lumenote::shell::GlobalHotkeyService;

void printLine(const nlohmann::json& line) {
    std::cout << line.dump() << std::endl;
}

std::optional<std::uint32_t> numberArgument(const std::string& text) {
    char* end = nullptr;
    const long long value = std::strtoll(text.c_str(), &end, 0);
    if (text.empty() || *end != '\0' || value < 0 ||
        value > std::numeric_limits<std::uint32_t>::max()) {
        return std::nullopt;
    }
    return static_cast<std::uint32_t>(value);
}

nlohmann::json registrationLine(const GlobalHotkeyRegistrationState& state) {
    using Kind = GlobalHotkeyRegistrationState::Kind;
    nlohmann::json line{{"event", "registration"}};
    line["state"] = state.kind == Kind::registered ? "registered"
                    : state.kind == Kind::disabled ? "disabled"
                                                   : "unavailable";
    line["message"] =
        state.message.empty() ? nlohmann::json(nullptr) : nlohmann::json(state.message);
    return line;
}

// A round trip brings every event the server sent before it into Xlib's
// queue; the presses among them are handled before "synced".
void answerSync(GlobalHotkeyService& service, X11HotkeyGrabber* grabber) {
    if (grabber != nullptr && !grabber->connection()->lost()) {
        XSync(grabber->connection()->display(), False);
        if (grabber->processEvents()) {
            service.trigger();
        }
    }
    printLine({{"event", "synced"}});
}

// Handles presses until end of input, SIGTERM or the loss of the display.
int watch(GlobalHotkeyService& service, X11HotkeyGrabber* grabber, int signals) {
    while (true) {
        if (grabber != nullptr) {
            if (grabber->processEvents()) {
                service.trigger();
                continue;
            }
            if (grabber->connection()->lost()) {
                printLine({{"event", "connectionLost"}});
                return 0;
            }
        }
        std::array<pollfd, 3> descriptors{{{STDIN_FILENO, POLLIN, 0},
                                           {signals, POLLIN, 0},
                                           {grabber ? grabber->fileDescriptor() : -1, POLLIN, 0}}};
        if (poll(descriptors.data(), descriptors.size(), -1) < 0) {
            continue;
        }
        if (descriptors[1].revents != 0) {
            return 0;
        }
        if (descriptors[0].revents != 0) {
            std::array<char, 256> input{};
            const ssize_t count = read(STDIN_FILENO, input.data(), input.size());
            if (count <= 0) {
                return 0;
            }
            const auto requests = std::count(input.begin(), input.begin() + count, '\n');
            for (long request = 0; request < requests; ++request) {
                answerSync(service, grabber);
            }
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    const auto keyCode = argc == 3 ? numberArgument(argv[1]) : std::nullopt;
    const auto modifiers = argc == 3 ? numberArgument(argv[2]) : std::nullopt;
    if (!keyCode || !modifiers) {
        std::cerr << "usage: lumenote-hotkey-probe KEY_CODE MODIFIERS\n";
        return 64;
    }
    // SIGTERM arrives through a descriptor, so that the loop ends normally and
    // the key is released on the way out.
    sigset_t terminate;
    sigemptyset(&terminate);
    sigaddset(&terminate, SIGTERM);
    sigprocmask(SIG_BLOCK, &terminate, nullptr);
    const int signals = signalfd(-1, &terminate, SFD_CLOEXEC);

    auto opened = X11HotkeyGrabber::open([](const char* name) { return std::getenv(name); });
    std::unique_ptr<X11HotkeyGrabber> grabber;
    if (opened) {
        grabber = std::move(opened).value();
    }
    GlobalHotkeyService service(grabber.get());
    service.setOnTrigger([] { printLine({{"event", "triggered"}}); });
    service.configure(true, {*keyCode, *modifiers});
    printLine(registrationLine(service.state()));
    return watch(service, grabber.get(), signals);
}
