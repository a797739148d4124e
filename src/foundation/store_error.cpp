#include "foundation/store_error.hpp"

namespace lumenote {
inline namespace foundation {

std::string_view describe(StoreErrorKind kind) {
    switch (kind) {
        case StoreErrorKind::busy:
            return "Local storage is in use by another Lumenote process.";
        case StoreErrorKind::corrupt:
            return "Local storage is damaged or is not a Lumenote store.";
        case StoreErrorKind::full:
            return "There is no room left for local storage.";
        case StoreErrorKind::newerSchema:
            return "Local storage was written by a newer version of Lumenote.";
        case StoreErrorKind::other:
            break;
    }
    return "Local storage could not be used.";
}

}  // namespace foundation
}  // namespace lumenote
