// The system's clocks behind the recorder's clock interfaces.
#pragma once

#include <ctime>

#include "recording/time_providers.hpp"

namespace lumenote::platform::system {

// CLOCK_BOOTTIME, which (unlike CLOCK_MONOTONIC and std::chrono::steady_clock
// on Linux) keeps counting through suspend. Readings are seconds since the
// provider was made.
class SystemMonotonicTimeProvider final : public recording::MonotonicTimeProvider {
  public:
    SystemMonotonicTimeProvider();
    double now() override;

  private:
    timespec origin_{};
};

class SystemWallClock final : public recording::WallClock {
  public:
    Date now() override;
};

}  // namespace lumenote::platform::system
