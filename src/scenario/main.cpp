// lumenote-scenario: runs a scenario script against the real recorder and
// store with a simulated clock, then prints the stored sessions as JSON.
#include <CLI/CLI.hpp>
#include <fstream>
#include <iostream>
#include <sstream>

#include "platform/system/system_clocks.hpp"
#include "recording/time_providers.hpp"
#include "scenario/scenario_runner.hpp"

int main(int argc, char** argv) {
    using namespace lumenote;
    CLI::App app{
        "Runs a scenario script (JSON lines of timed actions) against the real session manager "
        "and SQLite store with a simulated clock, then prints the stored sessions as JSON.",
        "lumenote-scenario"};
    std::string script;
    std::string dataDir;
    bool check = false;
    app.add_option("SCRIPT", script, "The scenario script")->required()->check(CLI::ExistingFile);
    app.add_option("--data-dir", dataDir,
                   "Stands for $XDG_DATA_HOME: the folder that holds Lumenote/ (default: the "
                   "user's data folder)");
    app.add_flag("--check", check,
                 "Exit with status 1 when an expect step of the script does not hold");
    CLI11_PARSE(app, argc, argv);

    std::ifstream file(script);
    std::stringstream text;
    text << file.rdbuf();
    auto steps = scenario::parseScript(text.str());
    if (!steps.ok()) {
        std::cerr << script << ": " << steps.error() << '\n';
        return 2;
    }
    UserPaths paths = UserPaths::fromProcessEnvironment();
    if (!dataDir.empty()) {
        paths.dataHome = std::filesystem::absolute(dataDir);
    }
    auto outcome = scenario::runScenario(*steps, paths, platform::system::SystemWallClock().now());
    if (!outcome.ok()) {
        std::cerr << script << ": " << outcome.error() << '\n';
        return 2;
    }
    std::cout << outcome->sessions.dump(2) << '\n';
    for (const auto& failure : outcome->failedExpectations) {
        std::cerr << script << ": " << failure << '\n';
    }
    return (check && !outcome->failedExpectations.empty()) ? 1 : 0;
}
