#include "updates/release_channel.hpp"

#include "updates/feed_address.hpp"

namespace lumenote::updates {

std::string_view runningVersion() {
    return LUMENOTE_VERSION;
}

ReleaseNumber runningRelease() {
    return {versionComponents(LUMENOTE_VERSION).value_or(std::vector<std::uint32_t>{}),
            LUMENOTE_BUILD_NUMBER};
}

std::string_view compiledFeedAddress() {
    return LUMENOTE_UPDATE_FEED;
}

std::string_view updateUserAgent() {
    return "Lumenote/" LUMENOTE_VERSION;
}

UpdateCheckRequest updateCheckRequest(bool checksEnabled, std::string_view preferredAddress) {
    return {.checksEnabled = checksEnabled,
            .feedAddress = effectiveFeedAddress(preferredAddress, compiledFeedAddress()),
            .runningVersion = std::string(runningVersion()),
            .runningRelease = runningRelease()};
}

}  // namespace lumenote::updates
