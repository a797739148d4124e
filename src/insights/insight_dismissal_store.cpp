#include "insights/insight_dismissal_store.hpp"

#include <fmt/format.h>

#include <algorithm>

namespace lumenote::insights {

std::string unsupportedDismissalVersionMessage(long long version) {
    return fmt::format(
        "Insight dismissals use unsupported format version {}. The file was left unchanged.",
        version);
}

std::string dismissalNotSavedMessage(std::string_view description) {
    return fmt::format("Insight dismissal could not be saved: {}", description);
}

std::string dismissalFileUnreadableMessage(std::string_view description) {
    return fmt::format("Insight dismissals could not be read and were left unchanged: {}",
                       description);
}

InsightDismissalStore::InsightDismissalStore(InsightDismissalPersisting& repository, Clock now)
    : repository_(repository), now_(std::move(now)) {
    InsightDismissalLoad loaded = repository_.load();
    switch (loaded.status) {
        case InsightDismissalLoadStatus::loaded:
            records_ = std::move(loaded.document.records);
            keepNewest();
            break;
        case InsightDismissalLoadStatus::missing:
            break;
        case InsightDismissalLoadStatus::unsupportedVersion:
            isReadOnly_ = true;
            lastError_ = unsupportedDismissalVersionMessage(loaded.formatVersion.value_or(0));
            break;
        case InsightDismissalLoadStatus::invalidRecord:
            lastError_ = std::string(kInvalidDismissalRecordMessage);
            break;
        case InsightDismissalLoadStatus::refused:
            isReadOnly_ = true;
            lastError_ = dismissalFileUnreadableMessage(
                describe(loaded.error.value_or(PrivateFileError::unreadable)));
            break;
    }
}

void InsightDismissalStore::keepNewest() {
    if (records_.size() <= kMaximumInsightDismissals) {
        return;
    }
    // Stable: of equal dates the later record in the file is the newer one.
    std::stable_sort(records_.begin(), records_.end(),
                     [](const InsightDismissalRecord& a, const InsightDismissalRecord& b) {
                         return a.dismissedAt < b.dismissedAt;
                     });
    records_.erase(records_.begin(), records_.end() - static_cast<long>(kMaximumInsightDismissals));
}

bool InsightDismissalStore::dismiss(const LocalInsightFact& fact) {
    if (isReadOnly_) {
        return false;
    }
    const std::vector<InsightDismissalRecord> before = records_;
    std::erase_if(records_, [&](const InsightDismissalRecord& record) {
        return record.key.insightID == fact.id;
    });
    records_.push_back({{fact.id, fact.evidenceRevision}, now_()});
    keepNewest();
    const auto saved = repository_.save({kInsightDismissalFormatVersion, records_});
    if (!saved) {
        records_ = before;
        lastError_ = dismissalNotSavedMessage(describe(saved.error()));
    } else {
        lastError_.reset();
    }
    changed_.notify();
    return saved.ok();
}

bool InsightDismissalStore::isDismissed(std::string_view insightID,
                                        std::string_view evidenceRevision) const {
    return containsDismissal(records_, insightID, evidenceRevision);
}

}  // namespace lumenote::insights
