// The failure of an object-store operation, shared by every store role.
#pragma once

#include <string>

namespace lumenote {

// A store failure: the description is the underlying error's text, which the
// callers embed in their own fixed messages ("... could not be saved: {error}").
struct StoreError {
    std::string description;
};

}  // namespace lumenote
