#include "recording/unclassified_review_service.hpp"

namespace lumenote::recording {

UnclassifiedReviewService::UnclassifiedReviewService(SessionHistoryReader& reader,
                                                     classification::ClassificationRules& rules)
    : reader_(reader), rules_(rules) {
    rulesToken_ = rules_.changed().add([this] { invalidate(); });
}

UnclassifiedReviewService::~UnclassifiedReviewService() {
    rules_.changed().remove(rulesToken_);
}

Result<const std::vector<UnclassifiedActivityGroup>*, StoreError>
UnclassifiedReviewService::groups() {
    if (!cache_) {
        std::vector<UnclassifiedActivityTally> tallies;
        auto read = reader_.forEachUnclassifiedActivityTally([&tallies](const auto& tally) {
            tallies.push_back(tally);
            return true;
        });
        if (!read) {
            return fail(read.error());
        }
        cache_ = unclassifiedActivityGroups(tallies, rules_.lookup());
    }
    return &*cache_;
}

Result<std::optional<UnclassifiedActivityGroup>, StoreError> UnclassifiedReviewService::group(
    std::string_view id) {
    auto all = groups();
    if (!all) {
        return fail(all.error());
    }
    for (const UnclassifiedActivityGroup& group : **all) {
        if (group.id == id) {
            return std::optional<UnclassifiedActivityGroup>(group);
        }
    }
    return std::optional<UnclassifiedActivityGroup>();
}

Result<void, classification::ClassificationError> UnclassifiedReviewService::classify(
    const UnclassifiedActivityGroup& group, classification::ActivityClassification choice,
    classification::LocalPDFClassificationScope pdfScope) {
    using Kind = UnclassifiedActivityGroup::Kind;
    switch (group.kind) {
        case Kind::website:
            return rules_.saveWebsiteClassification(group.hostname.value_or(""), choice);
        case Kind::localPDF:
            if (!group.pdfIdentifier) {
                return fail(classification::ClassificationError{
                    classification::ClassificationFailure::classificationNotSaved,
                    group.title,
                    {}});
            }
            return rules_.classifyLocalPDF(*group.pdfIdentifier, choice, pdfScope);
        case Kind::application:
            break;
    }
    return rules_.saveApplicationClassification(group.bundleIdentifier, group.title, choice);
}

}  // namespace lumenote::recording
