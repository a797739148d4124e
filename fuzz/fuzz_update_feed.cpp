// Fuzzes what an update check reads from the network: the signed envelope,
// the feed document inside it, its base64 and the versions it names. Each
// input goes through every reader; whatever one accepts must keep the rules
// the check relies on.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "round_trip.hpp"
#include "updates/feed_address.hpp"
#include "updates/release_channel.hpp"
#include "updates/signed_feed.hpp"
#include "updates/strict_base64.hpp"
#include "updates/update_feed.hpp"

namespace lumenote::fuzz {
namespace {

using namespace updates;

void fuzzUpdateReaders(std::string_view bytes) {
    if (const auto feed = parseUpdateFeed(bytes)) {
        check(bytes.size() <= kMaximumFeedBytes, "update feed", "read past the size cap", bytes);
        check(versionComponents(feed->version).has_value(), "update feed",
              "accepted a version that is not dotted numbers", bytes);
        check(isSecureAddress(feed->downloadAddress), "update feed",
              "accepted a download address that is not https://", bytes);
        check(feed->build >= 0, "update feed", "accepted a negative build", bytes);
    }
    // No input is signed with the release key's private half.
    check(!verifiedUpdateFeed(bytes, kReleasePublicKey).ok(), "signed feed",
          "verified an envelope nobody signed", bytes);
    if (const auto decoded = strictBase64Decoded(bytes)) {
        const std::size_t padding = bytes.ends_with("==") ? 2 : bytes.ends_with('=') ? 1 : 0;
        check(decoded->size() == bytes.size() / 4 * 3 - padding, "base64",
              "decoded to the wrong number of bytes", bytes);
    }
    if (const auto components = versionComponents(bytes)) {
        const ReleaseNumber release{*components, 0};
        check(compareReleases(release, release) == 0, "version", "differs from itself", bytes);
    }
}

}  // namespace
}  // namespace lumenote::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    lumenote::fuzz::fuzzUpdateReaders(std::string_view(reinterpret_cast<const char*>(data), size));
    return 0;
}
