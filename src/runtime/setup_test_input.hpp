// Gathers the facts the setup test judges: what the desktop lets the
// recorder observe, the store, Google Chrome and its native-host
// registration, the extension as the bridge files show it, notifications,
// and the system. Reads only; changes nothing.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "bridge/setup_test.hpp"
#include "foundation/user_paths.hpp"
#include "platform/observation/observation_health.hpp"

namespace lumenote::runtime {

struct SetupTestSurroundings {
    UserPaths paths;
    std::string appVersion;
    std::string appBuild;
    // What the recording process's own observers see; without it the
    // desktop is observed afresh for the test.
    std::optional<platform::observation::ObservationHealth> observing;
};

bridge::SetupTestInput gatherSetupTestInput(const SetupTestSurroundings& surroundings);

}  // namespace lumenote::runtime
