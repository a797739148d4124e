// What this build checks updates against: the running release, the feed
// address compiled in (the CMake cache variable LUMENOTE_UPDATE_FEED, empty by
// default) and the release public key.
//
// The release key: whoever publishes releases generates the key pair once,
//   openssl genpkey -algorithm ed25519 -out release-private.pem
// keeps the private key off every repository, and replaces kReleasePublicKey
// with the last 32 bytes of
//   openssl pkey -in release-private.pem -pubout -outform DER
// (for example through `tail -c 32 | xxd -i`). Feeds are signed with
//   openssl pkeyutl -sign -rawin -inkey release-private.pem -in feed.json
#pragma once

#include <string_view>

#include "updates/ed25519_verifier.hpp"
#include "updates/update_check.hpp"
#include "updates/version_order.hpp"

namespace lumenote::updates {

inline constexpr Ed25519PublicKey kReleasePublicKey{
    0xa6, 0x34, 0xb2, 0x11, 0xa1, 0x14, 0x81, 0x91, 0x03, 0x07, 0x74, 0x1f, 0xe2, 0x7b, 0x9a, 0xd0,
    0x00, 0xa1, 0x76, 0x1c, 0xdb, 0xd5, 0xd8, 0x84, 0x37, 0x3f, 0x0b, 0x9f, 0xf1, 0xf4, 0xd7, 0x22};

// The version and build number of this build, e.g. "0.1.0" and 1.
std::string_view runningVersion();
ReleaseNumber runningRelease();

// The feed address compiled in; empty when the build names none.
std::string_view compiledFeedAddress();

// The User-Agent of update requests, "Lumenote/0.1.0", and nothing more.
std::string_view updateUserAgent();

// A check of this build: allowed or not by the user's preference, against
// `preferredAddress` (the preference, or a command-line choice) when it is
// not blank, otherwise against the compiled-in address.
UpdateCheckRequest updateCheckRequest(bool checksEnabled, std::string_view preferredAddress);

}  // namespace lumenote::updates
