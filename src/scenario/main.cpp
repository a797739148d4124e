// lumenote-scenario: runs a scenario script against the real recorder and
// store with a simulated clock, then prints the stored sessions as JSON.
#include <filesystem>
#include <iostream>

#include "platform/system/system_clocks.hpp"
#include "scenario/scenario_command.hpp"

int main(int argc, char** argv) {
    using namespace lumenote;
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    std::error_code noTemporaryFolder;
    std::filesystem::path temporaryRoot = std::filesystem::temp_directory_path(noTemporaryFolder);
    if (noTemporaryFolder) {
        temporaryRoot = "/tmp";
    }
    return scenario::runScenarioCommand(arguments, std::cout, std::cerr,
                                        {UserPaths::fromProcessEnvironment(), temporaryRoot},
                                        platform::system::SystemWallClock().now());
}
