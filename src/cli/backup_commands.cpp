// `backup [PATH]` and `restore PATH --merge | --replace --confirm RESTORE`:
// a verified history backup, and restoring one. While a recorder runs, or
// a session waits in the store as running or paused, both are refused; a
// restore holds the recorder lock throughout, so that no recorder starts
// while the history is being replaced.
#include <unistd.h>

#include <fmt/format.h>

#include <iostream>
#include <memory>
#include <optional>
#include <string>

#include "cli/commands.hpp"
#include "cli/history_environment.hpp"
#include "cli/recovery_state.hpp"
#include "portability/automatic_backups.hpp"
#include "portability/tallywise_backup_service.hpp"
#include "store/recorder_lock.hpp"
#include "store/store_files.hpp"

namespace lumenote::cli {

namespace {

using portability::BackupStage;
using portability::TallywiseBackupError;
using portability::TallywiseBackupFailure;

std::string activeSessionMessage() {
    return portability::backupError(TallywiseBackupFailure::activeSession).message();
}

portability::TallywiseBackupService backupService(HistoryEnvironment& environment,
                                                  const UserPaths& paths) {
    return portability::TallywiseBackupService({
        .store = environment.store(),
        .history = environment.historyReader(),
        .importer = environment.importer(),
        .preferences = environment.preferences(),
        .wallClock = environment.wallClock(),
        .calendar = environment.calendar(),
        .automaticBackupFolder = portability::automaticBackupFolder(paths),
        .appVersion = LUMENOTE_VERSION,
    });
}

std::string_view stageText(BackupStage stage) {
    switch (stage) {
        case BackupStage::writing:
            return "Writing the backup";
        case BackupStage::verifying:
            return "Verifying the backup";
        case BackupStage::validating:
            return "Validating the backup";
        case BackupStage::restoring:
            return "Restoring";
    }
    return {};
}

// Progress on one line of the error stream, only when that is a terminal:
// redirected output gets the results alone. Erases its line when it ends.
class TerminalProgress {
  public:
    explicit TerminalProgress(CliContext& context)
        : context_(context), shown_(&context.err == &std::cerr && ::isatty(STDERR_FILENO) == 1) {}
    ~TerminalProgress() {
        if (used_) {
            context_.err << "\r\x1b[K" << std::flush;
        }
    }
    TerminalProgress(const TerminalProgress&) = delete;
    TerminalProgress& operator=(const TerminalProgress&) = delete;

    portability::BackupStageProgress callback() {
        if (!shown_) {
            return {};
        }
        return [this](BackupStage stage, std::size_t done, std::size_t total) {
            used_ = true;
            context_.err << "\r" << stageText(stage) << ": " << done;
            if (total > 0) {
                context_.err << " of " << total;
            }
            context_.err << " sessions\x1b[K" << std::flush;
        };
    }

