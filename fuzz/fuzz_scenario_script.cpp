// Fuzzes the reader of scenario scripts, the JSON lines lumenote-scenario
// runs. A script read must have steps in time order, each from its own later
// line, each an object with the numeric `at` and the string `do` it was read
// from; a refused script names a line the text has.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "round_trip.hpp"
#include "scenario/scenario_script.hpp"

namespace lumenote::fuzz {
namespace {

// The number of lines std::getline gives for `text`.
int lineCount(std::string_view text) {
    int lines = 0;
    std::size_t at = 0;
    while (at < text.size()) {
        const std::size_t end = text.find('\n', at);
        ++lines;
        at = end == std::string_view::npos ? text.size() : end + 1;
    }
    return lines;
}

// The line number at the start of a refusal ("line 7: ...").
int refusedLine(const std::string& error) {
    int number = 0;
    std::size_t at = 5;
    if (error.rfind("line ", 0) != 0) {
        return 0;
    }
    while (at < error.size() && error[at] >= '0' && error[at] <= '9' && number < 100000000) {
        number = number * 10 + (error[at++] - '0');
    }
    return at < error.size() && error[at] == ':' ? number : 0;
}

void fuzzScript(std::string_view bytes) {
    const auto steps = scenario::parseScript(bytes);
    const int lines = lineCount(bytes);
    if (!steps) {
        const int line = refusedLine(steps.error());
        check(line >= 1 && line <= lines, "script", "a refusal names no line of the text", bytes);
        return;
    }
    double previousAt = 0.0;
    int previousLine = 0;
    for (const scenario::ScriptStep& step : steps.value()) {
        check(std::isfinite(step.at) && step.at >= 0.0, "script",
              "a step's time is not a number of seconds", bytes);
        check(step.at >= previousAt, "script", "a step goes back in time", bytes);
        check(step.lineNumber > previousLine && step.lineNumber <= lines, "script",
              "line numbers do not increase within the text", bytes);
        check(step.arguments.is_object() && step.arguments.at("do").is_string() &&
                  step.arguments.at("do").get<std::string>() == step.action &&
                  step.arguments.at("at").get<double>() == step.at,
              "script", "a step differs from the line it was read from", bytes);
        previousAt = step.at;
        previousLine = step.lineNumber;
    }
}

}  // namespace
}  // namespace lumenote::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    lumenote::fuzz::fuzzScript(std::string_view(reinterpret_cast<const char*>(data), size));
    return 0;
}
