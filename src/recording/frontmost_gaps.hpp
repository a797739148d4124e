// Momentary gaps in the frontmost application: what a sample that finds no
// application in front counts as. While a window manager moves focus from one
// window to the next it may report no active window for a moment; that moment
// is the switch itself, not a stretch of "Unknown application".
//
// The rule, applied to every sample in order:
// - A sample that names no application opens a gap, which starts at that
//   sample. While the gap may still be a switch, the application named last
//   stays in front (or, when none was named since observation began, no
//   application is).
// - A sample that names an application ends the gap as a switch: the newly
//   named application has been in front since the gap started, so its
//   stretch begins there and the stretch before it ends there. Without a gap
//   it begins at the sample.
// - A sample that still names none kFrontmostGapTolerance or more after the
//   gap started turns the gap into a stretch of its own, with no application,
//   which likewise begins where the gap started. That stretch lasts until a
//   sample names an application, whose stretch then begins at that sample.
// A gap is thus part of a switch when it ends before a sample finds it a
// whole tolerance old; the live display keeps the previous application
// meanwhile, and a gap cut short by a pause, a sleep or the session's end
// stays with it. The recorder forgets everything here whenever observation
// (re)starts, so an application seen before a pause or a sleep is never held.
#pragma once

#include <optional>

#include "recording/activity_timeline.hpp"
#include "recording/platform_services.hpp"

namespace lumenote::recording {

// How long no application must be in front before it counts as a stretch of
// its own: one sampling interval, in monotonic seconds.
inline constexpr double kFrontmostGapTolerance = 1.0;

// What the rule keeps between samples.
struct FrontmostMemory {
    // The application named last, held through a gap that may be a switch.
    std::optional<FrontmostApplication> lastNamed;
    // The first sample of a gap that may still be a switch.
    std::optional<TrackingInstant> gapStart;
    // A gap has become a stretch with no application.
    bool nothingInFront = false;
};

// What one sample counts as.
struct FrontmostReading {
    // The application to record; nullopt records "Unknown application".
    std::optional<FrontmostApplication> application;
    // Set when the sample ends a gap or turns it into a stretch of its own:
    // the instant (in the past) since which `application` has been in front.
    std::optional<TrackingInstant> inFrontSince;
    // To pass to the next sample.
    FrontmostMemory memory;
};

// Applies the rule to `reported`, what the frontmost source says at `at`.
FrontmostReading readFrontmost(const FrontmostMemory& memory,
                               const std::optional<FrontmostApplication>& reported,
                               TrackingInstant at);

}  // namespace lumenote::recording
