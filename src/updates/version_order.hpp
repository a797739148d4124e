// The order of release versions: dotted decimal numbers ("0.10.0") compared
// component by component as numbers, the build number breaking ties.
#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace lumenote::updates {

// At most this many components, each at most nine digits, so that a hostile
// feed cannot make a comparison costly or overflow.
inline constexpr std::size_t kMaximumVersionComponents = 8;

// The numbers of a version such as "0.2.0"; nullopt unless `text` is one or
// more runs of ASCII digits joined by single dots (no sign, no space, no
// empty component, no suffix).
std::optional<std::vector<std::uint32_t>> versionComponents(std::string_view text);

struct ReleaseNumber {
    std::vector<std::uint32_t> components;
    std::int64_t build = 0;
};

// Missing components count as 0, so "1.2" and "1.2.0" are the same version;
// between the same version the higher build is newer.
std::strong_ordering compareReleases(const ReleaseNumber& left, const ReleaseNumber& right);

}  // namespace lumenote::updates
