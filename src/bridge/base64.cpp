#include "bridge/base64.hpp"

#include <array>
#include <cstdint>

namespace lumenote::bridge {

namespace {

constexpr std::string_view kAlphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

constexpr std::array<std::int8_t, 256> decodingTable() {
    std::array<std::int8_t, 256> table{};
    table.fill(-1);
    for (std::size_t i = 0; i < kAlphabet.size(); ++i) {
        table[static_cast<unsigned char>(kAlphabet[i])] = static_cast<std::int8_t>(i);
    }
    return table;
}

constexpr auto kDecoding = decodingTable();

}  // namespace

std::string base64Encoded(std::string_view bytes) {
    std::string out;
    out.reserve((bytes.size() + 2) / 3 * 4);
    std::size_t i = 0;
    for (; i + 3 <= bytes.size(); i += 3) {
        const std::uint32_t chunk = (static_cast<unsigned char>(bytes[i]) << 16) |
                                    (static_cast<unsigned char>(bytes[i + 1]) << 8) |
                                    static_cast<unsigned char>(bytes[i + 2]);
        out += kAlphabet[(chunk >> 18) & 0x3F];
        out += kAlphabet[(chunk >> 12) & 0x3F];
        out += kAlphabet[(chunk >> 6) & 0x3F];
        out += kAlphabet[chunk & 0x3F];
    }
    const std::size_t rest = bytes.size() - i;
    if (rest > 0) {
        std::uint32_t chunk = static_cast<unsigned char>(bytes[i]) << 16;
        if (rest == 2) {
            chunk |= static_cast<unsigned char>(bytes[i + 1]) << 8;
        }
        out += kAlphabet[(chunk >> 18) & 0x3F];
        out += kAlphabet[(chunk >> 12) & 0x3F];
        out += rest == 2 ? kAlphabet[(chunk >> 6) & 0x3F] : '=';
        out += '=';
    }
    return out;
}

std::optional<std::string> base64Decoded(std::string_view text) {
    if (text.size() % 4 != 0) {
        return std::nullopt;
    }
    std::size_t padding = 0;
    if (!text.empty() && text.back() == '=') {
        padding = text.size() >= 2 && text[text.size() - 2] == '=' ? 2 : 1;
    }
    std::string out;
    out.reserve(text.size() / 4 * 3);
    for (std::size_t i = 0; i < text.size(); i += 4) {
        const bool last = i + 4 == text.size();
        std::uint32_t chunk = 0;
        for (std::size_t j = 0; j < 4; ++j) {
            const bool isPadding = last && j >= 4 - padding;
            const std::int8_t value = kDecoding[static_cast<unsigned char>(text[i + j])];
            if (isPadding ? text[i + j] != '=' : value < 0) {
                return std::nullopt;
            }
            chunk = (chunk << 6) | (isPadding ? 0U : static_cast<std::uint32_t>(value));
        }
        const std::size_t produced = last ? 3 - padding : 3;
        // Canonical form: the bits the padding drops must be zero.
        if (last && padding > 0 && (chunk & ((1U << (8 * padding)) - 1)) != 0) {
            return std::nullopt;
        }
        for (std::size_t j = 0; j < produced; ++j) {
            out += static_cast<char>((chunk >> (16 - 8 * j)) & 0xFF);
        }
    }
    return out;
}

}  // namespace lumenote::bridge
