// The command groups of lumenote-cli. Each group lives in its own file and adds
// its subcommands to the application; run_cli.cpp installs them in the order
// they appear in --help.
#pragma once

#include <CLI/CLI.hpp>

#include "cli/cli_context.hpp"

namespace lumenote::cli {

// `paths`: where Lumenote keeps its files for this user.
void installPathsCommand(CLI::App& app, CliContext& context);

// `prefs list|get|set|reset`: the stored preferences by key.
void installPrefsCommands(CLI::App& app, CliContext& context);

// `templates list|show|add|edit|delete|favorite|enable|disable|move`.
void installTemplatesCommands(CLI::App& app, CliContext& context);

// `sessions`, `show`, `edit`, `delete` and `reset`: the recorded history.
void installSessionCommands(CLI::App& app, CliContext& context);

// `export --format json|csv|ics [--table] [--session] [-o]`: sessions as files.
void installExportCommand(CLI::App& app, CliContext& context);

// `receipt ID|--week DAY --format png|pdf [-o PATH]`: a receipt as a file.
void installReceiptCommand(CLI::App& app, CliContext& context);

// `rules list|starter|set-app|set-website|remove|recent|clear-apps|clear-websites`.
void installRulesCommands(CLI::App& app, CliContext& context);

// `record`, and pause, resume, end, away, back and status for a running recorder.
void installRecordCommands(CLI::App& app, CliContext& context);

// `browser register|unregister|status|events`: the native-host registration,
// each browser's connection, and the events the running recorder handled.
void installBrowserCommands(CLI::App& app, CliContext& context);

// `setup-test [--report]`: every setup check, the recommended action, the report.
void installSetupTestCommand(CLI::App& app, CliContext& context);

// `setup wayland`: the GNOME Shell extension, or what else this desktop needs.
void installSetupCommands(CLI::App& app, CliContext& context);

// `extension path`: where the built extension packages are.
void installExtensionCommands(CLI::App& app, CliContext& context);

// `review [--json]` and `review classify GROUP-ID CLASS [--scope]`: the
// unclassified activity of every session, and classifying it once.
void installReviewCommands(CLI::App& app, CliContext& context);

// `report [-o PATH] [--feedback]`: the diagnostic report, or the feedback mail link.
void installReportCommand(CLI::App& app, CliContext& context);

// `update check [--feed URL]`: the signed update check, when the user allows it.
void installUpdateCommands(CLI::App& app, CliContext& context);

// `help [COMMAND...]`: the same help as `COMMAND... --help`.
void installHelpCommand(CLI::App& app, CliContext& context);

// `recovery status|end` and `relabel`: the unfinished session after a crash,
// and relabelling time without input.
void installRecoveryCommands(CLI::App& app, CliContext& context);

// `week` and `insights [dismiss ID]`: a week's figures and its insights.
void installWeekCommands(CLI::App& app, CliContext& context);

// `backup [PATH]` and `restore PATH --merge|--replace`: verified history backups.
void installBackupCommands(CLI::App& app, CliContext& context);

}  // namespace lumenote::cli
