#include "insights/focus_candidates.hpp"

#include <algorithm>
#include <utility>

namespace lumenote::insights {

namespace {

bool largerTotal(const FocusCandidate& a, const FocusCandidate& b) {
    return a.focused > b.focused;
}

}  // namespace

void FocusCandidates::add(FocusCandidate candidate) {
    ++count_;
    largest_.push_back(std::move(candidate));
    std::push_heap(largest_.begin(), largest_.end(), largerTotal);
    if (largest_.size() > kMaximumFocusRunsChecked) {
        std::pop_heap(largest_.begin(), largest_.end(), largerTotal);
        largestDropped_ = std::max(largestDropped_, largest_.back().focused);
        largest_.pop_back();
    }
}

std::vector<FocusCandidate> FocusCandidates::largestFirst() && {
    std::sort_heap(largest_.begin(), largest_.end(), largerTotal);
    return std::move(largest_);
}

}  // namespace lumenote::insights
