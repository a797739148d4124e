#include "updates/signed_feed.hpp"

#include <nlohmann/json.hpp>

#include "updates/strict_base64.hpp"

namespace lumenote::updates {

Result<UpdateFeed, SignedFeedError> verifiedUpdateFeed(std::string_view envelope,
                                                       const Ed25519PublicKey& key) {
    if (envelope.size() > kMaximumEnvelopeBytes) {
        return fail(SignedFeedError::malformed);
    }
    const nlohmann::json document = nlohmann::json::parse(envelope, nullptr, false);
    if (document.is_discarded() || !document.is_object()) {
        return fail(SignedFeedError::malformed);
    }
    const auto feedText = document.find("feed");
    if (feedText == document.end() || !feedText->is_string()) {
        return fail(SignedFeedError::malformed);
    }
    const auto feedBytes = strictBase64Decoded(feedText->get_ref<const std::string&>());
    if (!feedBytes) {
        return fail(SignedFeedError::malformed);
    }
    const auto signatureText = document.find("signature");
    if (signatureText == document.end() || !signatureText->is_string()) {
        return fail(SignedFeedError::notVerified);
    }
    const auto signature = strictBase64Decoded(signatureText->get_ref<const std::string&>());
    if (!signature || !ed25519SignatureIsValid(key, *feedBytes, *signature)) {
        return fail(SignedFeedError::notVerified);
    }
    auto feed = parseUpdateFeed(*feedBytes);
    if (!feed) {
        return fail(SignedFeedError::malformed);
    }
    return std::move(*feed);
}

}  // namespace lumenote::updates
