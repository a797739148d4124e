#include "cli/duration_argument.hpp"

#include <fmt/format.h>

#include <cmath>

namespace lumenote::cli {

namespace {

constexpr std::size_t kMaximumDigits = 9;
constexpr double kLargestFormattedSeconds = 1e15;

std::string counted(long long count, std::string_view unit) {
    return fmt::format("{} {}{}", count, unit, count == 1 ? "" : "s");
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

// Seconds per unit letter, and the unit's rank so that parts come in order.
struct Unit {
    double seconds;
    int rank;
};

bool unitFor(char letter, Unit& unit) {
    switch (letter) {
        case 'h':
        case 'H':
            unit = {3600.0, 0};
            return true;
        case 'm':
        case 'M':
            unit = {60.0, 1};
            return true;
        case 's':
        case 'S':
            unit = {1.0, 2};
            return true;
        default:
            return false;
    }
}

}  // namespace

std::string_view message(DurationArgumentError error) {
    switch (error) {
        case DurationArgumentError::notADuration:
            return "Give a duration such as 25m, 90m, 1h30m or a number of seconds such as 1500.";
    }
    return {};
}

Result<double, DurationArgumentError> parseDurationArgument(std::string_view text) {
    double total = 0.0;
    int lastRank = -1;
    std::size_t position = 0;
    bool anyPart = false;
    while (position < text.size()) {
        const std::size_t start = position;
        double number = 0.0;
        while (position < text.size() && isDigit(text[position])) {
            number = number * 10.0 + (text[position] - '0');
            ++position;
        }
        const std::size_t digits = position - start;
        if (digits == 0 || digits > kMaximumDigits) {
            return fail(DurationArgumentError::notADuration);
        }
        if (position == text.size()) {
            // A bare number is seconds; after another part it lacks its unit.
            if (anyPart) {
                return fail(DurationArgumentError::notADuration);
            }
            return number;
        }
        Unit unit{};
        if (!unitFor(text[position], unit) || unit.rank <= lastRank) {
            return fail(DurationArgumentError::notADuration);
        }
        lastRank = unit.rank;
        total += number * unit.seconds;
        anyPart = true;
        ++position;
    }
    if (!anyPart) {
        return fail(DurationArgumentError::notADuration);
    }
    return total;
}

std::string formatDurationArgument(double seconds) {
    // Beyond whole-second rounding's reach (or meaningless) the seconds are shown as they are.
    if (!std::isfinite(seconds) || seconds < 0 || seconds > kLargestFormattedSeconds) {
        return fmt::format("{}s", seconds);
    }
    const auto whole = static_cast<long long>(std::llround(seconds));
    const long long hours = whole / 3600;
    const long long minutes = (whole % 3600) / 60;
    const long long rest = whole % 60;
    std::string text;
    if (hours > 0) {
        text += fmt::format("{}h", hours);
    }
    if (minutes > 0 || (hours > 0 && rest > 0)) {
        text += fmt::format("{}m", minutes);
    }
    if (rest > 0 || whole == 0) {
        text += fmt::format("{}s", rest);
    }
    return text;
}

std::string readableDuration(double seconds) {
    const bool whole = std::isfinite(seconds) && std::fabs(seconds) <= kLargestFormattedSeconds &&
                       std::trunc(seconds) == seconds;
    if (!whole) {
        return fmt::format("{:g} seconds", seconds);
    }
    if (seconds <= 0 || std::fmod(seconds, 60.0) != 0.0) {
        return counted(static_cast<long long>(seconds), "second");
    }
    const auto minutes = static_cast<long long>(seconds / 60.0);
    if (minutes < 60) {
        return counted(minutes, "minute");
    }
    if (minutes % 60 == 0) {
        return counted(minutes / 60, "hour");
    }
    return counted(minutes / 60, "hour") + " " + counted(minutes % 60, "minute");
}

}  // namespace lumenote::cli
