#include "recording/frontmost_gaps.hpp"

namespace lumenote::recording {

FrontmostReading readFrontmost(const FrontmostMemory& memory,
                               const std::optional<FrontmostApplication>& reported,
                               TrackingInstant at) {
    if (reported) {
        return FrontmostReading{reported, memory.gapStart, FrontmostMemory{reported, {}, false}};
    }
    if (memory.nothingInFront) {
        return FrontmostReading{std::nullopt, std::nullopt, memory};
    }
    if (!memory.gapStart) {
        return FrontmostReading{memory.lastNamed, std::nullopt,
                                FrontmostMemory{memory.lastNamed, at, false}};
    }
    if (at.monotonicTime - memory.gapStart->monotonicTime >= kFrontmostGapTolerance) {
        return FrontmostReading{std::nullopt, memory.gapStart, FrontmostMemory{{}, {}, true}};
    }
    return FrontmostReading{memory.lastNamed, std::nullopt, memory};
}

}  // namespace lumenote::recording
