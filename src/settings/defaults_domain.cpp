#include "settings/defaults_domain.hpp"

#include <charconv>
#include <cmath>

namespace lumenote::settings {

namespace {

// 2^63: the first double above every 64-bit integer.
constexpr double kIntegerLimit = 9223372036854775808.0;

std::optional<long long> wholeNumber(double value) {
    if (!std::isfinite(value) || value < -kIntegerLimit || value >= kIntegerLimit ||
        std::trunc(value) != value) {
        return std::nullopt;
    }
    return static_cast<long long>(value);
}

long long truncated(double value) {
    if (!std::isfinite(value) || value < -kIntegerLimit || value >= kIntegerLimit) {
        return 0;
    }
    return static_cast<long long>(std::trunc(value));
}

std::optional<double> decimalNumber(const std::string& text) {
    double value = 0.0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc() || stop != end || !std::isfinite(value)) {
        return std::nullopt;
    }
    return value;
}

bool equalsIgnoringCase(std::string_view text, std::string_view lowercase) {
    if (text.size() != lowercase.size()) {
        return false;
    }
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        const char lower = (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
        if (lower != lowercase[i]) {
            return false;
        }
    }
    return true;
}

// The value as a double for the typed getters; nullopt when not convertible.
std::optional<double> numericValue(const DefaultsValue& value) {
    if (const auto* flag = std::get_if<bool>(&value)) {
        return *flag ? 1.0 : 0.0;
    }
    if (const auto* integer = std::get_if<long long>(&value)) {
        return static_cast<double>(*integer);
    }
    if (const auto* number = std::get_if<double>(&value)) {
        return *number;
    }
    if (const auto* text = std::get_if<std::string>(&value)) {
        return decimalNumber(*text);
    }
    return std::nullopt;
}

}  // namespace

std::optional<bool> asBool(const std::optional<DefaultsValue>& value) {
    if (value) {
        if (const auto* flag = std::get_if<bool>(&*value)) {
            return *flag;
        }
    }
    return std::nullopt;
}

std::optional<long long> asInteger(const std::optional<DefaultsValue>& value) {
    if (value) {
        if (const auto* integer = std::get_if<long long>(&*value)) {
            return *integer;
        }
        if (const auto* number = std::get_if<double>(&*value)) {
            return wholeNumber(*number);
        }
    }
    return std::nullopt;
}

std::optional<double> asDouble(const std::optional<DefaultsValue>& value) {
    if (value) {
        if (const auto* number = std::get_if<double>(&*value)) {
            return *number;
        }
        if (const auto* integer = std::get_if<long long>(&*value)) {
            return static_cast<double>(*integer);
        }
    }
    return std::nullopt;
}

std::optional<std::string> asString(const std::optional<DefaultsValue>& value) {
    if (value) {
        if (const auto* text = std::get_if<std::string>(&*value)) {
            return *text;
        }
    }
    return std::nullopt;
}

std::optional<std::vector<std::string>> asStringArray(const std::optional<DefaultsValue>& value) {
    if (value) {
        if (const auto* list = std::get_if<std::vector<std::string>>(&*value)) {
            return *list;
        }
    }
    return std::nullopt;
}

bool DefaultsDomain::boolForKey(std::string_view key) {
    const auto value = object(key);
    if (!value) {
        return false;
    }
    if (const auto* text = std::get_if<std::string>(&*value)) {
        if (equalsIgnoringCase(*text, "true") || equalsIgnoringCase(*text, "yes")) {
            return true;
        }
    }
    const auto number = numericValue(*value);
    return number.has_value() && *number != 0.0;
}

long long DefaultsDomain::integerForKey(std::string_view key) {
    const auto value = object(key);
    if (!value) {
        return 0;
    }
    if (const auto* integer = std::get_if<long long>(&*value)) {
        return *integer;
    }
    const auto number = numericValue(*value);
    return number ? truncated(*number) : 0;
}

double DefaultsDomain::doubleForKey(std::string_view key) {
    const auto value = object(key);
    if (!value) {
        return 0.0;
    }
    return numericValue(*value).value_or(0.0);
}

std::optional<std::string> DefaultsDomain::stringForKey(std::string_view key) {
    return asString(object(key));
}

}  // namespace lumenote::settings
