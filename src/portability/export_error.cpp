#include "portability/export_error.hpp"

namespace lumenote::portability {

std::string ExportError::message() const {
    switch (failure) {
        case ExportFailure::historyUnreadable:
            return "Lumenote could not read the session history for the export (" + reason + ").";
        case ExportFailure::sessionNotFound:
            return "The session to export is no longer in the history.";
        case ExportFailure::writeFailed:
            return "Lumenote could not write the export (" + reason + ").";
    }
    return {};
}

}  // namespace lumenote::portability
