// The versions of the totals calculation; a session keeps the version its
// numbers were computed under, so improving the method never changes history.
#pragma once

#include <optional>
#include <string_view>

#include "foundation/raw_enum.hpp"

namespace lumenote::recording {

// Stored as the integer 1, 2 or 3.
enum class TrackingCalculationVersion : int { v1 = 1, v2 = 2, v3 = 3 };

// New sessions are computed under the latest version.
inline constexpr TrackingCalculationVersion kCurrentTrackingCalculationVersion =
    TrackingCalculationVersion::v3;

// The version stored as `raw`; nullopt for a number naming no version (a
// session of a later release), which readers treat like an unversioned one.
std::optional<TrackingCalculationVersion> trackingCalculationVersionFromRaw(long long raw);

// The generic raw value of the other enumerations stays visible next to the
// version's own.
using lumenote::rawValue;
inline int rawValue(TrackingCalculationVersion version) {
    return static_cast<int>(version);
}

// The explanation shown beside a session computed under `version`; v1 has none.
std::optional<std::string_view> explanationText(TrackingCalculationVersion version);

}  // namespace lumenote::recording
