// What the desktop lets the recorder observe, checked without recording.
#pragma once

#include <optional>
#include <string>

#include "platform/observation/observation_health.hpp"
#include "platform/observation/wayland_setup.hpp"

namespace lumenote::runtime {

// One line per part, each marked "ok" or "gap" with what is missing and what
// it costs.
struct SetupCheck {
    std::string report;
    bool complete = true;  // no gap
    // What would let Lumenote see the application in front on this desktop.
    platform::observation::WaylandSetupStep waylandStep =
        platform::observation::WaylandSetupStep::notWayland;
};
// Runs inside the process's application object when there is one, else in
// one of its own for the duration of the check. A process that records
// passes what its own observers see (`observing`): a second set of observers
// would compete with them for the desktop's helpers. Without it the check
// opens the observers itself for its duration.
SetupCheck checkSetup(
    const std::optional<platform::observation::ObservationHealth>& observing = std::nullopt);

}  // namespace lumenote::runtime
