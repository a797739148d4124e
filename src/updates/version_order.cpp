#include "updates/version_order.hpp"

#include <algorithm>

namespace lumenote::updates {

namespace {

constexpr std::size_t kMaximumComponentDigits = 9;

}  // namespace

std::optional<std::vector<std::uint32_t>> versionComponents(std::string_view text) {
    std::vector<std::uint32_t> components;
    std::size_t start = 0;
    while (true) {
        const std::size_t dot = std::min(text.find('.', start), text.size());
        const std::string_view digits = text.substr(start, dot - start);
        if (digits.empty() || digits.size() > kMaximumComponentDigits ||
            !std::all_of(digits.begin(), digits.end(),
                         [](char c) { return c >= '0' && c <= '9'; })) {
            return std::nullopt;
        }
        std::uint32_t value = 0;
        for (const char digit : digits) {
            value = value * 10 + static_cast<std::uint32_t>(digit - '0');
        }
        components.push_back(value);
        if (components.size() > kMaximumVersionComponents) {
            return std::nullopt;
        }
        if (dot == text.size()) {
            return components;
        }
        start = dot + 1;
    }
}

std::strong_ordering compareReleases(const ReleaseNumber& left, const ReleaseNumber& right) {
    const std::size_t count = std::max(left.components.size(), right.components.size());
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint32_t a = i < left.components.size() ? left.components[i] : 0;
        const std::uint32_t b = i < right.components.size() ? right.components[i] : 0;
        if (a != b) {
            return a <=> b;
        }
    }
    return left.build <=> right.build;
}

}  // namespace lumenote::updates
