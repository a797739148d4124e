// SessionTemplateStore: the list of session templates the screens and the
// command line use. It keeps the list in memory, validates every change and
// persists through a repository.
//
// Every change is made on a copy of the list, validated, written through the
// repository, and only then published (and the observers told); when the
// write fails the published list stays as it was.
//
// Choices made here:
// - Listing order: favourites first, then `manualSortOrder` ascending, then
//   creation date and id, so the order is total and stable.
// - Names, subjects and goals are trimmed of white space and line breaks at
//   both ends before they are checked and stored; names are unique ignoring
//   letter case ("Deep Work" and "deep work" clash).
// - Checks run in the order of SessionTemplateValidationErrorKind: read-only
//   first, then the fields, then whether the template still exists, then the
//   250-template limit, then the write.
// - Only an edit (update) changes `modifiedDate`. Favourite, enabled,
//   position and last use are bookkeeping: they are checked only for
//   read-only, existence and (for last use) a finite date, so a template
//   loaded with out-of-range fields can still be toggled, moved or deleted.
// - A newer file format loads as an empty, read-only list: its templates are
//   not decoded, and every change is refused with the read-only sentence.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "foundation/observer_list.hpp"
#include "foundation/result.hpp"
#include "settings/session_template_repository.hpp"
#include "settings/session_template_validation.hpp"

namespace lumenote::settings {

class SessionTemplateStore {
  public:
    using Clock = std::function<Date()>;
    using Error = SessionTemplateValidationError;
    using Observers = ObserverList<>;

    // Loads the templates from `repository`, which must outlive the store.
    SessionTemplateStore(SessionTemplatePersisting& repository, Clock now);

    // Loads again, replacing the list and the load state.
    void reload();

    // The published list, in listing order.
    const std::vector<SessionTemplate>& templates() const { return templates_; }
    bool isReadOnly() const { return isReadOnly_; }
    // What the user should be told about the last load, if anything.
    const std::optional<std::string>& loadMessage() const { return loadMessage_; }
    std::optional<long long> unsupportedFormatVersion() const { return unsupportedFormatVersion_; }

    const SessionTemplate* find(Uuid id) const;
    // The template with this name, compared as names are for uniqueness.
    const SessionTemplate* findByName(std::string_view name) const;

    // The changes take ids by value: the id of a published template stays
    // valid while the change replaces the list it came from.

    // A new, enabled, non-favourite template placed last in manual order.
    Result<SessionTemplate, Error> create(const SessionTemplateDraft& draft);
    // Replaces the editable fields and sets `modifiedDate` to now.
    Result<SessionTemplate, Error> update(Uuid id, const SessionTemplateDraft& draft);
    Result<void, Error> deleteTemplate(Uuid id);
    Result<SessionTemplate, Error> setFavorite(Uuid id, bool isFavorite);
    Result<SessionTemplate, Error> toggleFavorite(Uuid id);
    Result<SessionTemplate, Error> setEnabled(Uuid id, bool isEnabled);
    Result<SessionTemplate, Error> toggleEnabled(Uuid id);
    // Moves the template to `position` (0-based, clamped to the end) of the
    // listing and renumbers `manualSortOrder` 0, 1, 2 ... in the new order.
    // Favourites still list first, so a template cannot move across the
    // boundary between favourites and the others.
    Result<void, Error> move(Uuid id, std::size_t position);
    // Sets `lastUsedDate` to now, when a session starts from the template.
    Result<SessionTemplate, Error> markUsed(Uuid id);

    Observers::Token addObserver(Observers::Callback callback) {
        return observers_.add(std::move(callback));
    }
    void removeObserver(Observers::Token token) { observers_.remove(token); }

  private:
    using Change = std::function<std::optional<Error>(std::vector<SessionTemplate>&)>;

    // Refuses when read-only, applies `change` to a copy, writes it and
    // publishes it.
    Result<void, Error> commit(const Change& change);
    // Like commit, for a change to one existing template; returns it as stored.
    Result<SessionTemplate, Error> commitTo(
        Uuid id, const std::function<std::optional<Error>(SessionTemplate&)>& change);

    SessionTemplatePersisting& repository_;
    Clock now_;
    std::vector<SessionTemplate> templates_;
    bool isReadOnly_ = false;
    std::optional<std::string> loadMessage_;
    std::optional<long long> unsupportedFormatVersion_;
    Observers observers_;
};

}  // namespace lumenote::settings
