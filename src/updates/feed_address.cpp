#include "updates/feed_address.hpp"

#include <algorithm>

#include "foundation/text.hpp"

namespace lumenote::updates {

namespace {

constexpr std::string_view kSecureScheme = "https://";

char lowerAscii(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

}  // namespace

bool isSecureAddress(std::string_view address) {
    if (address.size() <= kSecureScheme.size()) {
        return false;
    }
    for (std::size_t i = 0; i < kSecureScheme.size(); ++i) {
        if (lowerAscii(address[i]) != kSecureScheme[i]) {
            return false;
        }
    }
    const std::string_view rest = address.substr(kSecureScheme.size());
    if (rest.front() == '/' || rest.front() == '?' || rest.front() == '#') {
        return false;
    }
    return std::none_of(address.begin(), address.end(), [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte <= 0x20 || byte == 0x7f;
    });
}

std::string effectiveFeedAddress(std::string_view preference, std::string_view compiledIn) {
    std::string chosen = text::trimmed(preference);
    if (chosen.empty()) {
        return std::string(compiledIn);
    }
    return chosen;
}

}  // namespace lumenote::updates
