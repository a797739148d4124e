// The signed form in which an update feed travels: one JSON envelope
//
//   {"feed": "<base64 of the feed's bytes>", "signature": "<base64>"}
//
// fetched in a single request from the feed address. The signature is an
// Ed25519 signature over the decoded feed bytes, exactly as they are (not
// over any re-serialisation), so the publisher signs the file it wrote and
// nothing in transit can be changed without the check failing. One request
// means the feed and its signature can never come from different versions of
// the server's files.
#pragma once

#include <string>
#include <string_view>

#include "foundation/result.hpp"
#include "updates/ed25519_verifier.hpp"
#include "updates/update_feed.hpp"

namespace lumenote::updates {

// The largest envelope read: a full-size feed in base64 plus its signature
// and the JSON around them.
inline constexpr std::size_t kMaximumEnvelopeBytes = kMaximumFeedBytes / 3 * 4 + 4 * 1024;

enum class SignedFeedError {
    malformed,   // not an envelope, the feed is not base64, or the feed is not a valid feed
    notVerified  // the signature is absent, not base64, of the wrong length, or does not match
};

// The feed inside `envelope`, read only after its signature verified with
// `key`.
Result<UpdateFeed, SignedFeedError> verifiedUpdateFeed(std::string_view envelope,
                                                       const Ed25519PublicKey& key);

}  // namespace lumenote::updates
