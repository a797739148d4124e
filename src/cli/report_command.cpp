// `report [--feedback]`: the diagnostic report to review before attaching it
// to a support message by hand, or the feedback mail link. Nothing is sent.
#include <memory>

#include "cli/commands.hpp"
#include "runtime/diagnostic_report_input.hpp"

namespace lumenote::cli {

namespace {

void runReportCommand(CliContext& context, bool feedback) {
    const runtime::DiagnosticReportSurroundings surroundings{context.paths, LUMENOTE_VERSION,
                                                             LUMENOTE_BUILD_NUMBER};
    const auto facts = runtime::gatherDiagnosticReportFacts(surroundings);
    if (feedback) {
        context.out << portability::buildFeedbackMessage(facts).mailtoLink() << "\n";
    } else {
        context.out << portability::buildDiagnosticReport(facts);
    }
}

}  // namespace

void installReportCommand(CLI::App& app, CliContext& context) {
    auto* command = app.add_subcommand(
        "report",
        "Print the diagnostic report: versions, counts and switches only, never a subject, "
        "goal, note, application, website, PDF or time of a session. Nothing is sent");
    auto feedback = std::make_shared<bool>(false);
    command->add_flag("--feedback", *feedback,
                      "Print the feedback mail link instead (open it with xdg-open); the report "
                      "is never part of it");
    command->callback([&context, feedback] { runReportCommand(context, *feedback); });
}

}  // namespace lumenote::cli
