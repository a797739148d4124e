// The per-user defaults domain: a key-value store that keeps the type of each
// value, with the two ways of reading it that the preferences rely on.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "foundation/private_file.hpp"

namespace lumenote::settings {

// A stored value of a type the domain does not model (a JSON null, object or
// mixed array), kept as its JSON text so that rewriting the domain preserves
// it. Every read treats it as a value of another type.
struct UnrecognisedDefaultsValue {
    std::string json;
    friend bool operator==(const UnrecognisedDefaultsValue&,
                           const UnrecognisedDefaultsValue&) = default;
};

using DefaultsValue = std::variant<bool, long long, double, std::string, std::vector<std::string>,
                                   UnrecognisedDefaultsValue>;

// Generic reads: the stored value cast to one type, nullopt when the key is
// missing or holds another type. Integers and doubles are both numbers: an
// integer reads as a double, and a double reads as an integer only when it is
// a whole number within 64 bits. A Boolean is never a number here.
std::optional<bool> asBool(const std::optional<DefaultsValue>& value);
std::optional<long long> asInteger(const std::optional<DefaultsValue>& value);
std::optional<double> asDouble(const std::optional<DefaultsValue>& value);
std::optional<std::string> asString(const std::optional<DefaultsValue>& value);
std::optional<std::vector<std::string>> asStringArray(const std::optional<DefaultsValue>& value);

class DefaultsDomain {
  public:
    virtual ~DefaultsDomain() = default;

    // The value stored under `key`; nullopt when the key is missing.
    virtual std::optional<DefaultsValue> object(std::string_view key) = 0;
    // Every stored key, in ascending order.
    virtual std::vector<std::string> keys() = 0;
    // Stores `value` under `key`, replacing any value of any type.
    virtual void set(std::string_view key, DefaultsValue value) = 0;
    // Removes the keys (missing ones are ignored) in one change.
    virtual void remove(const std::vector<std::string>& keys) = 0;
    // Why the last change could not be kept, if it could not. The change stays
    // visible to this process's reads either way; the store itself never fails.
    virtual std::optional<PrivateFileError> lastWriteError() const { return std::nullopt; }
    // Takes in what another process stored since this one last read or wrote
    // the domain; whether anything was read again. A domain that no other
    // process shares never changes behind this one's back.
    virtual bool refreshFromStorage() { return false; }

    // The plain typed getters, which take the zero value (false, 0, 0.0) when
    // the key is missing. A value of another type is converted: numbers and
    // Booleans into each other (non-zero is true, doubles are truncated toward
    // zero), and a string holding a decimal number or "true"/"yes" (any case)
    // reads as that number or as true. Anything else reads as the zero value.
    bool boolForKey(std::string_view key);
    long long integerForKey(std::string_view key);
    double doubleForKey(std::string_view key);
    // The string getter: nullopt when missing or when the value is not a string.
    std::optional<std::string> stringForKey(std::string_view key);

    void remove(std::string_view key) { remove(std::vector<std::string>{std::string(key)}); }
};

}  // namespace lumenote::settings
