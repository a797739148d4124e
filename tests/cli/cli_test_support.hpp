// Runs lumenote-cli in-process against a temporary home folder.
#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "cli/run_cli.hpp"
#include "support/temporary_home.hpp"

namespace lumenote::cli::testing {

struct CliRun {
    int status = 0;
    std::string out;
    std::string err;
};

inline CliRun runIn(const lumenote::testing::TemporaryHome& home,
                    const std::vector<std::string>& arguments) {
    std::ostringstream out;
    std::ostringstream err;
    const int status = runCli(arguments, out, err, home.paths());
    return {status, out.str(), err.str()};
}

}  // namespace lumenote::cli::testing
