// The text form of the defaults domain's file: one flat JSON object from key
// to value, each value keeping its JSON type.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "settings/defaults_domain.hpp"

namespace lumenote::settings {

// Every stored key and its value, in ascending key order.
using DefaultsValues = std::map<std::string, DefaultsValue, std::less<>>;

// The deepest nesting of arrays and objects a defaults document may hold (the
// document's own object is level 1). The settings are flat; a value of a type
// the domain does not model is kept as its JSON text, and writing that text
// walks the value recursively, so an absurdly deep one is refused instead.
inline constexpr int kMaximumDefaultsNesting = 64;

// The values of a defaults document: true/false as bool, an integer that fits
// a long long as long long, any other number as double, a string, an array of
// strings as a list; anything else (null, an object, a mixed array, an integer
// beyond 64 bits) as UnrecognisedDefaultsValue holding its compact JSON text.
// A key given twice keeps its last value. nullopt when the document cannot be
// used: not well-formed JSON, not an object at its root, or nested deeper than
// kMaximumDefaultsNesting.
std::optional<DefaultsValues> decodeDefaultsDocument(std::string_view text);

// The document of `values`: pretty-printed with four spaces, keys in order, a
// line feed at the end. A non-finite double is written as null (JSON has no
// such numbers), and text that is not valid UTF-8 has its bad bytes replaced
// by U+FFFD.
std::string encodeDefaultsDocument(const DefaultsValues& values);

}  // namespace lumenote::settings
