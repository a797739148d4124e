// Decoding of the base64 fields of a signed feed: the standard alphabet with
// padding, nothing else accepted, so that one signed document has exactly one
// spelling.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace lumenote::updates {

// The bytes `text` encodes; nullopt unless `text` is a multiple of four
// characters of the standard alphabet with "=" only as final padding, no
// white space, and no stray bits in the last character.
std::optional<std::string> strictBase64Decoded(std::string_view text);

}  // namespace lumenote::updates
