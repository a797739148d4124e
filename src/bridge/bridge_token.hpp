// The bridge token: the shared secret that proves a bridge document was
// written by a party allowed to use the bridge directory.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace lumenote::bridge {

// 32 bytes (256 bits) from the system's random source, written as 64
// lower-case hexadecimal digits; nullopt when the source cannot be read.
std::optional<std::string> generateBridgeToken();

// Whether `text` has the form generateBridgeToken() writes.
bool isWellFormedBridgeToken(std::string_view text);

// Compares two tokens in time that depends only on their lengths, so that a
// writer guessing the token learns nothing from how long a refusal takes.
bool bridgeTokensMatch(std::string_view expected, std::string_view given);

}  // namespace lumenote::bridge
