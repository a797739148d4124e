// The command line of lumenote-scenario, runnable in-process: reads a script,
// runs it and prints the stored sessions.
#pragma once

#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

#include "foundation/dates.hpp"
#include "foundation/user_paths.hpp"

namespace lumenote::scenario {

// Where a run of lumenote-scenario may keep its files.
struct ScenarioFolders {
    // The user's folders: only the configuration folder is used, and only
    // with --data-dir (the data folder is then the one given).
    UserPaths user;
    // Where a run without --data-dir makes its fresh folder for the store and
    // the preferences; that folder is removed when the run ends.
    std::filesystem::path temporaryRoot;
};

// Runs lumenote-scenario with `arguments` (without the program name), the
// wall clock starting at `wallStart`. Returns the exit status: 0 when the
// script ran, 1 when --check was given and an expectation failed, 2 for a
// usage error, an unreadable script, or a run that failed.
int runScenarioCommand(const std::vector<std::string>& arguments, std::ostream& out,
                       std::ostream& err, const ScenarioFolders& folders, Date wallStart);

}  // namespace lumenote::scenario
