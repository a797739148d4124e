#include "cli/cli_context.hpp"

namespace lumenote::cli {

void CliContext::refuse(std::string_view message) {
    err << message << '\n';
    exitCode = kExitRefused;
}

}  // namespace lumenote::cli
