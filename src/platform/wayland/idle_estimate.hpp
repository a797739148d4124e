// Seconds since the last input, derived from an idle notification with a
// fixed timeout: the compositor says only "idle for the timeout" and
// "input again", never how long ago the last input was.
#pragma once

#include <optional>

namespace lumenote::platform::wayland {

// Resolution: while the user is active the reading is 0, although the last
// input may be up to `thresholdSeconds` ago (the notification has not come
// yet); once the compositor reports idle, the reading is the threshold plus
// the time since that report, exact up to how late the report was handled.
// So readings under the threshold are always 0, and readings at or above it
// are accurate. Times are seconds on one monotonic clock.
class IdleEstimate {
  public:
    explicit IdleEstimate(double thresholdSeconds) : thresholdSeconds_(thresholdSeconds) {}

    // The compositor reported no input for the threshold, handled at `now`.
    // A second report without input in between keeps the first.
    void idled(double now);
    // The compositor reported input again.
    void resumed();

    // Never negative, also when `now` is earlier than the idle report (a
    // reading taken with a clock value fetched before the event was handled).
    double idleSeconds(double now) const;
    double thresholdSeconds() const { return thresholdSeconds_; }

  private:
    double thresholdSeconds_;
    std::optional<double> idleSince_;
};

}  // namespace lumenote::platform::wayland
