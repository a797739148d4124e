#include "shell/duration_text.hpp"

#include <fmt/format.h>

#include <cmath>

namespace lumenote::shell {

namespace {

// Whole seconds; negative, infinite and NaN durations count as none.
long long roundedSeconds(double seconds, bool down) {
    if (!std::isfinite(seconds) || seconds <= 0.0) {
        return 0;
    }
    return static_cast<long long>(down ? std::floor(seconds) : std::llround(seconds));
}

}  // namespace

std::string clockText(double seconds) {
    const long long whole = roundedSeconds(seconds, true);
    if (whole < 3600) {
        return fmt::format("{}:{:02}", whole / 60, whole % 60);
    }
    return fmt::format("{}:{:02}:{:02}", whole / 3600, whole / 60 % 60, whole % 60);
}

std::string durationText(double seconds) {
    const long long whole = roundedSeconds(seconds, false);
    if (whole < 60) {
        return fmt::format("{} s", whole);
    }
    const long long minutes = whole / 60;
    if (minutes < 60) {
        return fmt::format("{} min", minutes);
    }
    return fmt::format("{} h {:02} min", minutes / 60, minutes % 60);
}

}  // namespace lumenote::shell
