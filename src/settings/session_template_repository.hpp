// Where session templates are kept: the repository interface the template
// store persists through, its load results and its errors.
#pragma once

#include <string_view>

#include "foundation/result.hpp"
#include "settings/session_template.hpp"

namespace lumenote::settings {

struct SessionTemplateRepositoryLoadResult {
    enum class Kind {
        document,            // `document` holds the templates
        unsupportedVersion,  // a newer format, `version`; left untouched
        missing,             // nothing stored yet: an empty list
        corruptQuarantined   // undecodable; moved aside, start with an empty list
    };
    Kind kind = Kind::missing;
    SessionTemplateDocument document;
    long long version = 0;

    static SessionTemplateRepositoryLoadResult of(SessionTemplateDocument document) {
        const long long version = document.formatVersion;
        return {Kind::document, std::move(document), version};
    }
    static SessionTemplateRepositoryLoadResult unsupported(long long version) {
        return {Kind::unsupportedVersion, {}, version};
    }
    static SessionTemplateRepositoryLoadResult missingFile() { return {}; }
    static SessionTemplateRepositoryLoadResult quarantined() {
        return {Kind::corruptQuarantined, {}, 0};
    }
};

enum class SessionTemplateRepositoryError {
    oversized,    // larger than the size cap (or a document that would be)
    invalidFile,  // a symbolic link, not a regular file, or unreadable
    writeFailed   // the new document could not be written; the old one is whole
};

std::string_view describe(SessionTemplateRepositoryError error);

// The persistence of the template store (`SessionTemplatePersisting`).
class SessionTemplatePersisting {
  public:
    virtual ~SessionTemplatePersisting() = default;
    virtual Result<SessionTemplateRepositoryLoadResult, SessionTemplateRepositoryError> load() = 0;
    virtual Result<void, SessionTemplateRepositoryError> save(
        const SessionTemplateDocument& document) = 0;
};

}  // namespace lumenote::settings
