// Generic access to the stored preferences by key, for front ends that name a
// setting by its key (the command line): each key's kind of value, its
// default, its current value and an assignment that goes through the store's
// own setter, so that every clamp applies exactly as in the application.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>

#include "foundation/result.hpp"
#include "settings/preferences_store.hpp"

namespace lumenote::settings {

enum class PreferenceValueKind {
    boolean,  // true or false
    integer,  // a whole number
    seconds,  // a number of seconds, fractions allowed
    text      // a string; with `choices`, one of them
};

using PreferenceValue = std::variant<bool, long long, double, std::string>;

// What a bounded number counts.
enum class PreferenceUnit { seconds, minutes };

// The range a number is clamped to when it is assigned.
struct PreferenceBounds {
    double lower;
    double upper;
    PreferenceUnit unit;
    bool zeroMeansNone = false;  // 0 is kept as it is and means "none" (no daily goal)
};

struct PreferenceKeyInfo {
    std::string_view key;
    PreferenceValueKind kind;
    // The only values accepted, as their text, when the key has a fixed set
    // (the enumerations' raw values; the long-sleep seconds 0, 300, 600, 1800).
    std::span<const std::string_view> choices;
    // Other spellings accepted for `choices`, in the same order; empty when
    // there are none. The raw value is what is stored.
    std::span<const std::string_view> choiceAliases;
    // The clamp of a number; nullopt when any value is kept.
    std::optional<PreferenceBounds> bounds;
    // For a text the store rewrites, what it does to it (a phrase for the
    // user); empty when text is kept as given.
    std::string_view normalisation;
};

// Every stored setting in property order (the shortcut's two integers in
// place of the binding), then "metrics.derivedRevision". The bookkeeping keys
// and the property that is never stored are not listed.
std::span<const PreferenceKeyInfo> preferenceKeyCatalog();

// The entry for `key`; nullptr for a key that is not a stored setting.
const PreferenceKeyInfo* findPreferenceKey(std::string_view key);

// The store's current value of a catalogued key, in the key's kind.
PreferenceValue preferenceValue(const PreferencesStore& store, const PreferenceKeyInfo& info);

// What a catalogued key reads as when nothing is stored.
PreferenceValue defaultPreferenceValue(const PreferenceKeyInfo& info);

enum class PreferenceAssignmentError {
    wrongKind,   // the value is not of the key's kind
    notAChoice,  // the key has a fixed set of values and this is neither one nor its alias
    outOfRange   // a shortcut integer outside 0 ... 4294967295
};

// Assigns through the store's setter and returns the value the store holds
// afterwards, which differs from `value` when a clamp or normalisation applied.
Result<PreferenceValue, PreferenceAssignmentError> assignPreference(PreferencesStore& store,
                                                                    const PreferenceKeyInfo& info,
                                                                    const PreferenceValue& value);

}  // namespace lumenote::settings
