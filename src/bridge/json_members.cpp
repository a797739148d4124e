#include "bridge/json_members.hpp"

#include <cstdint>
#include <limits>

namespace lumenote::bridge {

Result<nlohmann::json, std::string> parseJsonObject(std::string_view text) {
    nlohmann::json value = nlohmann::json::parse(text, nullptr, false);
    if (value.is_discarded()) {
        return fail(std::string("the text is not well-formed JSON"));
    }
    if (!value.is_object()) {
        return fail(std::string("the document is not a JSON object"));
    }
    return value;
}

const nlohmann::json* JsonMembers::member(const char* key) {
    if (failure_) {
        return nullptr;
    }
    const auto found = object_.find(key);
    if (found == object_.end() || found->is_null()) {
        failure_ = std::string(key) + " is missing";
        return nullptr;
    }
    return &*found;
}

bool JsonMembers::isAbsent(const char* key) const {
    const auto found = object_.find(key);
    return found == object_.end() || found->is_null();
}

void JsonMembers::string(const char* key, std::string& out) {
    if (const nlohmann::json* value = member(key)) {
        if (value->is_string()) {
            out = value->get<std::string>();
        } else {
            failure_ = std::string(key) + " must be a string";
        }
    }
}

void JsonMembers::boolean(const char* key, bool& out) {
    if (const nlohmann::json* value = member(key)) {
        if (value->is_boolean()) {
            out = value->get<bool>();
        } else {
            failure_ = std::string(key) + " must be true or false";
        }
    }
}

void JsonMembers::integer(const char* key, long long& out) {
    if (const nlohmann::json* value = member(key)) {
        if (value->is_number_unsigned() &&
            value->get<std::uint64_t>() <=
                static_cast<std::uint64_t>(std::numeric_limits<long long>::max())) {
            out = static_cast<long long>(value->get<std::uint64_t>());
        } else if (value->is_number_integer() && !value->is_number_unsigned()) {
            out = value->get<std::int64_t>();
        } else {
            failure_ = std::string(key) + " must be an integer";
        }
    }
}

void JsonMembers::uuid(const char* key, Uuid& out) {
    std::string text;
    string(key, text);
    if (failure_) {
        return;
    }
    if (const auto parsed = Uuid::parse(text)) {
        out = *parsed;
    } else {
        failure_ = std::string(key) + " must be a UUID";
    }
}

void JsonMembers::date(const char* key, Date& out) {
    if (const nlohmann::json* value = member(key)) {
        const auto parsed =
            value->is_string() ? parseIso8601(value->get<std::string>()) : std::nullopt;
        if (parsed) {
            out = *parsed;
        } else {
            failure_ = std::string(key) + " must be an ISO-8601 string";
        }
    }
}

void JsonMembers::optionalString(const char* key, std::optional<std::string>& out) {
    out.reset();
    if (!failure_ && !isAbsent(key)) {
        std::string value;
        string(key, value);
        if (!failure_) {
            out = std::move(value);
        }
    }
}

void JsonMembers::optionalBoolean(const char* key, std::optional<bool>& out) {
    out.reset();
    if (!failure_ && !isAbsent(key)) {
        bool value = false;
        boolean(key, value);
        if (!failure_) {
            out = value;
        }
    }
}

void JsonMembers::optionalUuid(const char* key, std::optional<Uuid>& out) {
    out.reset();
    if (!failure_ && !isAbsent(key)) {
        Uuid value;
        uuid(key, value);
        if (!failure_) {
            out = value;
        }
    }
}

const nlohmann::json* JsonMembers::object(const char* key) {
    const nlohmann::json* value = member(key);
    if (value && !value->is_object()) {
        failure_ = std::string(key) + " must be an object";
        return nullptr;
    }
    return value;
}

}  // namespace lumenote::bridge
