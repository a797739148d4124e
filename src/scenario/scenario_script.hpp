// Scenario scripts: JSON lines of timed actions that drive the real session
// manager over a simulated machine.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/result.hpp"

namespace lumenote::scenario {

// One line of a script: `at` seconds from the script's start on the simulated
// monotonic clock, the action name and the whole line for its arguments.
struct ScriptStep {
    double at = 0.0;
    std::string action;
    nlohmann::json arguments;
    int lineNumber = 0;
};

// Parses a script. Blank lines and lines starting with "#" are skipped. A line
// that is not a JSON object with a numeric `at` and a string `do`, or whose
// `at` is earlier than the line before, is refused with its line number.
Result<std::vector<ScriptStep>, std::string> parseScript(std::string_view text);

}  // namespace lumenote::scenario
