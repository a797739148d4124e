// Base64 in its standard alphabet with padding: the form of binary data
// (a browser event's raw bytes) inside the bridge's JSON envelopes.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace lumenote::bridge {

std::string base64Encoded(std::string_view bytes);

// The bytes `text` encodes; nullopt unless `text` is canonical standard
// base64: a multiple of four characters from the standard alphabet, "=" only
// as the final padding, no white space.
std::optional<std::string> base64Decoded(std::string_view text);

}  // namespace lumenote::bridge
