// Runs lumenote-cli in-process: parses the arguments, runs the chosen command
// and returns the process exit status.
#pragma once

#include <CLI/CLI.hpp>

#include <ostream>
#include <string>
#include <vector>

#include "cli/cli_context.hpp"
#include "foundation/user_paths.hpp"

namespace lumenote::cli {

// Names `app` lumenote-cli and adds every command group to it, each command's
// callback bound to `context`. The one source of the commands and their help:
// runCli parses with it and the manual pages and shell completion are written
// from it. `context` must outlive `app`.
void buildCommandLine(CLI::App& app, CliContext& context);

int runCli(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err,
           const UserPaths& paths);

// The version line printed by --version: "lumenote-cli 0.1.0 (build 1)".
std::string versionLine();

}  // namespace lumenote::cli
