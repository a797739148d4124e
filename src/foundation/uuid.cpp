#include "foundation/uuid.hpp"

#include <sys/random.h>
#include <uuid/uuid.h>

#include <cerrno>
#include <cstring>

namespace lumenote {
inline namespace foundation {

Uuid Uuid::generate() {
    Bytes bytes;
    std::size_t filled = 0;
    while (filled < bytes.size()) {
        const ssize_t got = ::getrandom(bytes.data() + filled, bytes.size() - filled, 0);
        if (got < 0) {
            if (errno == EINTR) {
                continue;
            }
            // No kernel source of randomness: libuuid has its own fallbacks.
            uuid_generate_random(bytes.data());
            return Uuid(bytes);
        }
        filled += static_cast<std::size_t>(got);
    }
    bytes[6] = static_cast<unsigned char>((bytes[6] & 0x0F) | 0x40);  // version 4
    bytes[8] = static_cast<unsigned char>((bytes[8] & 0x3F) | 0x80);  // RFC 4122 variant
    return Uuid(bytes);
}

namespace {

// The value of each hex digit in either case; -1 for every other byte.
constexpr std::array<std::int8_t, 256> kHexValues = [] {
    std::array<std::int8_t, 256> values{};
    values.fill(-1);
    for (int digit = 0; digit < 10; ++digit) {
        values['0' + digit] = static_cast<std::int8_t>(digit);
    }
    for (int letter = 0; letter < 6; ++letter) {
        values['a' + letter] = static_cast<std::int8_t>(10 + letter);
        values['A' + letter] = static_cast<std::int8_t>(10 + letter);
    }
    return values;
}();

int hexValue(char c) {
    return kHexValues[static_cast<unsigned char>(c)];
}

}  // namespace

std::optional<Uuid> Uuid::parse(std::string_view text) {
    // Decoded here rather than by uuid_parse, which reads each byte through
    // strtoul: restoring a history backup parses millions of identifiers.
    if (text.size() != 36) {
        return std::nullopt;
    }
    Bytes bytes;
    std::size_t filled = 0;
    for (std::size_t index = 0; index < text.size();) {
        if (index == 8 || index == 13 || index == 18 || index == 23) {
            if (text[index] != '-') {
                return std::nullopt;
            }
            ++index;
            continue;
        }
        const int high = hexValue(text[index]);
        const int low = hexValue(text[index + 1]);
        if (high < 0 || low < 0) {
            return std::nullopt;
        }
        bytes[filled++] = static_cast<std::uint8_t>((high << 4) | low);
        index += 2;
    }
    return Uuid(bytes);
}

std::optional<Uuid> Uuid::fromBytes(const void* data, std::size_t size) {
    if (data == nullptr || size != 16) {
        return std::nullopt;
    }
    Bytes bytes;
    std::memcpy(bytes.data(), data, 16);
    return Uuid(bytes);
}

std::string Uuid::upperString() const {
    char buffer[37];
    uuid_unparse_upper(bytes_.data(), buffer);
    return buffer;
}

std::string Uuid::lowerString() const {
    char buffer[37];
    uuid_unparse_lower(bytes_.data(), buffer);
    return buffer;
}

bool Uuid::isNil() const {
    return uuid_is_null(bytes_.data()) != 0;
}

}  // namespace foundation
}  // namespace lumenote

std::size_t std::hash<lumenote::Uuid>::operator()(const lumenote::Uuid& uuid) const noexcept {
    std::uint64_t high;
    std::uint64_t low;
    std::memcpy(&high, uuid.bytes().data(), 8);
    std::memcpy(&low, uuid.bytes().data() + 8, 8);
    return static_cast<std::size_t>(high ^ (low * 0x9E3779B97F4A7C15ULL));
}
