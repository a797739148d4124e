#include "settings/session_template_repository.hpp"

namespace lumenote::settings {

std::string_view describe(SessionTemplateRepositoryError error) {
    switch (error) {
        case SessionTemplateRepositoryError::oversized:
            return "the templates file is too large";
        case SessionTemplateRepositoryError::invalidFile:
            return "the templates file is not a regular file that can be read";
        case SessionTemplateRepositoryError::writeFailed:
            return "the templates file could not be written";
    }
    return "the templates file could not be used";
}

}  // namespace lumenote::settings
