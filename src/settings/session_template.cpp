#include "settings/session_template.hpp"

#include <nlohmann/json.hpp>

#include <climits>
#include <cstdint>
#include <set>

namespace lumenote::settings {

namespace {

using Json = nlohmann::json;

// The value of an integer member that fits a long long; nullopt for any other
// value, including an integer beyond 2^63 - 1, which would otherwise wrap.
std::optional<long long> longLong(const Json& json) {
    if (!json.is_number_integer()) {
        return std::nullopt;
    }
    if (json.is_number_unsigned() &&
        json.get<std::uint64_t>() > static_cast<std::uint64_t>(LLONG_MAX)) {
        return std::nullopt;
    }
    return json.get<long long>();
}

std::string dateText(Date date) {
    return formatIso8601(date, {.fractionalSeconds = true});
}

Json encodeTemplate(const SessionTemplate& t) {
    Json json = Json::object();
    json["id"] = t.id.upperString();
    json["name"] = t.name;
    json["subject"] = t.subject;
    json["duration"] = t.duration;
    if (t.timingModeStorage) {
        json["timingModeStorage"] = *t.timingModeStorage;
    }
    json["defaultGoal"] = t.defaultGoal;
    if (t.breakDuration) {
        json["breakDuration"] = *t.breakDuration;
    }
    json["createdDate"] = dateText(t.createdDate);
    json["modifiedDate"] = dateText(t.modifiedDate);
    json["manualSortOrder"] = t.manualSortOrder;
    if (t.lastUsedDate) {
        json["lastUsedDate"] = dateText(*t.lastUsedDate);
    }
    json["isEnabled"] = t.isEnabled;
    json["isFavorite"] = t.isFavorite;
    return json;
}

// Readers of one member; each leaves `ok` false when the member is unusable.
struct MemberReader {
    const Json& object;
    bool ok = true;

    const Json* find(const char* name, bool required) {
        const auto found = object.find(name);
        if (found == object.end() || found->is_null()) {
            ok = ok && !required;
            return nullptr;
        }
        return &*found;
    }
    std::string text(const char* name) {
        const Json* member = find(name, true);
        if (member == nullptr || !member->is_string()) {
            ok = false;
            return {};
        }
        return member->get<std::string>();
    }
    std::optional<std::string> optionalText(const char* name) {
        const Json* member = find(name, false);
        if (member == nullptr) {
            return std::nullopt;
        }
        if (!member->is_string()) {
            ok = false;
            return std::nullopt;
        }
        return member->get<std::string>();
    }
    std::optional<double> optionalNumber(const char* name) {
        const Json* member = find(name, false);
        if (member == nullptr) {
            return std::nullopt;
        }
        if (!member->is_number()) {
            ok = false;
            return std::nullopt;
        }
        return member->get<double>();
    }
    double number(const char* name) {
        find(name, true);
        return optionalNumber(name).value_or(0.0);
    }
    long long integer(const char* name) {
        const Json* member = find(name, true);
        const auto value = member == nullptr ? std::nullopt : longLong(*member);
        ok = ok && value.has_value();
        return value.value_or(0);
    }
    bool flag(const char* name) {
        const Json* member = find(name, true);
        if (member == nullptr || !member->is_boolean()) {
            ok = false;
            return false;
        }
        return member->get<bool>();
    }
    std::optional<Date> optionalDate(const char* name) {
        const auto textValue = optionalText(name);
        if (!textValue) {
            return std::nullopt;
        }
        const auto date = parseIso8601(*textValue);
        ok = ok && date.has_value();
        return date;
    }
    Date date(const char* name) {
        find(name, true);
        return optionalDate(name).value_or(Date{});
    }
};

std::optional<SessionTemplate> decodeTemplate(const Json& json) {
    if (!json.is_object()) {
        return std::nullopt;
    }
    MemberReader reader{json};
    SessionTemplate t;
    const auto id = Uuid::parse(reader.text("id"));
    t.name = reader.text("name");
    t.subject = reader.text("subject");
    t.duration = reader.number("duration");
    t.timingModeStorage = reader.optionalText("timingModeStorage");
    t.defaultGoal = reader.text("defaultGoal");
    t.breakDuration = reader.optionalNumber("breakDuration");
    t.createdDate = reader.date("createdDate");
    t.modifiedDate = reader.date("modifiedDate");
    t.manualSortOrder = reader.integer("manualSortOrder");
    t.lastUsedDate = reader.optionalDate("lastUsedDate");
    t.isEnabled = reader.flag("isEnabled");
    t.isFavorite = reader.flag("isFavorite");
    if (!reader.ok || !id) {
        return std::nullopt;
    }
    t.id = *id;
    return t;
}

}  // namespace

recording::SessionTimingMode SessionTemplate::timingMode() const {
    if (!timingModeStorage) {
        return recording::SessionTimingMode::timer;
    }
    return fromRawValue<recording::SessionTimingMode>(*timingModeStorage)
        .value_or(recording::SessionTimingMode::timer);
}

void SessionTemplate::setTimingMode(recording::SessionTimingMode mode) {
    timingModeStorage = std::string(rawValue(mode));
}

SessionTemplateDraft SessionTemplateDraft::of(const SessionTemplate& sessionTemplate) {
    return {sessionTemplate.name,     sessionTemplate.subject,      sessionTemplate.defaultGoal,
            sessionTemplate.duration, sessionTemplate.timingMode(), sessionTemplate.breakDuration};
}

std::string encodeSessionTemplateDocument(const SessionTemplateDocument& document) {
    Json templates = Json::array();
    for (const SessionTemplate& t : document.templates) {
        templates.push_back(encodeTemplate(t));
    }
    Json json = Json::object();
    json["formatVersion"] = document.formatVersion;
    json["templates"] = std::move(templates);
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

std::optional<SessionTemplateDocument> decodeSessionTemplateDocument(std::string_view text) {
    const Json json = Json::parse(text, nullptr, false);
    if (json.is_discarded() || !json.is_object()) {
        return std::nullopt;
    }
    const auto version = json.find("formatVersion");
    const auto templates = json.find("templates");
    const auto formatVersion = version == json.end() ? std::nullopt : longLong(*version);
    if (!formatVersion || templates == json.end() || !templates->is_array()) {
        return std::nullopt;
    }
    SessionTemplateDocument document;
    document.formatVersion = *formatVersion;
    std::set<Uuid> ids;
    for (const Json& element : *templates) {
        auto decoded = decodeTemplate(element);
        if (!decoded || !ids.insert(decoded->id).second) {
            return std::nullopt;
        }
        document.templates.push_back(std::move(*decoded));
    }
    return document;
}

}  // namespace lumenote::settings
