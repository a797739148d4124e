#include "recording/unclassified_activity_review.hpp"

#include <algorithm>
#include <map>

namespace lumenote::recording {

namespace {

using Kind = UnclassifiedActivityGroup::Kind;
using classification::ActivityClassification;

constexpr std::string_view kUnclassifiedRawValue = "unclassified";

std::string groupID(const UnclassifiedActivityTally& tally) {
    switch (tally.kind) {
        case Kind::website:
            return "website:" + tally.hostname.value_or("");
        case Kind::localPDF:
            return "localPDF:" + (tally.pdfIdentifier ? tally.pdfIdentifier->upperString() : "");
        case Kind::application:
            break;
    }
    return "application:" + tally.bundleIdentifier;
}

bool stillUnclassified(const UnclassifiedActivityTally& tally,
                       const classification::ClassificationLookup& lookup) {
    switch (tally.kind) {
        case Kind::website:
            return lookup.websiteClassification(tally.hostname.value_or(""), std::nullopt) ==
                   ActivityClassification::unclassified;
        case Kind::localPDF:
            return tally.currentPDFClassification.value_or(std::string(kUnclassifiedRawValue)) ==
                   kUnclassifiedRawValue;
        case Kind::application:
            break;
    }
    return lookup.applicationClassification(tally.bundleIdentifier, tally.applicationName) ==
           ActivityClassification::unclassified;
}

UnclassifiedActivityGroup newGroup(std::string id, const UnclassifiedActivityTally& tally) {
    UnclassifiedActivityGroup group;
    group.id = std::move(id);
    group.kind = tally.kind;
    group.bundleIdentifier = tally.bundleIdentifier;
    switch (tally.kind) {
        case Kind::website:
            group.title = tally.hostname && !tally.hostname->empty() ? *tally.hostname : "Website";
            group.subtitle = "Website";
            group.hostname = tally.hostname;
            group.browserBundleIdentifier = tally.browserBundleIdentifier;
            break;
        case Kind::localPDF:
            group.title = tally.pdfDisplayLabel && !tally.pdfDisplayLabel->empty()
                              ? *tally.pdfDisplayLabel
                              : "Local PDF";
            group.subtitle = "Local PDF";
            group.browserBundleIdentifier = tally.browserBundleIdentifier;
            group.pdfIdentifier = tally.pdfIdentifier;
            break;
        case Kind::application:
            group.title =
                tally.applicationName.empty() ? "Unknown application" : tally.applicationName;
            group.subtitle = tally.bundleIdentifier;
            break;
    }
    return group;
}

}  // namespace

std::string_view rawValue(UnclassifiedActivityGroup::Kind kind) {
    switch (kind) {
        case Kind::website:
            return "website";
        case Kind::localPDF:
            return "localPDF";
        case Kind::application:
            break;
    }
    return "application";
}

std::vector<UnclassifiedActivityGroup> unclassifiedActivityGroups(
    const std::vector<UnclassifiedActivityTally>& tallies,
    const classification::ClassificationLookup& lookup) {
    std::map<std::string, UnclassifiedActivityGroup, std::less<>> groups;
    for (const UnclassifiedActivityTally& tally : tallies) {
        if (!stillUnclassified(tally, lookup)) {
            continue;
        }
        std::string id = groupID(tally);
        auto found = groups.find(id);
        if (found == groups.end()) {
            found = groups.emplace(id, newGroup(id, tally)).first;
        }
        UnclassifiedActivityGroup& group = found->second;
        group.segmentCount += tally.segmentCount;
        group.totalDuration += tally.totalDuration;
        group.sessionIDs.insert(tally.session);
    }
    std::vector<UnclassifiedActivityGroup> ordered;
    ordered.reserve(groups.size());
    for (auto& [id, group] : groups) {
        group.sessionCount = group.sessionIDs.size();
        ordered.push_back(std::move(group));
    }
    std::sort(ordered.begin(), ordered.end(), [](const auto& a, const auto& b) {
        if (a.totalDuration != b.totalDuration) {
            return a.totalDuration > b.totalDuration;
        }
        return a.title != b.title ? a.title < b.title : a.id < b.id;
    });
    return ordered;
}

}  // namespace lumenote::recording
