// The failures of an export: one case each, one fixed sentence each.
#pragma once

#include <string>

namespace lumenote::portability {

enum class ExportFailure {
    historyUnreadable,  // {reason}: the store could not be read
    sessionNotFound,    // the one session asked for is not (or no longer) stored
    writeFailed,        // {reason}: the destination could not be created or written
};

// A failure with the reason that fills its sentence (the store's or the
// system's own text, naming the file where there is one).
struct ExportError {
    ExportFailure failure = ExportFailure::writeFailed;
    std::string reason;

    // The sentence the user is shown.
    std::string message() const;
};

}  // namespace lumenote::portability
