#include "updates/release_channel.hpp"

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

}  // namespace lumenote::updates
