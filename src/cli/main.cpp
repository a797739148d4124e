// lumenote-cli: the terminal front end of the recorder.
#include <iostream>

#include "cli/run_cli.hpp"

int main(int argc, char** argv) {
    std::vector<std::string> arguments(argv + 1, argv + argc);
    return lumenote::cli::runCli(arguments, std::cout, std::cerr,
                                 lumenote::UserPaths::fromProcessEnvironment());
}
