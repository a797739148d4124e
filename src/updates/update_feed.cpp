#include "updates/update_feed.hpp"

#include <nlohmann/json.hpp>

#include "foundation/text.hpp"
#include "updates/feed_address.hpp"

namespace lumenote::updates {

namespace {

using json = nlohmann::json;

Result<std::string, FeedError> textMember(const json& document, const char* name) {
    const auto found = document.find(name);
    if (found == document.end()) {
        return fail(FeedError::missingMember);
    }
    if (!found->is_string()) {
        return fail(FeedError::wrongType);
    }
    return found->get<std::string>();
}

}  // namespace

ReleaseNumber UpdateFeed::releaseNumber() const {
    return {versionComponents(version).value_or(std::vector<std::uint32_t>{}), build};
}

Result<UpdateFeed, FeedError> parseUpdateFeed(std::string_view bytes) {
    if (bytes.size() > kMaximumFeedBytes) {
        return fail(FeedError::tooLarge);
    }
    if (!text::isValidUtf8(bytes)) {
        return fail(FeedError::notJson);
    }
    const json document = json::parse(bytes, nullptr, false);
    if (document.is_discarded() || !document.is_object()) {
        return fail(FeedError::notJson);
    }
    UpdateFeed feed;
    for (const auto& [name, target] :
         {std::pair<const char*, std::string*>{"version", &feed.version},
          {"releaseNotes", &feed.releaseNotes},
          {"downloadAddress", &feed.downloadAddress}}) {
        auto value = textMember(document, name);
        if (!value) {
            return fail(value.error());
        }
        *target = std::move(*value);
    }
    const auto build = document.find("build");
    if (build == document.end()) {
        return fail(FeedError::missingMember);
    }
    if (!build->is_number_integer() || build->get<std::int64_t>() < 0) {
        return fail(FeedError::wrongType);
    }
    feed.build = build->get<std::int64_t>();
    if (const auto published = document.find("published"); published != document.end()) {
        if (!published->is_string()) {
            return fail(FeedError::wrongType);
        }
        feed.published = published->get<std::string>();
    }
    if (!versionComponents(feed.version)) {
        return fail(FeedError::badVersion);
    }
    if (!isSecureAddress(feed.downloadAddress)) {
        return fail(FeedError::insecureDownload);
    }
    return feed;
}

}  // namespace lumenote::updates
