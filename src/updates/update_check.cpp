#include "updates/update_check.hpp"

#include <fmt/format.h>

#include <cassert>

#include "updates/feed_address.hpp"
#include "updates/signed_feed.hpp"

namespace lumenote::updates {

bool UpdateCheckOutcome::succeeded() const {
    return status == UpdateCheckStatus::upToDate || status == UpdateCheckStatus::newerAvailable;
}

std::string updateCheckSentence(const UpdateCheckOutcome& outcome) {
    switch (outcome.status) {
        case UpdateCheckStatus::upToDate:
            return fmt::format("Lumenote {} is the newest version.", outcome.runningVersion);
        case UpdateCheckStatus::newerAvailable:
            assert(outcome.offer);
            return fmt::format("Lumenote {} is available. You have {}.", outcome.offer->version,
                               outcome.runningVersion);
        case UpdateCheckStatus::checksOff:
            return "Checking for updates is off. Turn on \u201cAllow checking for updates when I "
                   "ask\u201d in Settings, About (or set updates.checkEnabled with lumenote-cli "
                   "prefs set).";
        case UpdateCheckStatus::noFeedAddress:
            return "This build of Lumenote names no update address. Set one in the "
                   "updates.feedAddress preference to check for updates.";
        case UpdateCheckStatus::insecureAddress:
            return "Lumenote checks for updates only over a secure connection (an https:// "
                   "address).";
        case UpdateCheckStatus::unreachable:
            return "Lumenote could not reach the update address. Check the connection and try "
                   "again later.";
        case UpdateCheckStatus::malformedFeed:
            return "The update information is not in a form Lumenote can read, so nothing was "
                   "changed.";
        case UpdateCheckStatus::notVerified:
            return "The update information could not be verified, so nothing was changed.";
    }
    return {};
}

UpdateCheckOutcome checkForUpdates(const UpdateCheckRequest& request, FeedFetcher& fetcher,
                                   const Ed25519PublicKey& key) {
    UpdateCheckOutcome outcome{.runningVersion = request.runningVersion};
    const auto finish = [&outcome](UpdateCheckStatus status) {
        outcome.status = status;
        return outcome;
    };
    if (!request.checksEnabled) {
        return finish(UpdateCheckStatus::checksOff);
    }
    if (request.feedAddress.empty()) {
        return finish(UpdateCheckStatus::noFeedAddress);
    }
    if (!isSecureAddress(request.feedAddress)) {
        return finish(UpdateCheckStatus::insecureAddress);
    }
    const auto envelope = fetcher.fetch(request.feedAddress, kMaximumEnvelopeBytes);
    if (!envelope) {
        switch (envelope.error()) {
            case FetchError::unreachable:
                return finish(UpdateCheckStatus::unreachable);
            case FetchError::tooLarge:
                return finish(UpdateCheckStatus::malformedFeed);
            case FetchError::insecureRedirect:
                return finish(UpdateCheckStatus::insecureAddress);
        }
    }
    auto feed = verifiedUpdateFeed(*envelope, key);
    if (!feed) {
        return finish(feed.error() == SignedFeedError::notVerified
                          ? UpdateCheckStatus::notVerified
                          : UpdateCheckStatus::malformedFeed);
    }
    if (compareReleases(feed->releaseNumber(), request.runningRelease) <= 0) {
        return finish(UpdateCheckStatus::upToDate);
    }
    outcome.offer = std::move(*feed);
    return finish(UpdateCheckStatus::newerAvailable);
}

}  // namespace lumenote::updates
