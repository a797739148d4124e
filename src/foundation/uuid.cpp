#include "foundation/uuid.hpp"

#include <uuid/uuid.h>

#include <cstring>

namespace lumenote {
inline namespace foundation {

Uuid Uuid::generate() {
    Bytes bytes;
    uuid_generate_random(bytes.data());
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
