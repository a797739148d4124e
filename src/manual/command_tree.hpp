// A program's command line as plain values, read once from its CLI::App, so
// that the manual page and the shell completion are written from the same
// objects the program parses with, without depending on CLI11 themselves.
#pragma once

#include <CLI/CLI.hpp>

#include <string>
#include <vector>

namespace lumenote::manual {

struct OptionDescription {
    std::vector<std::string> names;  // with their dashes, short ones first: "-o", "--output"
    std::string valueName;           // "PATH", "TEXT:{json,csv}"; empty for a flag
    std::string positionalName;      // "ID" for a positional argument, else empty
    std::string text;                // what the option is for, as --help shows it
    std::string defaultValue;        // empty when there is none to show
    bool required = false;
    bool repeatable = false;  // takes more than one value or may be given again
    bool help = false;        // the command's own -h/--help

    bool positional() const { return names.empty(); }
    bool takesValue() const { return !valueName.empty(); }
};

struct CommandDescription {
    std::string name;                // "lumenote-cli", "set-app"
    std::vector<std::string> words;  // the words typed after the program: {"rules", "set-app"}
    std::string description;
    std::string footer;
    std::vector<OptionDescription> options;  // named options, in the order they were added
    std::vector<OptionDescription> positionals;
    std::vector<CommandDescription> subcommands;
    bool requiresSubcommand = false;  // the command does nothing without one of its subcommands
};

// Reads `app` and every subcommand under it. Options and subcommands without
// a group (CLI11's way of hiding them from --help) are left out here too.
CommandDescription describeCommandLine(const CLI::App& app);

// Every command under `root`, depth first, parents before their subcommands;
// `root` itself is not included.
std::vector<const CommandDescription*> allSubcommands(const CommandDescription& root);

}  // namespace lumenote::manual
