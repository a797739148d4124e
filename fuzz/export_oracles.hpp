// Independent readers for the export fuzz target: UTF-8 repair as Unicode
// defines it (each maximal ill-formed subpart becomes U+FFFD), a strict RFC
// 4180 reader and the unfolding of iCalendar lines. Written from the
// standards, not from the writers, so that the target compares two readings.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lumenote::fuzz {

// Whether the `count` bytes at `text` begin a well-formed UTF-8 sequence of
// `length` bytes: its continuation bytes are 10xxxxxx and some completion of
// it encodes a code point of that length that is no surrogate.
inline bool beginsWellFormed(std::string_view text, std::size_t count, std::size_t length) {
    const auto byte = [&text](std::size_t index) {
        return static_cast<unsigned char>(text[index]);
    };
    constexpr std::uint32_t kLeadMask[] = {0, 0x7F, 0x1F, 0x0F, 0x07};
    std::uint32_t low = byte(0) & kLeadMask[length];
    for (std::size_t index = 1; index < count; ++index) {
        if ((byte(index) & 0xC0) != 0x80) {
            return false;
        }
        low = (low << 6) | (byte(index) & 0x3F);
    }
    std::uint32_t high = low;
    for (std::size_t index = count; index < length; ++index) {
        low <<= 6;
        high = (high << 6) | 0x3F;
    }
    constexpr std::uint32_t kFirst[] = {0, 0, 0x80, 0x800, 0x10000};
    constexpr std::uint32_t kLast[] = {0, 0, 0x7FF, 0xFFFF, 0x10FFFF};
    if (high < kFirst[length] || low > kLast[length]) {
        return false;
    }
    // Only surrogates in the range: D800 ... DFFF.
    return !(low >= 0xD800 && high <= 0xDFFF);
}

inline std::string repairedUtf8(std::string_view text) {
    std::string repaired;
    std::size_t at = 0;
    while (at < text.size()) {
        const auto lead = static_cast<unsigned char>(text[at]);
        if (lead < 0x80) {
            repaired += text[at++];
            continue;
        }
        const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC0 ? 2 : 0;
        const std::string_view rest = text.substr(at);
        std::size_t good = 0;
        while (length != 0 && good < length && good < rest.size() && lead <= 0xF7 &&
               beginsWellFormed(rest, good + 1, length)) {
            ++good;
        }
        if (length != 0 && good == length) {
            repaired += rest.substr(0, length);
        } else {
            repaired += "\xEF\xBF\xBD";
        }
        at += good == 0 ? 1 : good;
    }
    return repaired;
}

// A text is valid UTF-8 exactly when repairing it changes nothing.
inline bool isValidUtf8(std::string_view text) {
    return repairedUtf8(text) == text;
}

// One field of a CSV record and whether it was quoted.
struct CsvField {
    std::string value;
    bool quoted = false;
};
using CsvRecord = std::vector<CsvField>;

// Reads `text` as RFC 4180 demands it: records end with CR LF (the last one
// too), fields are separated by commas, a quoted field may hold anything with
// its quotes doubled, and an unquoted one holds no quote, comma, CR or LF.
// nullopt for anything else.
inline std::optional<std::vector<CsvRecord>> readStrictCsv(std::string_view text) {
    std::vector<CsvRecord> records;
    std::size_t at = 0;
    while (at < text.size()) {
        CsvRecord record;
        while (true) {
            CsvField field;
            if (at < text.size() && text[at] == '"') {
                field.quoted = true;
                ++at;
                while (true) {
                    if (at >= text.size()) {
                        return std::nullopt;
                    }
                    if (text[at] == '"') {
                        if (at + 1 < text.size() && text[at + 1] == '"') {
                            field.value += '"';
                            at += 2;
                            continue;
                        }
                        ++at;
                        break;
                    }
                    field.value += text[at++];
                }
            } else {
                while (at < text.size() && text[at] != ',' && text[at] != '\r') {
                    if (text[at] == '"' || text[at] == '\n') {
                        return std::nullopt;
                    }
                    field.value += text[at++];
                }
            }
            record.push_back(std::move(field));
            if (at < text.size() && text[at] == ',') {
                ++at;
                continue;
            }
            if (text.substr(at, 2) != "\r\n") {
                return std::nullopt;
            }
            at += 2;
            break;
        }
        records.push_back(std::move(record));
    }
    return records;
}

}  // namespace lumenote::fuzz
