// `report [-o PATH] [--feedback]`: the diagnostic report to review before
// attaching it to a support message by hand, or the feedback mail link.
// Nothing is sent.
#include <fmt/format.h>

#include <memory>
#include <string>

#include "cli/commands.hpp"
#include "foundation/atomic_file_writer.hpp"
#include "runtime/diagnostic_report_input.hpp"

namespace lumenote::cli {

namespace {

// Writes the report in one piece into a folder the user chose, which is
// left as it is.
bool saveReport(CliContext& context, const std::string& path, const std::string& report) {
    auto writer = AtomicFileWriter::create(path, systemFileWriteOperations(),
                                           private_file::Durability::synced,
                                           AtomicFileWriter::FolderPolicy::useAsItIs);
    if (writer && writer->append(report) && writer->commit()) {
        return true;
    }
    const PrivateFileError error = writer ? PrivateFileError::writeFailed : writer.error();
    context.refuse(
        fmt::format("The diagnostic report could not be saved to {} ({}).", path, describe(error)));
    return false;
}

void runReportCommand(CliContext& context, bool feedback, const std::string& output) {
    const runtime::DiagnosticReportSurroundings surroundings{context.paths, LUMENOTE_VERSION,
                                                             LUMENOTE_BUILD_NUMBER};
    const auto facts = runtime::gatherDiagnosticReportFacts(surroundings);
    if (feedback) {
        context.out << portability::buildFeedbackMessage(facts).mailtoLink() << "\n";
        return;
    }
    const std::string report = portability::buildDiagnosticReport(facts);
    if (output.empty() || output == "-") {
        context.out << report;
    } else if (saveReport(context, output, report)) {
        context.out << fmt::format("Diagnostic report saved to {}\n", output);
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
    auto output = std::make_shared<std::string>();
    command->add_option("-o,--output", *output,
                        "Save the report to this file instead of printing it (- prints it)");
    command->callback(
        [&context, feedback, output] { runReportCommand(context, *feedback, *output); });
}

}  // namespace lumenote::cli
