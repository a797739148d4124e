// The failure of a store call: its kind and the underlying error's text.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <utility>

#include "foundation/raw_enum.hpp"

namespace lumenote {
inline namespace foundation {

// What kind of failure a store met, for callers that react differently to
// each (wait and retry when busy, offer a backup when corrupt, ask for disk
// space when full, ask for an update when newer).
enum class StoreErrorKind {
    busy,         // another connection held the lock past the busy timeout
    corrupt,      // the file is damaged or is not a store at all
    full,         // no room left: the disk, the user's quota or the file's size limit
    newerSchema,  // the file was written by a later release; it is left untouched
    other
};

// A store failure: the description is the underlying error's text, which the
// callers embed in their own fixed messages ("... could not be saved: {error}").
struct StoreError {
    std::string description;
    StoreErrorKind kind = StoreErrorKind::other;
};

// The kind's fixed user-facing sentence ("Local storage is full.").
std::string_view describe(StoreErrorKind kind);

// Stable names of the kinds ("busy", "newerSchema"), for diagnostics.
template <>
struct RawValues<StoreErrorKind> {
    static constexpr std::array<std::pair<StoreErrorKind, std::string_view>, 5> entries{{
        {StoreErrorKind::busy, "busy"},
        {StoreErrorKind::corrupt, "corrupt"},
        {StoreErrorKind::full, "full"},
        {StoreErrorKind::newerSchema, "newerSchema"},
        {StoreErrorKind::other, "other"},
    }};
};

}  // namespace foundation
}  // namespace lumenote
