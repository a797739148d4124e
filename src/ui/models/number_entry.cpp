#include "ui/models/number_entry.hpp"

#include <charconv>
#include <cmath>

#include <fmt/format.h>

namespace lumenote::ui::models {

namespace {

std::string_view trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(" \t\n\r");
    if (first == std::string_view::npos) {
        return {};
    }
    const auto last = text.find_last_not_of(" \t\n\r");
    return text.substr(first, last - first + 1);
}

// Whole numbers print without decimals, others with what they need.
std::string numberText(double value) {
    if (value == std::floor(value)) {
        return fmt::format("{:.0f}", value);
    }
    return fmt::format("{}", value);
}

}  // namespace

std::optional<double> parsedNumber(std::string_view text) {
    const std::string_view number = trimmed(text);
    if (number.empty()) {
        return std::nullopt;
    }
    double value = 0.0;
    const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), value);
    if (error != std::errc() || end != number.data() + number.size() || !std::isfinite(value)) {
        return std::nullopt;
    }
    return value;
}

std::string allowedRangeText(const NumberRange& range) {
    return fmt::format("Allowed range: {}\u2013{} {}.", numberText(range.lower),
                       numberText(range.upper), range.unit);
}

std::string numberFieldSentence(std::optional<double> typed, double held,
                                const NumberRange& range) {
    if (!typed) {
        return std::string(kEnterNumberText);
    }
    if (*typed == held) {
        return {};
    }
    return allowedRangeText(range);
}

}  // namespace lumenote::ui::models
