#include "scenario/scenario_script.hpp"

#include <fmt/format.h>

#include <cmath>
#include <sstream>

namespace lumenote::scenario {

Result<std::vector<ScriptStep>, std::string> parseScript(std::string_view text) {
    std::vector<ScriptStep> steps;
    std::istringstream lines{std::string(text)};
    std::string line;
    int number = 0;
    double previous = 0.0;
    while (std::getline(lines, line)) {
        ++number;
        const auto first = line.find_first_not_of(" \t\r");
        if (first == std::string::npos || line[first] == '#') {
            continue;
        }
        nlohmann::json object = nlohmann::json::parse(line, nullptr, false);
        if (object.is_discarded() || !object.is_object()) {
            return fail(fmt::format("line {}: not a JSON object", number));
        }
        const auto at = object.find("at");
        const auto action = object.find("do");
        if (at == object.end() || !at->is_number() || !std::isfinite(at->get<double>()) ||
            at->get<double>() < 0.0) {
            return fail(fmt::format("line {}: \"at\" must be a number of seconds", number));
        }
        if (action == object.end() || !action->is_string()) {
            return fail(fmt::format("line {}: \"do\" must name an action", number));
        }
        const double seconds = at->get<double>();
        if (seconds < previous) {
            return fail(fmt::format("line {}: \"at\" goes back in time", number));
        }
        previous = seconds;
        steps.push_back({seconds, action->get<std::string>(), std::move(object), number});
    }
    return steps;
}

}  // namespace lumenote::scenario
