// `setup-test [--report]`: every setup check with its status and sentence,
// the recommended action, or the copyable diagnostic report.
#include <fmt/format.h>

#include <chrono>
#include <memory>

#include "bridge/setup_test.hpp"
#include "cli/commands.hpp"
#include "cli/run_cli.hpp"
#include "runtime/setup_test_input.hpp"

namespace lumenote::cli {

namespace {

void runSetupTestCommand(CliContext& context, bool reportOnly) {
    const runtime::SetupTestSurroundings surroundings{context.paths, LUMENOTE_VERSION,
                                                      LUMENOTE_BUILD_NUMBER};
    const bridge::SetupTestReport report =
        bridge::runSetupTest(runtime::gatherSetupTestInput(surroundings), systemNow());
    if (reportOnly) {
        context.out << report.diagnosticText;
    } else {
        context.out << "Setup test (nothing was recorded or changed)\n";
        for (const bridge::SetupTestItem& item : report.items) {
            context.out << fmt::format("  {:<16} {}: {}\n", bridge::displayText(item.status),
                                       item.title, item.sentence);
        }
        if (report.recommendedAction) {
            context.out << fmt::format("Recommended: {}\n",
                                       bridge::displayText(*report.recommendedAction));
        }
    }
    if (report.items.back().status != bridge::SetupTestStatus::ready) {
        context.exitCode = kExitRefused;
    }
}

}  // namespace

void installSetupTestCommand(CLI::App& app, CliContext& context) {
    auto* command = app.add_subcommand(
        "setup-test",
        "Check the whole installation (observation, sampling, the store, Google Chrome, the "
        "native host, the extension, native messaging, notifications) without recording "
        "anything; exits with 1 when a check needs attention");
    auto reportOnly = std::make_shared<bool>(false);
    command->add_flag("--report", *reportOnly,
                      "Print the diagnostic report to copy into a message instead");
    command->callback([&context, reportOnly] { runSetupTestCommand(context, *reportOnly); });
}

}  // namespace lumenote::cli
