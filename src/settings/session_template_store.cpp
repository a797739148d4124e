#include "settings/session_template_store.hpp"

#include <algorithm>
#include <cmath>

#include "foundation/text.hpp"

namespace lumenote::settings {

namespace {

using Kind = SessionTemplateValidationErrorKind;
using Error = SessionTemplateValidationError;

void sortForListing(std::vector<SessionTemplate>& list) {
    std::sort(list.begin(), list.end(), [](const SessionTemplate& a, const SessionTemplate& b) {
        if (a.isFavorite != b.isFavorite) {
            return a.isFavorite;
        }
        if (a.manualSortOrder != b.manualSortOrder) {
            return a.manualSortOrder < b.manualSortOrder;
        }
        if (a.createdDate != b.createdDate) {
            return a.createdDate < b.createdDate;
        }
        return a.id < b.id;
    });
}

void applyDraft(SessionTemplate& target, const SessionTemplateDraft& draft) {
    target.name = text::trimmed(draft.name);
    target.subject = text::trimmed(draft.subject);
    target.defaultGoal = text::trimmed(draft.defaultGoal);
    target.duration = draft.duration;
    target.setTimingMode(draft.timingMode);
    target.breakDuration = draft.breakDuration;
}

std::vector<SessionTemplate>::iterator findIn(std::vector<SessionTemplate>& list, Uuid id) {
    return std::find_if(list.begin(), list.end(),
                        [&](const SessionTemplate& t) { return t.id == id; });
}

}  // namespace

SessionTemplateStore::SessionTemplateStore(SessionTemplatePersisting& repository, Clock now)
    : repository_(repository), now_(std::move(now)) {
    reload();
}

void SessionTemplateStore::reload() {
    templates_.clear();
    isReadOnly_ = false;
    loadMessage_.reset();
    unsupportedFormatVersion_.reset();
    auto loaded = repository_.load();
    if (!loaded) {
        loadMessage_ =
            "Templates contain invalid data and were not loaded. Study history was not affected.";
    } else {
        using LoadKind = SessionTemplateRepositoryLoadResult::Kind;
        switch (loaded->kind) {
            case LoadKind::document:
                templates_ = std::move(loaded->document.templates);
                sortForListing(templates_);
                break;
            case LoadKind::unsupportedVersion:
                isReadOnly_ = true;
                unsupportedFormatVersion_ = loaded->version;
                loadMessage_ = "Templates use a newer local format (version " +
                               std::to_string(loaded->version) + "). Update Lumenote to edit them.";
                break;
            case LoadKind::missing:
                break;
            case LoadKind::corruptQuarantined:
                loadMessage_ =
                    "A damaged templates file was isolated. You can create new templates; study "
                    "history was not affected.";
                break;
        }
    }
    observers_.notify();
}

const SessionTemplate* SessionTemplateStore::find(Uuid id) const {
    const auto found = std::find_if(templates_.begin(), templates_.end(),
                                    [&](const SessionTemplate& t) { return t.id == id; });
    return found == templates_.end() ? nullptr : &*found;
}

const SessionTemplate* SessionTemplateStore::findByName(std::string_view name) const {
    const auto found =
        std::find_if(templates_.begin(), templates_.end(),
                     [&](const SessionTemplate& t) { return sameTemplateName(t.name, name); });
    return found == templates_.end() ? nullptr : &*found;
}

Result<void, Error> SessionTemplateStore::commit(const Change& change) {
    if (isReadOnly_) {
        return fail(Error{Kind::readOnly, unsupportedFormatVersion_.value_or(0)});
    }
    std::vector<SessionTemplate> changed = templates_;
    if (auto refused = change(changed)) {
        return fail(*refused);
    }
    sortForListing(changed);
    if (!repository_.save({kCurrentSessionTemplateFormatVersion, changed})) {
        return fail(Error{Kind::persistenceFailure});
    }
    templates_ = std::move(changed);
    observers_.notify();
    return {};
}

Result<SessionTemplate, Error> SessionTemplateStore::commitTo(
    Uuid id, const std::function<std::optional<Error>(SessionTemplate&)>& change) {
    auto committed = commit([&](std::vector<SessionTemplate>& list) -> std::optional<Error> {
        const auto found = findIn(list, id);
        if (found == list.end()) {
            return Error{Kind::missingTemplate};
        }
        return change(*found);
    });
    if (!committed) {
        return fail(committed.error());
    }
    return *find(id);
}

Result<SessionTemplate, Error> SessionTemplateStore::create(const SessionTemplateDraft& draft) {
    SessionTemplate created;
    auto committed = commit([&](std::vector<SessionTemplate>& list) -> std::optional<Error> {
        created.id = Uuid::generate();
        applyDraft(created, draft);
        created.createdDate = now_();
        created.modifiedDate = created.createdDate;
        created.manualSortOrder = 0;
        for (const SessionTemplate& t : list) {
            created.manualSortOrder = std::max(created.manualSortOrder, t.manualSortOrder + 1);
        }
        if (auto refused = validateSessionTemplate(created, list)) {
            return refused;
        }
        if (list.size() >= kMaximumSessionTemplates) {
            return Error{Kind::tooManyTemplates};
        }
        list.push_back(created);
        return std::nullopt;
    });
    if (!committed) {
        return fail(committed.error());
    }
    return created;
}

Result<SessionTemplate, Error> SessionTemplateStore::update(Uuid id,
                                                            const SessionTemplateDraft& draft) {
    auto committed = commit([&](std::vector<SessionTemplate>& list) -> std::optional<Error> {
        const auto found = findIn(list, id);
        SessionTemplate edited = found != list.end() ? *found : SessionTemplate{.id = id};
        applyDraft(edited, draft);
        edited.modifiedDate = now_();
        if (auto refused = validateSessionTemplate(edited, list)) {
            return refused;
        }
        if (found == list.end()) {
            return Error{Kind::missingTemplate};
        }
        *found = std::move(edited);
        return std::nullopt;
    });
    if (!committed) {
        return fail(committed.error());
    }
    return *find(id);
}

Result<void, Error> SessionTemplateStore::deleteTemplate(Uuid id) {
    return commit([&](std::vector<SessionTemplate>& list) -> std::optional<Error> {
        const auto found = findIn(list, id);
        if (found == list.end()) {
            return Error{Kind::missingTemplate};
        }
        list.erase(found);
        return std::nullopt;
    });
}

Result<SessionTemplate, Error> SessionTemplateStore::setFavorite(Uuid id, bool isFavorite) {
    return commitTo(id, [&](SessionTemplate& t) -> std::optional<Error> {
        t.isFavorite = isFavorite;
        return std::nullopt;
    });
}

Result<SessionTemplate, Error> SessionTemplateStore::toggleFavorite(Uuid id) {
    const SessionTemplate* current = find(id);
    return setFavorite(id, current == nullptr || !current->isFavorite);
}

Result<SessionTemplate, Error> SessionTemplateStore::setEnabled(Uuid id, bool isEnabled) {
    return commitTo(id, [&](SessionTemplate& t) -> std::optional<Error> {
        t.isEnabled = isEnabled;
        return std::nullopt;
    });
}

Result<SessionTemplate, Error> SessionTemplateStore::toggleEnabled(Uuid id) {
    const SessionTemplate* current = find(id);
    return setEnabled(id, current == nullptr || !current->isEnabled);
}

Result<void, Error> SessionTemplateStore::move(Uuid id, std::size_t position) {
    return commit([&](std::vector<SessionTemplate>& list) -> std::optional<Error> {
        const auto found = findIn(list, id);
        if (found == list.end()) {
            return Error{Kind::missingTemplate};
        }
        SessionTemplate moved = std::move(*found);
        list.erase(found);
        list.insert(list.begin() + static_cast<long>(std::min(position, list.size())),
                    std::move(moved));
        for (std::size_t index = 0; index < list.size(); ++index) {
            list[index].manualSortOrder = static_cast<long long>(index);
        }
        return std::nullopt;
    });
}

Result<SessionTemplate, Error> SessionTemplateStore::markUsed(Uuid id) {
    return commitTo(id, [&](SessionTemplate& t) -> std::optional<Error> {
        const Date now = now_();
        if (!std::isfinite(now.secondsSinceReferenceDate)) {
            return Error{Kind::invalidDate};
        }
        t.lastUsedDate = now;
        return std::nullopt;
    });
}

}  // namespace lumenote::settings
