// Ed25519 signature verification through OpenSSL 3's EVP interface.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace lumenote::updates {

inline constexpr std::size_t kEd25519PublicKeyBytes = 32;
inline constexpr std::size_t kEd25519SignatureBytes = 64;

// A public key in its raw 32-byte form (RFC 8032).
using Ed25519PublicKey = std::array<unsigned char, kEd25519PublicKeyBytes>;

// Whether `signature` (64 raw bytes) is `key`'s signature over exactly
// `message`. Any other signature length, an unusable key or an OpenSSL
// failure verifies as false.
bool ed25519SignatureIsValid(const Ed25519PublicKey& key, std::string_view message,
                             std::string_view signature);

}  // namespace lumenote::updates
