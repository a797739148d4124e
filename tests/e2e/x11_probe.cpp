// lumenote-x11-probe: the X11 observers on their own, printing JSON lines, for
// the end-to-end tests and for measuring what one sample costs.
//
//   lumenote-x11-probe --once      one sample: frontmost application and idle seconds
//   lumenote-x11-probe --watch     "ready", then one line for each activation
//   lumenote-x11-probe --bench N   CPU and wall time per sample over N samples
#include <poll.h>

#include <cstdlib>
#include <ctime>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "platform/linux/x11_frontmost_application.hpp"
#include "platform/linux/x11_idle_time.hpp"

namespace {

using lumenote::platform::linux_desktop::X11FrontmostApplicationSource;
using lumenote::platform::linux_desktop::XScreenSaverIdleTimeProvider;

void printLine(const nlohmann::json& line) {
    std::cout << line.dump() << std::endl;
}

nlohmann::json sample(X11FrontmostApplicationSource& frontmost, XScreenSaverIdleTimeProvider& idle,
                      std::string_view event) {
    nlohmann::json line{{"event", event}};
    if (const auto application = frontmost.frontmostApplication()) {
        line["bundleIdentifier"] = application->bundleIdentifier;
        line["localizedName"] = application->localizedName;
    } else {
        line["bundleIdentifier"] = nullptr;
        line["localizedName"] = nullptr;
    }
    line["idleSeconds"] = idle.idleSeconds();
    line["idleExtension"] = idle.extensionAvailable();
    return line;
}

double secondsOn(clockid_t clock) {
    timespec time{};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

int watch(X11FrontmostApplicationSource& frontmost, XScreenSaverIdleTimeProvider& idle) {
    printLine({{"event", "ready"}});
    while (true) {
        if (frontmost.processEvents()) {
            printLine(sample(frontmost, idle, "activated"));
            continue;
        }
        if (frontmost.connection()->lost()) {
            printLine({{"event", "connectionLost"}});
            return 0;
        }
        pollfd descriptor{frontmost.fileDescriptor(), POLLIN, 0};
        poll(&descriptor, 1, -1);
    }
}

int bench(X11FrontmostApplicationSource& frontmost, XScreenSaverIdleTimeProvider& idle,
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
    std::cerr << "usage: lumenote-x11-probe --once | --watch | --bench SAMPLES\n";
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
    } else if (mode != "--once" && mode != "--watch") {
        return usage();
    }

    auto opened =
        X11FrontmostApplicationSource::open([](const char* name) { return std::getenv(name); });
    if (!opened) {
        printLine({{"event", "error"},
                   {"message", lumenote::platform::linux_desktop::describe(opened.error())}});
        return 2;
    }
    auto& frontmost = *opened.value();
    XScreenSaverIdleTimeProvider idle(frontmost.connection());
    if (mode == "--once") {
        printLine(sample(frontmost, idle, "sample"));
        return 0;
    }
    if (mode == "--watch") {
        return watch(frontmost, idle);
    }
    return bench(frontmost, idle, samples);
}
