// `export`: the recorded sessions as a JSON document, a CSV table or a
// calendar file. The store is opened for reading only, so an export never
// changes the history and runs beside a recorder that is writing it.
#include <unistd.h>

#include <fmt/format.h>

#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <system_error>

#include "cli/commands.hpp"
#include "cli/history_environment.hpp"
#include "cli/session_text.hpp"
#include "platform/system/system_clocks.hpp"
#include "portability/data_export_service.hpp"
#include "portability/export_file.hpp"
#include "store/sqlite_recording_store.hpp"
#include "store/store_files.hpp"

namespace lumenote::cli {

namespace {

namespace fs = std::filesystem;
using portability::ExportFormat;
using portability::ExportRequest;
using portability::ExportTable;

// The destination that stands for standard output.
constexpr std::string_view kStandardOutput = "-";
// Progress is shown from this many sessions on, every this many sessions.
constexpr std::size_t kProgressMinimumSessions = 1000;
constexpr std::size_t kProgressEvery = 500;

struct ExportArguments {
    std::string format;
    std::optional<std::string> table;
    std::optional<std::string> session;
    std::optional<std::string> output;
};

// "Exported 12000 of 20000 sessions".
std::string progressText(std::size_t done, std::size_t total) {
    return fmt::format("Exported {} of {} sessions", done, total);
}

// Progress goes to the process's own error stream, and only when a person
// watches it there: never into a pipe, a file or a test's captured stream.
bool errorStreamIsTerminal(const CliContext& context) {
    return &context.err == &std::cerr && ::isatty(STDERR_FILENO) == 1;
}

// The history to export: the store opened for reading only, or an empty one
// in memory when nothing was ever recorded (there is no file to read, and an
// export must not create one).
Result<std::unique_ptr<store::SqliteRecordingStore>, StoreError> openHistory(
    const UserPaths& paths) {
    const fs::path file = store::storePath(paths);
    std::error_code error;
    if (!fs::exists(file, error) && !error) {
        return store::SqliteRecordingStore::openInMemory();
    }
    return store::SqliteRecordingStore::open(file, {.readOnly = true});
}

// Where the file goes: the default name in the current folder, or in the
// folder given, or the path given.
fs::path destinationFor(const std::optional<std::string>& output, const ExportRequest& request) {
    const fs::path name{std::string(portability::defaultExportFileName(request))};
    if (!output) {
        return name;
    }
    std::error_code error;
    if (fs::is_directory(*output, error)) {
        return fs::path(*output) / name;
    }
    return *output;
}

std::string summaryText(const portability::ExportSummary& summary, const ExportRequest& request,
                        const fs::path& destination) {
    const std::string sessions = countText(summary.sessions, "session", "sessions");
    const std::string segments = countText(summary.segments, "segment", "segments");
    std::string what;
    switch (request.format) {
        case ExportFormat::json:
            what = fmt::format("{} with {}", sessions, segments);
            break;
        case ExportFormat::csv:
            what = request.table == ExportTable::segments
                       ? fmt::format("{} of {}", segments, sessions)
                       : sessions;
            break;
        case ExportFormat::ics:
            what = sessions + " as calendar events";
            break;
    }
    return fmt::format("Exported {} to {}.\n", what, destination.string());
}

void runExport(CliContext& context, const ExportArguments& arguments) {
    ExportRequest request;
    request.format = arguments.format == "csv"   ? ExportFormat::csv
                     : arguments.format == "ics" ? ExportFormat::ics
                                                 : ExportFormat::json;
    if (arguments.table) {
        if (request.format != ExportFormat::csv) {
            context.err << "export: --table goes with --format csv\n";
            context.exitCode = kExitUsage;
            return;
        }
        request.table =
            *arguments.table == "segments" ? ExportTable::segments : ExportTable::sessions;
    }

    auto history = openHistory(context.paths);
    if (!history) {
        context.refuse(portability::ExportError{portability::ExportFailure::historyUnreadable,
                                                history.error().description}
                           .message());
        return;
    }
    store::SqliteRecordingStore& store = **history;
    if (arguments.session) {
        auto id = resolveSessionID(store, *arguments.session);
        if (!id) {
            context.refuse(id.error());
            return;
        }
        request.session = *id;
    }

    portability::DataExportService::Progress progress;
    std::size_t total = 1;
    if (!request.session && errorStreamIsTerminal(context)) {
        total = store.sessionCount().valueOr(0);
    }
    bool showedProgress = false;
    if (total >= kProgressMinimumSessions) {
        progress = [&context, &showedProgress, total](std::size_t done) {
            if (done % kProgressEvery == 0 || done == total) {
                context.err << '\r' << progressText(done, total) << std::flush;
                showedProgress = true;
            }
        };
    }
    const auto clearProgress = [&] {
        if (showedProgress) {
            context.err << '\r' << std::string(progressText(total, total).size(), ' ') << '\r'
                        << std::flush;
        }
    };

    platform::system::SystemWallClock clock;
    portability::DataExportService service(store, store);
    if (arguments.output && *arguments.output == kStandardOutput) {
        portability::StreamSink sink(context.out, "standard output");
        auto written = service.write(request, clock.now(), sink, progress);
        context.out.flush();
        clearProgress();
        if (!written) {
            context.refuse(written.error().message());
        }
        return;
    }

    const fs::path destination = destinationFor(arguments.output, request);
    auto file = portability::AtomicExportFile::create(destination);
    if (!file) {
        context.refuse(file.error().message());
        return;
    }
    auto written = service.write(request, clock.now(), **file, progress);
    clearProgress();
    if (!written) {
        context.refuse(written.error().message());
        return;
    }
    if (auto committed = (*file)->commit(); !committed) {
        context.refuse(committed.error().message());
        return;
    }
    context.out << summaryText(*written, request, destination);
}

}  // namespace

void installExportCommand(CLI::App& app, CliContext& context) {
    auto* command = app.add_subcommand(
        "export", "Export sessions as JSON, as a CSV table or as calendar events");
    auto arguments = std::make_shared<ExportArguments>();
    command
        ->add_option("--format,-f", arguments->format,
                     "json: every field of every session with its segments; csv: one table "
                     "(see --table); ics: one calendar event per finished session")
        ->required()
        ->check(CLI::IsMember({"json", "csv", "ics"}));
    command
        ->add_option("--table", arguments->table,
                     "With --format csv: sessions (one row per session, the default) or "
                     "segments (one row per activity segment)")
        ->check(CLI::IsMember({"sessions", "segments"}));
    command->add_option("--session", arguments->session,
                        "Export only this session: its id, or at least its first 8 hex digits");
    command->add_option("--output,-o", arguments->output,
                        "Where to write: a file (replaced if it exists), a folder for the "
                        "default name, or - for standard output. By default the default name "
                        "(such as \"Lumenote Sessions.json\") in the current folder");
    command->footer(
        "The file is written in one piece: a failed export leaves no file behind. Export only "
        "reads the history, and works while a recording runs.");
    command->callback([&context, arguments] { runExport(context, *arguments); });
}

}  // namespace lumenote::cli
