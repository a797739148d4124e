// lumenote-wayland-probe: the Wayland observers on their own, printing JSON
// lines, for the end-to-end tests and for measuring what a sample costs.
//
//   lumenote-wayland-probe --globals   the compositor's globals and the backends chosen for them
//   lumenote-wayland-probe --once      one sample: frontmost application and idle seconds
//   lumenote-wayland-probe --watch     "ready", one line for each change of the frontmost
//                                      application, and a "tick" sample every second
//   lumenote-wayland-probe --bench N   CPU and wall time per sample over N samples
#include <poll.h>

#include <cstdlib>
#include <ctime>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "platform/linux/desktop_entries.hpp"
#include "platform/observation/observation_backends.hpp"
#include "platform/system/system_clocks.hpp"
#include "platform/wayland/wayland_connection.hpp"
#include "platform/wayland/wayland_idle_time.hpp"
#include "platform/wayland/wlr_frontmost_application.hpp"

namespace {

namespace observation = lumenote::platform::observation;
namespace wayland = lumenote::platform::wayland;

void printLine(const nlohmann::json& line) {
    std::cout << line.dump() << std::endl;
}

int printError(wayland::WaylandError error) {
    printLine({{"event", "error"}, {"message", wayland::describe(error)}});
    return 2;
}

const char* environmentValue(const char* name) {
    return std::getenv(name);
}

double secondsOn(clockid_t clock) {
    timespec time{};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

nlohmann::json sample(wayland::WlrFrontmostApplicationSource& frontmost,
                      wayland::WaylandIdleTimeProvider& idle, std::string_view event) {
    nlohmann::json line{{"event", event}};
    if (const auto application = frontmost.frontmostApplication()) {
        line["bundleIdentifier"] = application->bundleIdentifier;
        line["localizedName"] = application->localizedName;
    } else {
        line["bundleIdentifier"] = nullptr;
        line["localizedName"] = nullptr;
    }
    line["idleSeconds"] = idle.idleSeconds();
    line["idleProtocol"] = wayland::protocolName(idle.protocol());
    return line;
}

int globals(const wayland::WaylandConnection& connection) {
    const observation::SessionFacts facts{
        observation::SessionEnvironment::fromEnvironment(environmentValue),
        connection.globalInterfaces(),
        {}};
    const auto choice = observation::chooseObservationBackends(facts);
    nlohmann::json missing = nlohmann::json::array();
    for (const auto piece : choice.missing) {
        missing.push_back(observation::describe(piece));
    }
    printLine({{"event", "globals"},
               {"interfaces", facts.waylandGlobals},
               {"frontmostBackend", observation::backendName(choice.frontmost)},
               {"idleBackend", observation::backendName(choice.idle)},
               {"missing", missing}});
    return 0;
}

int watch(wayland::WlrFrontmostApplicationSource& frontmost,
          wayland::WaylandIdleTimeProvider& idle) {
    printLine({{"event", "ready"}});
    double nextTick = secondsOn(CLOCK_MONOTONIC) + 1.0;
    while (true) {
        if (frontmost.processEvents()) {
            printLine(sample(frontmost, idle, "activated"));
            continue;
        }
        if (frontmost.connection()->lost()) {
            printLine({{"event", "connectionLost"}});
            return 0;
        }
        const double now = secondsOn(CLOCK_MONOTONIC);
        if (now >= nextTick) {
            printLine(sample(frontmost, idle, "tick"));
            nextTick += 1.0;
            continue;
        }
        pollfd descriptor{frontmost.fileDescriptor(), POLLIN, 0};
        poll(&descriptor, 1, static_cast<int>((nextTick - now) * 1000.0) + 1);
    }
}

int bench(wayland::WlrFrontmostApplicationSource& frontmost, wayland::WaylandIdleTimeProvider& idle,
          long samples) {
    long withFrontmost = 0;
    double idleTotal = 0;
    const double cpuStart = secondsOn(CLOCK_PROCESS_CPUTIME_ID);
    const double wallStart = secondsOn(CLOCK_MONOTONIC);
    for (long index = 0; index < samples; ++index) {
        withFrontmost += frontmost.frontmostApplication() ? 1 : 0;
        idleTotal += idle.idleSeconds();
        frontmost.processEvents();
    }
    const double cpu = secondsOn(CLOCK_PROCESS_CPUTIME_ID) - cpuStart;
    const double wall = secondsOn(CLOCK_MONOTONIC) - wallStart;
    const auto perSample = [&](double seconds) {
        return seconds * 1e6 / static_cast<double>(samples);
    };
    printLine({{"event", "bench"},
               {"samples", samples},
               {"cpuMicrosecondsPerSample", perSample(cpu)},
               {"wallMicrosecondsPerSample", perSample(wall)},
               {"samplesWithFrontmost", withFrontmost},
               {"meanIdleSeconds", idleTotal / static_cast<double>(samples)}});
    return 0;
}

int usage() {
    std::cerr << "usage: lumenote-wayland-probe --globals | --once | --watch | --bench SAMPLES\n";
    return 64;
}

}  // namespace

int main(int argc, char** argv) {
    const std::string mode = argc > 1 ? argv[1] : "";
    long samples = 0;
    if (mode == "--bench") {
        samples = argc > 2 ? std::strtol(argv[2], nullptr, 10) : 0;
        if (samples <= 0) {
            return usage();
        }
    } else if (mode != "--globals" && mode != "--once" && mode != "--watch") {
        return usage();
    }

    auto connection = wayland::WaylandConnection::open(environmentValue);
    if (!connection) {
        return printError(connection.error());
    }
    if (mode == "--globals") {
        return globals(*connection.value());
    }
    auto frontmost = wayland::WlrFrontmostApplicationSource::open(
        connection.value(),
        lumenote::platform::linux_desktop::DesktopEntryIndex::load(
            lumenote::platform::linux_desktop::applicationFolders(environmentValue)));
    if (!frontmost) {
        return printError(frontmost.error());
    }
    lumenote::platform::system::SystemMonotonicTimeProvider clock;
    auto idle = wayland::WaylandIdleTimeProvider::open(connection.value(), clock);
    if (!idle) {
        return printError(idle.error());
    }
    if (mode == "--once") {
        printLine(sample(*frontmost.value(), *idle.value(), "sample"));
        return 0;
    }
    if (mode == "--watch") {
        return watch(*frontmost.value(), *idle.value());
    }
    return bench(*frontmost.value(), *idle.value(), samples);
}
