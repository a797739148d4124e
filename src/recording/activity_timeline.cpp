#include "recording/activity_timeline.hpp"

#include <algorithm>

namespace lumenote::recording {

std::optional<FinalizedActivityInterval> ActivityTimelineEngine::observe(const ActivityState& state,
                                                                         TrackingInstant at) {
    if (!openInterval_) {
        openInterval_ = OpenInterval{state, at};
        return std::nullopt;
    }
    if (openInterval_->state == state) {
        return std::nullopt;
    }
    const TrackingInstant boundary = closingInstant(at);
    FinalizedActivityInterval closed = close(boundary);
    openInterval_ = OpenInterval{state, boundary};
    return closed;
}

std::optional<FinalizedActivityInterval> ActivityTimelineEngine::finalize(TrackingInstant at) {
    if (!openInterval_) {
        return std::nullopt;
    }
    FinalizedActivityInterval closed = close(closingInstant(at));
    openInterval_.reset();
    return closed;
}

TrackingInstant ActivityTimelineEngine::closingInstant(TrackingInstant at) const {
    const TrackingInstant& start = openInterval_->start;
    if (at.monotonicTime < start.monotonicTime) {
        return start;
    }
    return at;
}

FinalizedActivityInterval ActivityTimelineEngine::close(TrackingInstant at) const {
    const OpenInterval& open = *openInterval_;
    return FinalizedActivityInterval{
        open.start.wallDate,
        at.wallDate,
        std::max(0.0, at.monotonicTime - open.start.monotonicTime),
        open.state,
    };
}

}  // namespace lumenote::recording
