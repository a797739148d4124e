// Text rules shared by every module: white-space trimming and collapsing,
// character counts and letter-case folding over UTF-8 text.
//
// A "character" here is one Unicode code point; bytes that are not valid
// UTF-8 count as one character each and are kept as they are. White space is
// the Unicode white-space and line-break set (ASCII space, tab, line feed,
// vertical tab, form feed, carriage return, U+0085, U+00A0, U+1680,
// U+2000-U+200A, U+2028, U+2029, U+202F, U+205F and U+3000).
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace lumenote {
inline namespace foundation {
namespace text {

// Removes white space and line breaks at both ends.
std::string trimmed(std::string_view text);

// Trims, splits at runs of white space dropping empty pieces, and joins the
// pieces with a single ASCII space.
std::string collapsingWhiteSpace(std::string_view text);

// The number of characters in `text`.
std::size_t characterCount(std::string_view text);

// The first `count` characters of `text`, never cutting a character in half.
std::string prefixCharacters(std::string_view text, std::size_t count);

// Whether `text` is well-formed UTF-8: no stray continuation byte, no
// truncated or overlong sequence, no surrogate, nothing above U+10FFFF.
bool isValidUtf8(std::string_view text);

// A form of `text` in which letters that differ only in case are equal:
// ASCII, Latin-1, Latin Extended-A, Greek and Cyrillic capitals become their
// small letters. Other characters are kept as they are.
std::string caseFolded(std::string_view text);

// "1 session", "3 sessions": the count with the noun that agrees with it.
std::string countText(std::size_t count, std::string_view singular, std::string_view plural);

}  // namespace text
}  // namespace foundation
}  // namespace lumenote
