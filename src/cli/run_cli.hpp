// Runs lumenote-cli in-process: parses the arguments, runs the chosen command
// and returns the process exit status.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "foundation/user_paths.hpp"

namespace lumenote::cli {

int runCli(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err,
           const UserPaths& paths);

// The version line printed by --version: "lumenote-cli 0.1.0 (build 1)".
std::string versionLine();

}  // namespace lumenote::cli
