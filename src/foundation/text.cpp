#include "foundation/text.hpp"

#include <cstdint>
#include <vector>

namespace lumenote {
inline namespace foundation {
namespace text {

namespace {

// One decoded character: its code point and the bytes it occupies. Invalid
// bytes decode one at a time with `valid` false.
struct Character {
    char32_t codePoint = 0;
    std::size_t size = 1;
    bool valid = true;
};

Character decodeAt(std::string_view text, std::size_t position) {
    const auto lead = static_cast<unsigned char>(text[position]);
    if (lead < 0x80) {
        return {lead, 1, true};
    }
    std::size_t size = 0;
    char32_t value = 0;
    char32_t minimum = 0;
    if ((lead & 0xE0) == 0xC0) {
        size = 2;
        value = lead & 0x1F;
        minimum = 0x80;
    } else if ((lead & 0xF0) == 0xE0) {
        size = 3;
        value = lead & 0x0F;
        minimum = 0x800;
    } else if ((lead & 0xF8) == 0xF0) {
        size = 4;
        value = lead & 0x07;
        minimum = 0x10000;
    } else {
        return {lead, 1, false};
    }
    if (position + size > text.size()) {
        return {lead, 1, false};
    }
    for (std::size_t i = 1; i < size; ++i) {
        const auto next = static_cast<unsigned char>(text[position + i]);
        if ((next & 0xC0) != 0x80) {
            return {lead, 1, false};
        }
        value = (value << 6) | (next & 0x3F);
    }
    if (value < minimum || value > 0x10FFFF || (value >= 0xD800 && value <= 0xDFFF)) {
        return {lead, 1, false};
    }
    return {value, size, true};
}

void appendUtf8(std::string& out, char32_t codePoint) {
    if (codePoint < 0x80) {
        out += static_cast<char>(codePoint);
    } else if (codePoint < 0x800) {
        out += static_cast<char>(0xC0 | (codePoint >> 6));
        out += static_cast<char>(0x80 | (codePoint & 0x3F));
    } else if (codePoint < 0x10000) {
        out += static_cast<char>(0xE0 | (codePoint >> 12));
        out += static_cast<char>(0x80 | ((codePoint >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (codePoint & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (codePoint >> 18));
        out += static_cast<char>(0x80 | ((codePoint >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((codePoint >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (codePoint & 0x3F));
    }
}

bool isWhiteSpace(const Character& character) {
    if (!character.valid) {
        return false;
    }
    const char32_t c = character.codePoint;
    return c == U' ' || (c >= U'\t' && c <= U'\r') || c == 0x85 || c == 0xA0 || c == 0x1680 ||
           (c >= 0x2000 && c <= 0x200A) || c == 0x2028 || c == 0x2029 || c == 0x202F ||
           c == 0x205F || c == 0x3000;
}

char32_t foldCase(char32_t c) {
    if ((c >= U'A' && c <= U'Z') || (c >= 0xC0 && c <= 0xDE && c != 0xD7) ||
        (c >= 0x391 && c <= 0x3AB && c != 0x3A2) || (c >= 0x410 && c <= 0x42F)) {
        return c + 0x20;
    }
    if (c >= 0x400 && c <= 0x40F) {
        return c + 0x50;
    }
    // Latin Extended-A pairs capitals and small letters at even and odd code
    // points, except for a stretch in the middle where the pairing shifts.
    if ((c >= 0x100 && c <= 0x137 && c != 0x130) || (c >= 0x14A && c <= 0x177)) {
        return (c % 2 == 0) ? c + 1 : c;
    }
    if ((c >= 0x139 && c <= 0x148) || (c >= 0x179 && c <= 0x17E)) {
        return (c % 2 == 1) ? c + 1 : c;
    }
    if (c == 0x178) {
        return 0xFF;
    }
    return c;
}

}  // namespace

std::string trimmed(std::string_view text) {
    std::size_t begin = 0;
    std::size_t end = 0;
    bool seenContent = false;
    for (std::size_t position = 0; position < text.size();) {
        const Character character = decodeAt(text, position);
        if (!isWhiteSpace(character)) {
            if (!seenContent) {
                begin = position;
                seenContent = true;
            }
            end = position + character.size;
        }
        position += character.size;
    }
    return seenContent ? std::string(text.substr(begin, end - begin)) : std::string();
}

std::string collapsingWhiteSpace(std::string_view text) {
    std::string result;
    bool pendingSpace = false;
    for (std::size_t position = 0; position < text.size();) {
        const Character character = decodeAt(text, position);
        if (isWhiteSpace(character)) {
            pendingSpace = !result.empty();
        } else {
            if (pendingSpace) {
                result += ' ';
                pendingSpace = false;
            }
            result.append(text.substr(position, character.size));
        }
        position += character.size;
    }
    return result;
}

std::size_t characterCount(std::string_view text) {
    std::size_t count = 0;
    for (std::size_t position = 0; position < text.size(); ++count) {
        position += decodeAt(text, position).size;
    }
    return count;
}

bool isValidUtf8(std::string_view text) {
    for (std::size_t position = 0; position < text.size();) {
        const Character character = decodeAt(text, position);
        if (!character.valid) {
            return false;
        }
        position += character.size;
    }
    return true;
}

std::string prefixCharacters(std::string_view text, std::size_t count) {
    std::size_t position = 0;
    for (std::size_t taken = 0; taken < count && position < text.size(); ++taken) {
        position += decodeAt(text, position).size;
    }
    return std::string(text.substr(0, position));
}

std::string caseFolded(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t position = 0; position < text.size();) {
        const Character character = decodeAt(text, position);
        if (character.valid) {
            appendUtf8(result, foldCase(character.codePoint));
        } else {
            result += text[position];
        }
        position += character.size;
    }
    return result;
}

std::string countText(std::size_t count, std::string_view singular, std::string_view plural) {
    std::string text = std::to_string(count);
    text += ' ';
    text += count == 1 ? singular : plural;
    return text;
}

}  // namespace text
}  // namespace foundation
}  // namespace lumenote
