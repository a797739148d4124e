#include "ui/models/timeline_model.hpp"

#include <algorithm>
#include <cmath>

#include "recording/replay_rows.hpp"

namespace lumenote::ui::models {

using recording::ActivitySegment;
using recording::ActivitySourceType;

namespace {

// Segments are stored to the millisecond: closer than this they touch.
constexpr double kTouchingSeconds = 0.001;

TimelineBlock blockOf(const ActivitySegment& segment) {
    TimelineBlock block;
    block.start = segment.startDate;
    block.end = segment.endDate;
    if (segment.activitySource() == ActivitySourceType::system) {
        block.kind = TimelineBlockKind::sleep;
        block.name = recording::segmentTitle(segment);
    } else if (segment.isInactive) {
        block.kind = TimelineBlockKind::noInput;
        block.name = kNoInputBlockName;
    } else {
        block.kind = TimelineBlockKind::activity;
        block.classification = segment.classification();
        block.name = recording::segmentTitle(segment);
    }
    return block;
}

bool continues(const TimelineBlock& previous, const TimelineBlock& next) {
    return next.start.secondsSince(previous.end) <= kTouchingSeconds &&
           previous.kind == next.kind && previous.classification == next.classification &&
           previous.name == next.name;
}

}  // namespace

std::vector<TimelineBlock> timelineBlocks(std::vector<ActivitySegment> segments) {
    std::stable_sort(segments.begin(), segments.end(),
                     [](const ActivitySegment& a, const ActivitySegment& b) {
                         return a.startDate < b.startDate;
                     });
    std::vector<TimelineBlock> blocks;
    for (const ActivitySegment& segment : segments) {
        TimelineBlock block = blockOf(segment);
        if (!blocks.empty() && block.start < blocks.back().end) {
            block.start = blocks.back().end;
        }
        if (!std::isfinite(block.start.secondsSinceReferenceDate) ||
            !std::isfinite(block.end.secondsSinceReferenceDate) || !(block.start < block.end)) {
            continue;
        }
        if (!blocks.empty() && continues(blocks.back(), block)) {
            blocks.back().end = block.end;
        } else {
            blocks.push_back(std::move(block));
        }
    }
    return blocks;
}

std::optional<TimelineSpan> timelineSpan(const std::vector<TimelineBlock>& blocks) {
    if (blocks.empty()) {
        return std::nullopt;
    }
    return TimelineSpan{blocks.front().start, blocks.back().end};
}

std::optional<PixelRange> blockPixels(const TimelineBlock& block, const TimelineSpan& span,
                                      double width) {
    const double total = span.seconds();
    if (!(total > 0.0) || !(width > 0.0) || !std::isfinite(total) || !std::isfinite(width)) {
        return std::nullopt;
    }
    const double from = std::max(block.start.secondsSince(span.start), 0.0);
    const double to = std::min(block.end.secondsSince(span.start), total);
    if (!(from < to)) {
        return std::nullopt;
    }
    PixelRange range{from / total * width, to / total * width};
    if (range.right - range.left < 1.0) {
        range.right = range.left + 1.0;
        if (range.right > width) {
            range.right = width;
            range.left = std::max(width - 1.0, 0.0);
        }
    }
    return range;
}

std::optional<std::size_t> blockIndexAt(const std::vector<TimelineBlock>& blocks,
                                        const TimelineSpan& span, double width, double x) {
    std::optional<std::size_t> found;
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        const auto range = blockPixels(blocks[i], span, width);
        if (range && x >= range->left && x < range->right) {
            found = i;
        }
    }
    return found;
}

}  // namespace lumenote::ui::models
