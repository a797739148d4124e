// The sessions that may hold the longest Focused run of a history, kept while
// walking it. A session's longest run never exceeds its Focused total, so only
// the sessions with the largest totals need their segments loaded; this keeps
// the kMaximumFocusRunsChecked largest of them, so that the walk's memory does
// not grow with the history.
#pragma once

#include <cstddef>
#include <vector>

#include "foundation/uuid.hpp"

namespace lumenote::insights {

inline constexpr std::size_t kMaximumFocusRunsChecked = 64;

// A session whose longest Focused run may be the record: its Focused total
// (seconds, the run's upper bound) and its identifier.
struct FocusCandidate {
    double focused = 0.0;
    Uuid id;
};

class FocusCandidates {
  public:
    void add(FocusCandidate candidate);
    // How many were added in all.
    std::size_t count() const { return count_; }
    // The largest Focused total of the candidates that were not kept; 0 when
    // every candidate was kept.
    double largestDropped() const { return largestDropped_; }
    // The kept candidates, largest Focused total first.
    std::vector<FocusCandidate> largestFirst() &&;

  private:
    std::vector<FocusCandidate> largest_;  // a heap with the smallest total on top
    std::size_t count_ = 0;
    double largestDropped_ = 0.0;
};

}  // namespace lumenote::insights