  private:
    CliContext& context_;
    bool shown_;
    bool used_ = false;
};

std::string previewText(const portability::BackupValidationReport& report,
                        const LocalCalendar& calendar) {
    const portability::BackupDocumentSummary& document = report.document;
    std::string text = "Validated history backup\n";
    text += fmt::format("  Made by Lumenote {} on {}\n", document.appVersion,
                        calendar.formatIso8601(document.createdAt));
    text += fmt::format("  Sessions: {}\n", document.sessionCount);
    text += fmt::format("  Activity segments: {}\n", report.segmentCount);
    text += fmt::format("  Classification rules: {}\n", report.ruleCount);
    text += "  Supported preferences only\n";
    for (const std::string& warning : report.warnings) {
        text += "  Warning: " + warning + "\n";
    }
    return text;
}

void installBackup(CLI::App& app, CliContext& context) {
    auto* command = app.add_subcommand(
        "backup", "Write the history, rules and supported preferences to a verified backup file");
    auto path = std::make_shared<std::string>(portability::kSuggestedBackupName);
    command
        ->add_option("PATH", *path,
                     "Where to write the backup; a name ending in .tallywisebackup (an existing "
                     "file of that name is replaced)")
        ->capture_default_str();
    command->callback([&context, path] {
        if (recorderIsRunning(context.paths)) {
            context.refuse(activeSessionMessage());
            return;
        }
        auto environment = openHistoryEnvironment(context);
        if (!environment) {
            return;
        }
        auto service = backupService(*environment, context.paths);
        std::optional<TerminalProgress> progress(std::in_place, context);
        auto created = service.createBackup(*path, progress->callback());
        progress.reset();
        if (!created) {
            context.refuse(created.error().message());
            return;
        }
        context.out << portability::kBackupCreatedText << '\n'
                    << fmt::format(
                           "  {}: {} sessions, {} activity segments, {} classification "
                           "rules, {} bytes\n",
                           *path, created->report.document.sessionCount,
                           created->report.segmentCount, created->report.ruleCount, created->bytes);
    });
}

struct RestoreOptions {
    std::string path;
    bool merge = false;
    bool replace = false;
    std::string confirmation;
};

// Takes the recorder lock for the whole restore; refuses when a recorder
// holds it.
std::optional<store::RecorderLock> lockOutRecorders(CliContext& context) {
    auto lock = store::RecorderLock::acquire(store::recorderLockPath(context.paths));
    if (!lock) {
        context.refuse(lock.error().failure == store::RecorderLockFailure::heldByAnotherProcess
                           ? activeSessionMessage()
                           : store::recorderLockMessage(lock.error()));
        return std::nullopt;
    }
    return std::move(lock).value();
}

void runRestore(CliContext& context, const RestoreOptions& options) {
    const auto lock = lockOutRecorders(context);
    if (!lock) {
        return;
    }
    auto environment = openHistoryEnvironment(context);
    if (!environment) {
        return;
    }
    auto service = backupService(*environment, context.paths);
    std::optional<TerminalProgress> progress(std::in_place, context);
    auto validated = service.validateBackup(options.path, progress->callback());
    progress.reset();
    if (!validated) {
        context.refuse("Restore validation failed: " + validated.error().message());
        return;
    }
    context.out << previewText(validated->report, environment->calendar());
    progress.emplace(context);
    auto restored = options.merge
                        ? service.merge(*validated, progress->callback())
                        : service.replace(*validated, options.confirmation, progress->callback());
    progress.reset();
    if (!restored) {
        context.refuse(restored.error().message());
        return;
    }
    if (restored->automaticBackup) {
        context.out << "Automatic backup of the previous data: "
                    << restored->automaticBackup->string() << '\n';
    }
    context.out << portability::restoreCompleteText(*restored) << '\n';
}

void installRestore(CLI::App& app, CliContext& context) {
    auto* command = app.add_subcommand(
        "restore", "Restore a history backup by merging it or by replacing the current data");
    auto options = std::make_shared<RestoreOptions>();
    command->add_option("PATH", options->path, "The .tallywisebackup file to restore")->required();
    auto* merge = command->add_flag(
        "--merge", options->merge,
        "Merge with the current data: merge preserves current records, skips duplicate session "
        "IDs, and keeps current rules when classifications conflict");
    auto* replace = command->add_flag(
        "--replace", options->replace,
        "Replace the current sessions and rules with the backup's and apply its supported "
        "preferences, after an automatic backup of the current data");
    merge->excludes(replace);
    command->add_option("--confirm", options->confirmation, "Type RESTORE to confirm --replace");
    command->callback([&context, options] {
        if (options->merge == options->replace) {
            context.err << "restore: give --merge or --replace\n";
            context.exitCode = kExitUsage;
            return;
        }
        runRestore(context, *options);
    });
}

}  // namespace

void installBackupCommands(CLI::App& app, CliContext& context) {
    installBackup(app, context);
    installRestore(app, context);
}

}  // namespace lumenote::cli
