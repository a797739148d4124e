// Strict reading of the members of one JSON object, shared by the decoders of
// the bridge's documents. A reader keeps the first problem it meets (a
// required member missing, any member of the wrong type or an unknown
// enumeration case) as a short description naming the key; the reads after
// it change nothing, so a decoder reads every member and checks once.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "foundation/dates.hpp"
#include "foundation/raw_enum.hpp"
#include "foundation/result.hpp"
#include "foundation/uuid.hpp"

namespace lumenote::bridge {

// Parses `text` into a JSON value whose root is an object; fails with a short
// description of the syntax error or of the wrong root. Never throws.
Result<nlohmann::json, std::string> parseJsonObject(std::string_view text);

class JsonMembers {
  public:
    explicit JsonMembers(const nlohmann::json& object) : object_(object) {}

    // Required members.
    void string(const char* key, std::string& out);
    void boolean(const char* key, bool& out);
    void integer(const char* key, long long& out);
    void uuid(const char* key, Uuid& out);
    // An ISO-8601 string; anything else is "<key> must be an ISO-8601 string".
    void date(const char* key, Date& out);
    template <typename E>
    void enumeration(const char* key, E& out) {
        std::string text;
        string(key, text);
        if (failure_) {
            return;
        }
        if (const auto value = fromRawValue<E>(text)) {
            out = *value;
        } else {
            failure_ = std::string(key) + " has an unknown value";
        }
    }

    // Optional members: absent or null leaves `out` empty.
    void optionalString(const char* key, std::optional<std::string>& out);
    void optionalBoolean(const char* key, std::optional<bool>& out);
    void optionalUuid(const char* key, std::optional<Uuid>& out);
    template <typename E>
    void optionalEnumeration(const char* key, std::optional<E>& out) {
        out.reset();
        if (!failure_ && !isAbsent(key)) {
            E value{};
            enumeration(key, value);
            if (!failure_) {
                out = value;
            }
        }
    }

    // The member `key`, which must be an object; nullptr (and a failure) when
    // it is missing or not an object.
    const nlohmann::json* object(const char* key);

    // Records `problem` found by the caller, unless an earlier one is kept.
    void reject(std::string problem) {
        if (!failure_) {
            failure_ = std::move(problem);
        }
    }

    // The first problem met, if any.
    const std::optional<std::string>& failure() const { return failure_; }

  private:
    const nlohmann::json* member(const char* key);
    bool isAbsent(const char* key) const;
    const nlohmann::json& object_;
    std::optional<std::string> failure_;
};

}  // namespace lumenote::bridge
