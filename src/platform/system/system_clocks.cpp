#include "platform/system/system_clocks.hpp"

#include <cassert>
#include <chrono>

namespace lumenote::platform::system {

namespace {

timespec readBootTime() {
    timespec time{};
    [[maybe_unused]] const int status = clock_gettime(CLOCK_BOOTTIME, &time);
    assert(status == 0);
    return time;
}

}  // namespace

SystemMonotonicTimeProvider::SystemMonotonicTimeProvider() : origin_(readBootTime()) {}

double SystemMonotonicTimeProvider::now() {
    const timespec current = readBootTime();
    // Whole seconds and nanoseconds are subtracted separately so that the
    // readings keep nanosecond resolution however long the machine has run.
    const auto seconds = static_cast<double>(current.tv_sec - origin_.tv_sec);
    const auto nanoseconds = static_cast<double>(current.tv_nsec - origin_.tv_nsec);
    return seconds + nanoseconds / 1e9;
}

Date SystemWallClock::now() {
    return Date::fromSystemClock(std::chrono::system_clock::now());
}

}  // namespace lumenote::platform::system
