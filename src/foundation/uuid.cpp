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

std::optional<Uuid> Uuid::parse(std::string_view text) {
    // uuid_parse needs a terminated string of exactly 36 characters.
    if (text.size() != 36) {
        return std::nullopt;
    }
    char buffer[37];
    std::memcpy(buffer, text.data(), 36);
    buffer[36] = '\0';
    Bytes bytes;
    if (uuid_parse(buffer, bytes.data()) != 0) {
        return std::nullopt;
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
