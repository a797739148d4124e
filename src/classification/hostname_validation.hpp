// Whether a text typed or reported as a website's hostname really is one, and
// its normalised form: the key website rules are saved and looked up under.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "foundation/result.hpp"

namespace lumenote::classification {

// Why a text is not a hostname, in the order they are checked: the first that
// applies is the one reported.
enum class HostnameProblem {
    empty,              // nothing left once normalised
    hasScheme,          // "https://example.com"
    hasUserInfo,        // "me@example.com"
    hasPath,            // "example.com/notes", also a query or a fragment
    hasPort,            // "example.com:8080"
    invalidCharacter,   // anything but ASCII letters, digits, hyphens and dots
    emptyLabel,         // "a..b", ".example.com", "example.com.."
    labelTooLong,       // a label of more than 63 characters
    hyphenAtLabelEdge,  // "-example.com", "example-.com"
    nameTooLong,        // more than 253 characters in all
};

inline constexpr std::size_t kMaximumHostnameLabelLength = 63;
inline constexpr std::size_t kMaximumHostnameLength = 253;

// The hostname `text` names, normalised as every website key is (white space
// trimmed, letters made small, one final dot removed; see
// normalizedHostname()), or why it names none. A valid hostname is one or more
// labels joined by dots; each label has 1 to 63 characters among a-z, 0-9 and
// "-" and neither starts nor ends with "-"; the whole name has at most 253
// characters. International names are accepted in their ASCII (punycode,
// "xn--") form only: the rules compare hostnames as browsers report them, and
// browsers report that form. Nothing else is changed: "www." is neither added
// nor removed. Pure; no lookup of the name is made.
Result<std::string, HostnameProblem> validatedHostname(std::string_view text);

// The sentence that tells the user why `text` was refused, naming it as typed.
std::string hostnameProblemMessage(HostnameProblem problem, std::string_view text);

}  // namespace lumenote::classification
