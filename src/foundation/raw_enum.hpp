// Raw text values of enumerations: one table per enumeration, read both ways.
#pragma once

#include <array>
#include <optional>
#include <string_view>
#include <utility>

namespace lumenote {
inline namespace foundation {

// Specialise with `static constexpr std::array<std::pair<E, std::string_view>, N> entries`
// listing every case in declaration order with its stored text.
template <typename E>
struct RawValues;

// The stored text of a case.
template <typename E>
constexpr std::string_view rawValue(E value) {
    for (const auto& [candidate, text] : RawValues<E>::entries) {
        if (candidate == value) {
            return text;
        }
    }
    return {};
}

// The case whose stored text is exactly `text`; nullopt for text naming no case
// (for example a value written by a later version).
template <typename E>
constexpr std::optional<E> fromRawValue(std::string_view text) {
    for (const auto& [candidate, raw] : RawValues<E>::entries) {
        if (raw == text) {
            return candidate;
        }
    }
    return std::nullopt;
}

// Every case in declaration order.
template <typename E>
constexpr auto allCases() {
    std::array<E, RawValues<E>::entries.size()> cases{};
    for (std::size_t i = 0; i < cases.size(); ++i) {
        cases[i] = RawValues<E>::entries[i].first;
    }
    return cases;
}

}  // namespace foundation
}  // namespace lumenote
