#include "settings/in_memory_session_template_repository.hpp"

namespace lumenote::settings {

Result<SessionTemplateRepositoryLoadResult, SessionTemplateRepositoryError>
InMemorySessionTemplateRepository::load() {
    if (loadResultOverride) {
        return *loadResultOverride;
    }
    if (document) {
        return SessionTemplateRepositoryLoadResult::of(*document);
    }
    return SessionTemplateRepositoryLoadResult::missingFile();
}

Result<void, SessionTemplateRepositoryError> InMemorySessionTemplateRepository::save(
    const SessionTemplateDocument& newDocument) {
    if (failWrites) {
        return fail(SessionTemplateRepositoryError::writeFailed);
    }
    document = newDocument;
    ++saveCount;
    return {};
}

}  // namespace lumenote::settings
