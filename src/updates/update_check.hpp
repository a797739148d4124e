// One update check, as the user asks for it: the order of the refusals, the
// fetch, the verification and the comparison, and its outcome as a value
// with its fixed sentence. Nothing is ever downloaded or installed: a newer
// release is offered with its notes and download address, nothing more.
#pragma once

#include <optional>
#include <string>

#include "updates/ed25519_verifier.hpp"
#include "updates/feed_fetcher.hpp"
#include "updates/update_feed.hpp"
#include "updates/version_order.hpp"

namespace lumenote::updates {

enum class UpdateCheckStatus {
    upToDate,         // the feed offers this release or an older one
    newerAvailable,   // the feed offers a newer release: `offer`
    checksOff,        // the preference does not allow checking
    noFeedAddress,    // neither the build nor the preference names a feed
    insecureAddress,  // the feed address (or a redirect) is not https://
    unreachable,      // the feed could not be fetched
    malformedFeed,    // the answer is not a signed feed Lumenote can read
    notVerified       // the signature did not verify with the release key
};

struct UpdateCheckOutcome {
    UpdateCheckStatus status = UpdateCheckStatus::upToDate;
    std::string runningVersion;
    std::optional<UpdateFeed> offer;  // only with newerAvailable

    // Up to date or newer available: the check itself worked.
    bool succeeded() const;
};

// The fixed sentence of an outcome; a newer release's notes are not part of it.
std::string updateCheckSentence(const UpdateCheckOutcome& outcome);

struct UpdateCheckRequest {
    bool checksEnabled = false;
    std::string feedAddress;  // the effective address (feed_address.hpp)
    std::string runningVersion;
    ReleaseNumber runningRelease;
};

// Refuses, in this order, while checks are off, without a feed address and
// for an address that is not https:// — all before `fetcher` is asked for
// anything; otherwise fetches the signed envelope, verifies it with `key` and
// compares its release with the running one.
UpdateCheckOutcome checkForUpdates(const UpdateCheckRequest& request, FeedFetcher& fetcher,
                                   const Ed25519PublicKey& key);

}  // namespace lumenote::updates
