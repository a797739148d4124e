// The normalised forms of the keys rules are stored and looked up under: every
// website key, both when a website is looked up and when a rule is saved, and
// the letter-case-free form of bundle identifiers.
#pragma once

#include <string>
#include <string_view>

namespace lumenote::classification {

// Trims white space and line breaks at both ends (the Unicode white-space and
// line-break set, read as UTF-8), lowercases ASCII letters and removes one
// final "." if present. Only one dot goes: "example.com.." becomes
// "example.com.", so normalising twice is not the same as normalising once —
// callers normalise a name exactly once. Hostnames reach the recorder in their
// ASCII (punycode) form, so letters outside ASCII are kept as they are. An
// empty result names no website.
std::string normalizedHostname(std::string_view hostname);

// `text` with the ASCII capitals A-Z made small; every other byte is kept
// (bundle identifiers are ASCII by the platform's rules).
std::string asciiLowercased(std::string_view text);

}  // namespace lumenote::classification
