#include "bridge/bridge_token.hpp"

#include <sys/random.h>

#include <array>
#include <cerrno>
#include <cstddef>

namespace lumenote::bridge {

namespace {

constexpr std::size_t kTokenBytes = 32;

}  // namespace

std::optional<std::string> generateBridgeToken() {
    std::array<unsigned char, kTokenBytes> bytes{};
    std::size_t filled = 0;
    while (filled < bytes.size()) {
        const ssize_t got = getrandom(bytes.data() + filled, bytes.size() - filled, 0);
        if (got < 0) {
            if (errno == EINTR) {
                continue;
            }
            return std::nullopt;
        }
        filled += static_cast<std::size_t>(got);
    }
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string token;
    token.reserve(kTokenBytes * 2);
    for (const unsigned char byte : bytes) {
        token += kDigits[byte >> 4];
        token += kDigits[byte & 0xF];
    }
    return token;
}

bool isWellFormedBridgeToken(std::string_view text) {
    if (text.size() != kTokenBytes * 2) {
        return false;
    }
    for (const char c : text) {
        if (!((c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'))) {
            return false;
        }
    }
    return true;
}

bool bridgeTokensMatch(std::string_view expected, std::string_view given) {
    if (expected.size() != given.size() || expected.empty()) {
        return false;
    }
    unsigned char difference = 0;
    for (std::size_t i = 0; i < expected.size(); ++i) {
        difference |= static_cast<unsigned char>(expected[i] ^ given[i]);
    }
    return difference == 0;
}

}  // namespace lumenote::bridge
