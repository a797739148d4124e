#include "portability/tallywise_backup_service.hpp"

#include <fmt/format.h>

#include <map>
#include <utility>

#include "portability/automatic_backups.hpp"
#include "portability/backup_conversion.hpp"
#include "portability/backup_preferences.hpp"
#include "portability/backup_reader.hpp"
#include "portability/history_backup_writer.hpp"

namespace lumenote::portability {

namespace {

// Tells `progress` about `stage`, if anyone listens.
std::function<void(std::size_t)> reporter(const BackupStageProgress& progress, BackupStage stage,
                                          std::size_t total) {
    if (!progress) {
        return {};
    }
    return [&progress, stage, total](std::size_t done) { progress(stage, done, total); };
}

// Adds the backup's rules where the current data has none with their key;
// counts those whose current rule has another classification.
template <typename Rule, typename Key, typename Save>
Result<std::size_t, StoreError> mergeRules(const std::vector<Rule>& current,
                                           const std::vector<Rule>& backup, Key key, Save save) {
    std::map<std::string, std::string, std::less<>> classifications;
    for (const Rule& rule : current) {
        classifications.emplace(key(rule), rule.classificationRawValue);
    }
    std::size_t conflicts = 0;
    for (const Rule& rule : backup) {
        const auto found = classifications.find(key(rule));
        if (found == classifications.end()) {
            if (auto saved = save(rule); !saved) {
                return fail(saved.error());
            }
        } else if (found->second != rule.classificationRawValue) {
            ++conflicts;
        }
    }
    return conflicts;
}

}  // namespace

std::string restoreCompleteText(const BackupRestoreSummary& summary) {
    return fmt::format(
        "Restore complete: {} sessions added, {} duplicates skipped, {} rule conflicts preserved "
        "locally.",
        summary.added, summary.duplicates, summary.conflicts);
}

TallywiseBackupService::TallywiseBackupService(TallywiseBackupServiceDependencies dependencies)
    : dependencies_(std::move(dependencies)) {}

Result<void, TallywiseBackupError> TallywiseBackupService::refuseWhileActive() {
    auto live = dependencies_.store.liveSessions();
    if (!live) {
        return fail(historyUnavailable(live.error()));
    }
    if (!live->empty()) {
        return fail(backupError(TallywiseBackupFailure::activeSession));
    }
    return {};
}

Result<CreatedBackup, TallywiseBackupError> TallywiseBackupService::createBackup(
    const std::filesystem::path& destination, const BackupStageProgress& progress) {
    return writeVerifiedBackup(destination, AtomicFileWriter::FolderPolicy::useAsItIs, progress);
}

Result<CreatedBackup, TallywiseBackupError> TallywiseBackupService::writeVerifiedBackup(
    const std::filesystem::path& destination, AtomicFileWriter::FolderPolicy folders,
    const BackupStageProgress& progress) {
    if (!destination.filename().string().ends_with(kBackupExtension)) {
        return fail(backupError(TallywiseBackupFailure::invalidFileType));
    }
    if (auto active = refuseWhileActive(); !active) {
        return fail(active.error());
    }
    recording::RecordingStore& store = dependencies_.store;
    auto applications = store.appClassifications();
    auto websites = store.websiteClassifications();
    auto sessionCount = store.sessionCount();
    if (!applications || !websites || !sessionCount) {
        const StoreError& error = !applications ? applications.error()
                                  : !websites   ? websites.error()
                                                : sessionCount.error();
        return fail(historyUnavailable(error));
    }
    const BackupDocumentHead head{dependencies_.appVersion, dependencies_.wallClock.now(),
                                  backupPreferencesOf(dependencies_.preferences),
                                  std::move(*applications), std::move(*websites)};

    auto writer = AtomicFileWriter::create(destination, dependencies_.fileOperations,
                                           private_file::Durability::synced, folders);
    if (!writer) {
        return fail(backupError(TallywiseBackupFailure::writeFailed));
    }
    auto written = writeHistoryBackup(store, dependencies_.history, head, *writer,
                                      reporter(progress, BackupStage::writing, *sessionCount));
    if (!written) {
        return fail(written.error());
    }
    if (!writer->finish()) {
        return fail(backupError(TallywiseBackupFailure::writeFailed));
    }

    // Read back before it is put in place, so that a file that does not
    // validate never takes the name.
    auto file =
        BackupFile::openUnnamed(writer->temporaryPath(), dependencies_.limits.maximumFileMegabytes);
    if (!file) {
        return fail(file.error());
    }
    auto report = validateBackupDocument([&file] { return file->bytes(); }, dependencies_.limits,
                                         reporter(progress, BackupStage::verifying, *sessionCount));
    if (!report) {
        return fail(report.error());
    }
    if (report->document.sessionCount != written->sessions ||
        report->segmentCount != written->segments) {
        return fail(backupError(TallywiseBackupFailure::writeFailed));
    }
    if (!writer->commit()) {
        return fail(backupError(TallywiseBackupFailure::writeFailed));
    }
    return CreatedBackup{std::move(*report), file->size()};
}

Result<ValidatedBackup, TallywiseBackupError> TallywiseBackupService::validateBackup(
    const std::filesystem::path& source, const BackupStageProgress& progress) {
    auto file = BackupFile::open(source, dependencies_.limits.maximumFileMegabytes);
    if (!file) {
        return fail(file.error());
    }
    auto report = validateBackupDocument([&file] { return file->bytes(); }, dependencies_.limits,
                                         reporter(progress, BackupStage::validating, 0));
    if (!report) {
        return fail(report.error());
    }
    return ValidatedBackup{std::move(*file), std::move(*report)};
}

Result<BackupRestoreSummary, TallywiseBackupError> TallywiseBackupService::merge(
    const ValidatedBackup& backup, const BackupStageProgress& progress) {
    if (auto active = refuseWhileActive(); !active) {
        return fail(active.error());
    }
    return import(backup, false, progress);
}

Result<BackupRestoreSummary, TallywiseBackupError> TallywiseBackupService::replace(
    const ValidatedBackup& backup, std::string_view typedConfirmation,
    const BackupStageProgress& progress) {
    if (typedConfirmation != kReplaceConfirmation) {
        return fail(backupError(TallywiseBackupFailure::replaceNotConfirmed));
    }
    if (auto active = refuseWhileActive(); !active) {
        return fail(active.error());
    }
    if (!backup.file.unchanged()) {
        return fail(backupError(TallywiseBackupFailure::fileChanged));
    }
    const std::filesystem::path automatic = freeAutomaticBackupPath(
        dependencies_.automaticBackupFolder, dependencies_.wallClock.now(), dependencies_.calendar);
    if (!writeVerifiedBackup(automatic, AtomicFileWriter::FolderPolicy::ensurePrivate, progress)) {
        return fail(backupError(TallywiseBackupFailure::preRestoreBackupFailed));
    }
    auto summary = import(backup, true, progress);
    if (!summary) {
        return summary;
    }
    applyBackupPreferences(backup.report.document.preferences, dependencies_.preferences);
    removeOldAutomaticBackups(dependencies_.automaticBackupFolder, kKeptAutomaticBackups);
    summary->automaticBackup = automatic;
    return summary;
}

Result<BackupRestoreSummary, TallywiseBackupError> TallywiseBackupService::import(
    const ValidatedBackup& backup, bool replacing, const BackupStageProgress& progress) {
    if (!backup.file.unchanged()) {
        return fail(backupError(TallywiseBackupFailure::fileChanged));
    }
    const BackupDocumentSummary& document = backup.report.document;
    recording::RecordingStore& store = dependencies_.store;
    std::vector<BackupApplicationRule> currentApplications;
    std::vector<BackupWebsiteRule> currentWebsites;
    if (!replacing) {
        auto applications = store.appClassifications();
        auto websites = store.websiteClassifications();
        if (!applications || !websites) {
            return fail(
                historyUnavailable(!applications ? applications.error() : websites.error()));
        }
        currentApplications = std::move(*applications);
        currentWebsites = std::move(*websites);
    }

    auto begun = dependencies_.importer.beginImport();
    if (!begun) {
        return fail(historyUnavailable(begun.error()));
    }
    recording::HistoryImport& import = **begun;
    BackupRestoreSummary summary;
    if (replacing) {
        if (auto removed = import.removeHistoryAndRules(); !removed) {
            return fail(historyUnavailable(removed.error()));
        }
    }
    auto applicationConflicts = mergeRules(
        currentApplications, document.applicationRules,
        [](const BackupApplicationRule& rule) { return rule.bundleIdentifier; },
        [&import](const BackupApplicationRule& rule) {
            return import.saveAppClassification(rule);
        });
    if (!applicationConflicts) {
        return fail(historyUnavailable(applicationConflicts.error()));
    }
    auto websiteConflicts = mergeRules(
        currentWebsites, document.websiteRules,
        [](const BackupWebsiteRule& rule) { return rule.hostname; },
        [&import](const BackupWebsiteRule& rule) {
            return import.saveWebsiteClassification(rule);
        });
    if (!websiteConflicts) {
        return fail(historyUnavailable(websiteConflicts.error()));
    }
    summary.conflicts = *applicationConflicts + *websiteConflicts;

    const auto told = reporter(progress, BackupStage::restoring, document.sessionCount);
    std::size_t visited = 0;
    const auto bytes = backup.file.bytes();
    auto restored = forEachBackupSession(
        *bytes, dependencies_.limits,
        [&](BackupSession& session) -> Result<void, TallywiseBackupError> {
            if (told && ++visited % kProgressInterval == 0) {
                told(visited);
            }
            if (!replacing) {
                auto stored = import.containsSession(session.id);
                if (!stored) {
                    return fail(historyUnavailable(stored.error()));
                }
                if (*stored) {
                    ++summary.duplicates;
                    return {};
                }
            }
            RestoredSession record = restoredSession(std::move(session));
            if (auto inserted = import.insertSession(record.session, record.pdfIdentities);
                !inserted) {
                return fail(historyUnavailable(inserted.error()));
            }
            ++summary.added;
            // The lists go back to be decoded into again, their texts reused.
            session.segments = std::move(record.session.segments);
            session.localPDFIdentities = std::move(record.pdfIdentities);
            return {};
        });
    if (!restored) {
        return fail(restored.error());
    }
    // The same file, read twice, must have given the same sessions.
    if (!backup.file.unchanged() || summary.added + summary.duplicates != document.sessionCount) {
        return fail(backupError(TallywiseBackupFailure::fileChanged));
    }
    if (auto committed = import.commit(); !committed) {
        return fail(historyUnavailable(committed.error()));
    }
    return summary;
}

}  // namespace lumenote::portability
