// What every command of lumenote-cli is given: its output streams, the user's
// folders and a place for the exit status.
#pragma once

#include <ostream>

#include "foundation/user_paths.hpp"

namespace lumenote::cli {

// Exit statuses: 0 success, 1 a refusal or failure the command explained,
// 2 a usage error (reported by the argument parser).
inline constexpr int kExitRefused = 1;
inline constexpr int kExitUsage = 2;

struct CliContext {
    std::ostream& out;
    std::ostream& err;
    UserPaths paths;
    int exitCode = 0;

    // Prints `message` on the error stream and marks the command as refused.
    void refuse(std::string_view message);
};

}  // namespace lumenote::cli
