// Session templates kept in memory, for previews and checks; its writes can be
// made to fail.
#pragma once

#include <optional>

#include "settings/session_template_repository.hpp"

namespace lumenote::settings {

class InMemorySessionTemplateRepository final : public SessionTemplatePersisting {
  public:
    // The last saved (or preset) document; nullopt loads as `missing`.
    std::optional<SessionTemplateDocument> document;
    // When set, load returns it instead of `document`.
    std::optional<Result<SessionTemplateRepositoryLoadResult, SessionTemplateRepositoryError>>
        loadResultOverride;
    // Successful saves so far.
    int saveCount = 0;
    // When true every save fails with `writeFailed` and keeps `document`.
    bool failWrites = false;

    Result<SessionTemplateRepositoryLoadResult, SessionTemplateRepositoryError> load() override;
    Result<void, SessionTemplateRepositoryError> save(
        const SessionTemplateDocument& newDocument) override;
};

}  // namespace lumenote::settings
