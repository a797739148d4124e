// The clocks and the idle-time source the recorder reads, behind small
// interfaces so that tests and other platforms can substitute them. The
// system's own clocks are in platform/system.
#pragma once

#include "foundation/dates.hpp"

namespace lumenote::recording {

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

}  // namespace lumenote::recording
