// The clocks and the idle-time source the recorder reads, behind small
// interfaces so that tests and other platforms can substitute them.
#pragma once

#include <ctime>

#include "foundation/dates.hpp"

namespace lumenote {

// Seconds since the user's last keyboard or mouse input.
class IdleTimeProvider {
  public:
    virtual ~IdleTimeProvider() = default;
    virtual double idleSeconds() = 0;
};

// Seconds on a clock that only moves forward and keeps counting while the
// computer sleeps; only differences between two readings mean anything.
class MonotonicTimeProvider {
  public:
    virtual ~MonotonicTimeProvider() = default;
    virtual double now() = 0;
};

// The wall clock, for stored dates and display.
class WallClock {
  public:
    virtual ~WallClock() = default;
    virtual Date now() = 0;
};

// CLOCK_BOOTTIME, which (unlike CLOCK_MONOTONIC and std::chrono::steady_clock
// on Linux) keeps counting through suspend. Readings are seconds since the
// provider was made.
class SystemMonotonicTimeProvider final : public MonotonicTimeProvider {
  public:
    SystemMonotonicTimeProvider();
    double now() override;

  private:
    timespec origin_{};
};

class SystemWallClock final : public WallClock {
  public:
    Date now() override;
};

}  // namespace lumenote
