#include "portability/json_text.hpp"

#include <fmt/format.h>

#include <cmath>
#include <iterator>

namespace lumenote::portability::json_text {

namespace {

constexpr std::string_view kReplacementCharacter = "\xEF\xBF\xBD";

// The length of the valid UTF-8 sequence starting at text[at], 0 when the
// bytes there are not one (overlong forms, surrogates and values past
// U+10FFFF included).
std::size_t utf8SequenceLength(std::string_view text, std::size_t at) {
    const auto byte = [&](std::size_t offset) {
        return static_cast<unsigned char>(text[at + offset]);
    };
    const auto continuation = [&](std::size_t offset) {
        return at + offset < text.size() && (byte(offset) & 0xC0) == 0x80;
    };
    const unsigned char lead = byte(0);
    if (lead >= 0xC2 && lead <= 0xDF) {
        return continuation(1) ? 2 : 0;
    }
    if (lead >= 0xE0 && lead <= 0xEF) {
        if (!continuation(1) || !continuation(2)) {
            return 0;
        }
        const unsigned char second = byte(1);
        if ((lead == 0xE0 && second < 0xA0) || (lead == 0xED && second > 0x9F)) {
            return 0;
        }
        return 3;
    }
    if (lead >= 0xF0 && lead <= 0xF4) {
        if (!continuation(1) || !continuation(2) || !continuation(3)) {
            return 0;
        }
        const unsigned char second = byte(1);
        if ((lead == 0xF0 && second < 0x90) || (lead == 0xF4 && second > 0x8F)) {
            return 0;
        }
        return 4;
    }
    return 0;
}

void appendEscaped(std::string& out, unsigned char c) {
    switch (c) {
        case '"':
            out += "\\\"";
            return;
        case '\\':
            out += "\\\\";
            return;
        case '\n':
            out += "\\n";
            return;
        case '\r':
            out += "\\r";
            return;
        case '\t':
            out += "\\t";
            return;
        default:
            fmt::format_to(std::back_inserter(out), "\\u{:04x}", static_cast<unsigned>(c));
    }
}

}  // namespace

void appendString(std::string& out, std::string_view text) {
    out += '"';
    std::size_t runStart = 0;
    std::size_t at = 0;
    while (at < text.size()) {
        const auto c = static_cast<unsigned char>(text[at]);
        if (c >= 0x20 && c != '"' && c != '\\' && c < 0x80) {
            ++at;
            continue;
        }
        if (c >= 0x80) {
            if (const std::size_t length = utf8SequenceLength(text, at); length > 0) {
                at += length;
                continue;
            }
        }
        out.append(text.substr(runStart, at - runStart));
        if (c >= 0x80) {
            out += kReplacementCharacter;
        } else {
            appendEscaped(out, c);
        }
        runStart = ++at;
    }
    out.append(text.substr(runStart));
    out += '"';
}

void appendNumber(std::string& out, double value) {
    if (!std::isfinite(value)) {
        out += "null";
        return;
    }
    fmt::format_to(std::back_inserter(out), "{}", value);
}

void appendInteger(std::string& out, long long value) {
    fmt::format_to(std::back_inserter(out), "{}", value);
}

}  // namespace lumenote::portability::json_text
