// The review list as the front ends use it: computed from the store on first
// use and kept until something could change it, and each group classified
// through the shared classification rules.
//
// The cached list is dropped when a rule, an override or a PDF class changes
// (the rules announce every change, from any front end of this process) and
// when the owner calls invalidate(): at the end of each session and after
// sessions were deleted, restored or reset.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "classification/classification_rules.hpp"
#include "foundation/observer_list.hpp"
#include "foundation/result.hpp"
#include "foundation/store_error.hpp"
#include "recording/session_history_reader.hpp"
#include "recording/unclassified_activity_review.hpp"

namespace lumenote::recording {

class UnclassifiedReviewService {
  public:
    UnclassifiedReviewService(SessionHistoryReader& reader,
                              classification::ClassificationRules& rules);
    ~UnclassifiedReviewService();
    UnclassifiedReviewService(const UnclassifiedReviewService&) = delete;
    UnclassifiedReviewService& operator=(const UnclassifiedReviewService&) = delete;

    // The groups, from the cache when it holds them; fails with the store's
    // error (and caches nothing) when the segments cannot be read.
    Result<const std::vector<UnclassifiedActivityGroup>*, StoreError> groups();
    // The group with this id in the current list, if any.
    Result<std::optional<UnclassifiedActivityGroup>, StoreError> group(std::string_view id);
    void invalidate() { cache_.reset(); }
    bool isCached() const { return cache_.has_value(); }

    // Writes the rule for the group's application or hostname, or gives its
    // PDF the class as far as `pdfScope` reaches. The list is recomputed on
    // its next use.
    Result<void, classification::ClassificationError> classify(
        const UnclassifiedActivityGroup& group, classification::ActivityClassification choice,
        classification::LocalPDFClassificationScope pdfScope =
            classification::LocalPDFClassificationScope::thisPDFInSession);

  private:
    SessionHistoryReader& reader_;
    classification::ClassificationRules& rules_;
    ObserverList<>::Token rulesToken_;
    std::optional<std::vector<UnclassifiedActivityGroup>> cache_;
};

}  // namespace lumenote::recording
