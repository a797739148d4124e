#include "cli/run_cli.hpp"

#include <fmt/format.h>

#include "cli/commands.hpp"

namespace lumenote::cli {

std::string versionLine() {
    return fmt::format("lumenote-cli {} (build {})", LUMENOTE_VERSION, LUMENOTE_BUILD_NUMBER);
}

void buildCommandLine(CLI::App& app, CliContext& context) {
    app.name("lumenote-cli");
    app.description("Lumenote records study sessions on this computer and keeps them here.");
    app.set_version_flag("--version", versionLine());
    app.require_subcommand(0, 1);
    app.fallthrough(false);
    for (auto install :
         {installRecordCommands, installPathsCommand, installPrefsCommands,
          installTemplatesCommands, installSessionCommands, installExportCommand,
          installReceiptCommand, installBackupCommands, installRulesCommands, installReviewCommands,
          installRecoveryCommands, installWeekCommands, installBrowserCommands,
          installExtensionCommands, installSetupTestCommand, installSetupCommands,
          installReportCommand, installUpdateCommands, installHelpCommand}) {
        install(app, context);
    }
}

int runCli(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err,
           const UserPaths& paths) {
    CliContext context{out, err, paths};
    CLI::App app;
    buildCommandLine(app, context);

    std::vector<std::string> reversed(arguments.rbegin(), arguments.rend());
    try {
        app.parse(reversed);
    } catch (const CLI::ParseError& error) {
        // --help and --version end parsing with status 0; any other parse
        // error is a usage error.
        return app.exit(error, out, err) == 0 ? 0 : kExitUsage;
    }
    if (app.get_subcommands().empty()) {
        out << app.help();
    }
    return context.exitCode;
}

}  // namespace lumenote::cli
