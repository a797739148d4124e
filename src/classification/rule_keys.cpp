#include "classification/rule_keys.hpp"

#include <array>

namespace lumenote::classification {
namespace {

// UTF-8 encodings of the white-space and line-break characters: ASCII tab to
// carriage return and space, U+0085, U+00A0, U+1680, U+2000-U+200A, U+2028,
// U+2029, U+202F, U+205F and U+3000. Each starts with a lead byte, so matching
// a whole encoding at either end never splits another character.
constexpr std::array<std::string_view, 25> kWhiteSpace{
    "\t",           "\n",           "\v",           "\f",           "\r",           " ",
    "\xC2\x85",     "\xC2\xA0",     "\xE1\x9A\x80", "\xE2\x80\x80", "\xE2\x80\x81", "\xE2\x80\x82",
    "\xE2\x80\x83", "\xE2\x80\x84", "\xE2\x80\x85", "\xE2\x80\x86", "\xE2\x80\x87", "\xE2\x80\x88",
    "\xE2\x80\x89", "\xE2\x80\x8A", "\xE2\x80\xA8", "\xE2\x80\xA9", "\xE2\x80\xAF", "\xE2\x81\x9F",
    "\xE3\x80\x80",
};

std::size_t leadingWhiteSpace(std::string_view text) {
    for (const std::string_view space : kWhiteSpace) {
        if (text.starts_with(space)) {
            return space.size();
        }
    }
    return 0;
}

std::size_t trailingWhiteSpace(std::string_view text) {
    for (const std::string_view space : kWhiteSpace) {
        if (text.ends_with(space)) {
            return space.size();
        }
    }
    return 0;
}

std::string_view trimmed(std::string_view text) {
    while (const std::size_t length = leadingWhiteSpace(text)) {
        text.remove_prefix(length);
    }
    while (const std::size_t length = trailingWhiteSpace(text)) {
        text.remove_suffix(length);
    }
    return text;
}

}  // namespace

std::string asciiLowercased(std::string_view text) {
    std::string result(text);
    for (char& character : result) {
        if (character >= 'A' && character <= 'Z') {
            character = static_cast<char>(character - 'A' + 'a');
        }
    }
    return result;
}

std::string normalizedHostname(std::string_view hostname) {
    std::string result = asciiLowercased(trimmed(hostname));
    if (result.ends_with('.')) {
        result.pop_back();
    }
    return result;
}

}  // namespace lumenote::classification
