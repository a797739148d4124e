#include <fmt/format.h>

#include "cli/commands.hpp"

namespace lumenote::cli {

void installPathsCommand(CLI::App& app, CliContext& context) {
    auto* command = app.add_subcommand("paths", "Show where Lumenote keeps its files");
    command->callback([&context] {
        context.out << fmt::format("Data folder:        {}\n",
                                   context.paths.applicationData().string())
                    << fmt::format("Preferences folder: {}\n",
                                   context.paths.applicationConfig().string());
    });
}

}  // namespace lumenote::cli
