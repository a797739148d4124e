#include "updates/strict_base64.hpp"

#include <array>
#include <cstdint>

namespace lumenote::updates {

namespace {

constexpr std::string_view kAlphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

constexpr std::array<int, 256> kValues = [] {
    std::array<int, 256> values{};
    values.fill(-1);
    for (std::size_t i = 0; i < kAlphabet.size(); ++i) {
        values[static_cast<unsigned char>(kAlphabet[i])] = static_cast<int>(i);
    }
    return values;
}();

}  // namespace

std::optional<std::string> strictBase64Decoded(std::string_view text) {
    if (text.size() % 4 != 0) {
        return std::nullopt;
    }
    std::size_t padding = 0;
    if (!text.empty() && text.back() == '=') {
        padding = text.size() >= 2 && text[text.size() - 2] == '=' ? 2 : 1;
    }
    std::string bytes;
    bytes.reserve(text.size() / 4 * 3);
    for (std::size_t group = 0; group < text.size(); group += 4) {
        const bool last = group + 4 == text.size();
        const std::size_t digits = last ? 4 - padding : 4;
        std::uint32_t bits = 0;
        for (std::size_t i = 0; i < 4; ++i) {
            int value = 0;
            if (i < digits) {
                value = kValues[static_cast<unsigned char>(text[group + i])];
                if (value < 0) {
                    return std::nullopt;
                }
            }
            bits = (bits << 6) | static_cast<std::uint32_t>(value);
        }
        // Padding leaves bits of the last digit unused: they must be zero.
        if ((padding == 1 && last && (bits & 0xff) != 0) ||
            (padding == 2 && last && (bits & 0xffff) != 0)) {
            return std::nullopt;
        }
        const std::size_t produced = digits - 1;
        for (std::size_t i = 0; i < produced; ++i) {
            bytes.push_back(static_cast<char>((bits >> (16 - 8 * i)) & 0xff));
        }
    }
    return bytes;
}

}  // namespace lumenote::updates
