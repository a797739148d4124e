// JSON printed by the commands' --json options.
#pragma once

#include <nlohmann/json.hpp>

#include "cli/cli_context.hpp"

namespace lumenote::cli {

// Indented by two spaces; text that is not valid UTF-8 is replaced rather
// than failing the output.
inline void printJson(CliContext& context, const nlohmann::json& value) {
    context.out << value.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
}

}  // namespace lumenote::cli
