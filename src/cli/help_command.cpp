// `help [COMMAND...]`: the help that `COMMAND... --help` prints, for people
// who type the word first.
#include <fmt/format.h>

#include <memory>
#include <string>
#include <vector>

#include "cli/commands.hpp"

namespace lumenote::cli {

namespace {

void printHelp(CliContext& context, const CLI::App& app, const std::vector<std::string>& path) {
    // --help on the chosen command prints its help with the usage line naming
    // every command above it; the same names are passed down here. The
    // application's own help is made directly, since `help` itself is the
    // subcommand chosen on it.
    const CLI::App* command = &app;
    std::string above = app.get_name();
    std::string typed;
    for (const std::string& name : path) {
        typed += typed.empty() ? name : " " + name;
        const CLI::App* next = nullptr;
        try {
            next = command->get_subcommand(name);
        } catch (const CLI::OptionNotFound&) {
            context.err << fmt::format(
                "There is no command \"{}\". Run \"lumenote-cli help\" to see the commands.\n",
                typed);
            context.exitCode = kExitUsage;
            return;
        }
        if (command != &app) {
            above += " " + command->get_name();
        }
        command = next;
    }
    if (command == &app) {
        context.out << app.get_formatter()->make_help(&app, app.get_name(),
                                                      CLI::AppFormatMode::Normal);
        return;
    }
    context.out << command->help(above);
}

}  // namespace

void installHelpCommand(CLI::App& app, CliContext& context) {
    auto path = std::make_shared<std::vector<std::string>>();
    auto* help = app.add_subcommand("help", "Show the help of lumenote-cli or of one command");
    help->add_option("COMMAND", *path, "A command, with its subcommand if it has one");
    help->callback([&context, &app, path] { printHelp(context, app, *path); });
}

}  // namespace lumenote::cli
