// The update feed: the JSON document that names the newest release.
//
//   {"version": "0.2.0", "build": 7, "releaseNotes": "…",
//    "downloadAddress": "https://…", "published": "2026-11-20"}
//
// "published" is optional; members not listed are ignored so that later
// feeds may add some. The document is only read after its signature was
// verified (signed_feed.hpp).
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "foundation/result.hpp"
#include "updates/version_order.hpp"

namespace lumenote::updates {

// A feed larger than this (in bytes) is refused unread.
inline constexpr std::size_t kMaximumFeedBytes = 64 * 1024;

struct UpdateFeed {
    std::string version;  // dotted numbers, as in the feed
    std::int64_t build = 0;
    std::string releaseNotes;
    std::string downloadAddress;  // always https://
    std::optional<std::string> published;

    ReleaseNumber releaseNumber() const;
    friend bool operator==(const UpdateFeed&, const UpdateFeed&) = default;
};

enum class FeedError {
    tooLarge,
    notJson,          // not UTF-8 JSON, or not an object
    missingMember,    // version, build, releaseNotes or downloadAddress is absent
    wrongType,        // a member of another JSON type, a negative or fractional build
    badVersion,       // the version is not dotted numbers
    insecureDownload  // the download address is not https://
};

// Reads a feed from its exact bytes; never throws.
Result<UpdateFeed, FeedError> parseUpdateFeed(std::string_view bytes);

}  // namespace lumenote::updates
