// What a timeline strip draws: a session's (or a day's) segments as blocks,
// one per stretch of one activity, and where each block sits on a strip of a
// given width. Pure functions over plain values, tested without a display.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "classification/classification_enumerations.hpp"
#include "foundation/dates.hpp"
#include "recording/session_records.hpp"

namespace lumenote::ui::models {

// What a stretch was: an activity in front (coloured by its class), time
// without input (hatched) or the computer asleep or locked (grey).
enum class TimelineBlockKind { activity, noInput, sleep };

struct TimelineBlock {
    Date start;
    Date end;
    TimelineBlockKind kind = TimelineBlockKind::activity;
    // The class of an activity block; nullopt for no input and sleep.
    std::optional<classification::ActivityClassification> classification;
    // What the block is called where it is shown: the replay's title of its
    // segment, "No input" for time without input.
    std::string name;

    friend bool operator==(const TimelineBlock&, const TimelineBlock&) = default;
};

// The name of a block of time without input.
inline constexpr const char* kNoInputBlockName = "No input";

// The blocks of `segments` in time order. The segments may come in any
// order: they are sorted by start; a segment that ends before it starts is
// dropped, and one that overlaps the block before it is cut to start where
// that block ends (dropped if nothing is left), so that blocks never
// overlap. Neighbouring segments that touch and have the same kind, class
// and name become one block; a gap between segments (a pause) stays a gap.
std::vector<TimelineBlock> timelineBlocks(std::vector<recording::ActivitySegment> segments);

// The time a strip shows, from its first block's start to its last block's
// end; nullopt without blocks.
struct TimelineSpan {
    Date start;
    Date end;

    double seconds() const { return end.secondsSince(start); }
    friend bool operator==(const TimelineSpan&, const TimelineSpan&) = default;
};
std::optional<TimelineSpan> timelineSpan(const std::vector<TimelineBlock>& blocks);

// Where a block sits on a strip `width` pixels wide that shows `span`:
// [left, right) in pixels from the strip's left edge. The part outside the
// span is cut off; a block shorter than a pixel gets one pixel (kept inside
// the strip), so that no stretch disappears. nullopt when the block lies
// wholly outside the span, or the span or the width is not above 0.
struct PixelRange {
    double left = 0.0;
    double right = 0.0;

    friend bool operator==(const PixelRange&, const PixelRange&) = default;
};
std::optional<PixelRange> blockPixels(const TimelineBlock& block, const TimelineSpan& span,
                                      double width);

// The index of the block drawn under `x` on such a strip; nullopt over a
// gap or outside the strip. Where one-pixel blocks meet, the later wins.
std::optional<std::size_t> blockIndexAt(const std::vector<TimelineBlock>& blocks,
                                        const TimelineSpan& span, double width, double x);

}  // namespace lumenote::ui::models
