// TallywiseBackupService: creating a verified history backup, validating a
// backup file, and restoring it by merging it into the current data or by
// replacing the current data after a verified automatic backup.
//
// Nothing is backed up or restored while the store holds a running or
// paused session (whichever process records it): such calls fail with
// activeSession. A front end that runs beside a recorder must also keep a
// recorder from starting while it restores (the command line holds the
// recorder lock).
//
// Restores read the validated file a second time, one session at a time,
// inside one store transaction: any failure before the commit (a store
// error, a file that changed since it was validated) leaves the current data
// as it was. The stored totals of restored sessions are computed again from
// their segments and confirmations (a backup does not carry them).
//
// Merge keeps every current record: a backup session whose id is stored is
// skipped as a duplicate; a backup rule is added where no rule has its key,
// and where one has it with another classification the current rule stays
// and counts as a conflict (the same classification is neither). A merge
// applies no preferences: it adds history to the current setup, it does not
// replace it. Replace removes every session, PDF identity and application
// and website rule, stores those of the backup, and then applies the
// supported preferences; the PDF preferences, templates and every other
// setting stay.
#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "foundation/atomic_file_writer.hpp"
#include "foundation/result.hpp"
#include "portability/backup_error.hpp"
#include "portability/backup_file.hpp"
#include "portability/backup_records.hpp"
#include "portability/backup_validation_limits.hpp"
#include "recording/history_import.hpp"
#include "recording/recording_store.hpp"
#include "recording/session_history_reader.hpp"
#include "recording/time_providers.hpp"
#include "settings/preferences_store.hpp"

namespace lumenote::portability {

inline constexpr std::string_view kSuggestedBackupName = "Lumenote History Backup.tallywisebackup";
inline constexpr std::string_view kBackupCreatedText = "History backup created and verified";
// The word a replace must be confirmed with.
inline constexpr std::string_view kReplaceConfirmation = "RESTORE";

// What a long call is busy with, and how far it is: `done` of `total`
// sessions (`total` is 0 when not known in advance).
enum class BackupStage { writing, verifying, validating, restoring };
using BackupStageProgress =
    std::function<void(BackupStage stage, std::size_t done, std::size_t total)>;

struct TallywiseBackupServiceDependencies {
    recording::RecordingStore& store;
    recording::SessionHistoryReader& history;
    recording::HistoryImporter& importer;
    settings::PreferencesStore& preferences;
    recording::WallClock& wallClock;
    // The local time automatic backups are named in.
    LocalCalendar calendar;
    std::filesystem::path automaticBackupFolder;
    // Written into every backup as `appVersion`.
    std::string appVersion;
    BackupValidationLimits limits = {};
    // How backup files are written; tests make a write fail part-way.
    FileWriteOperations& fileOperations = systemFileWriteOperations();
};

struct CreatedBackup {
    BackupValidationReport report;  // of the file as it was read back
    std::size_t bytes = 0;
};

// A backup file that passed validation, held open for its restore.
struct ValidatedBackup {
    BackupFile file;
    BackupValidationReport report;
};

struct BackupRestoreSummary {
    std::size_t added = 0;       // sessions stored
    std::size_t duplicates = 0;  // sessions skipped because their id was stored
    std::size_t conflicts = 0;   // rules kept because the current one differed
    // The automatic backup a replace made first.
    std::optional<std::filesystem::path> automaticBackup;
};

// "Restore complete: {added} sessions added, {duplicates} duplicates
// skipped, {conflicts} rule conflicts preserved locally." (a replace reports
// its sessions as added, with no duplicates or conflicts).
std::string restoreCompleteText(const BackupRestoreSummary& summary);

class TallywiseBackupService {
  public:
    explicit TallywiseBackupService(TallywiseBackupServiceDependencies dependencies);

    // Writes the current history, rules and supported preferences to
    // `destination` (a name ending in ".tallywisebackup", else
    // invalidFileType), reads the written bytes back and validates them, and
    // only then puts the file in place, replacing one of that name. On any
    // failure no file and no temporary file is left. A write that fails is
    // writeFailed; a written file that does not validate fails with the
    // validation's error.
    // The folder of `destination` is the user's: it must exist and is left
    // as it is.
    Result<CreatedBackup, TallywiseBackupError> createBackup(
        const std::filesystem::path& destination, const BackupStageProgress& progress = {});

    // Checks the file at `source` (backup_file.hpp, then backup_reader.hpp).
    Result<ValidatedBackup, TallywiseBackupError> validateBackup(
        const std::filesystem::path& source, const BackupStageProgress& progress = {});

    Result<BackupRestoreSummary, TallywiseBackupError> merge(
        const ValidatedBackup& backup, const BackupStageProgress& progress = {});

    // Refused with replaceNotConfirmed unless `typedConfirmation` is exactly
    // kReplaceConfirmation. Makes an automatic backup of the current data
    // first (automatic_backups.hpp) and stops with preRestoreBackupFailed,
    // changing nothing, when it cannot be written or does not validate.
    Result<BackupRestoreSummary, TallywiseBackupError> replace(
        const ValidatedBackup& backup, std::string_view typedConfirmation,
        const BackupStageProgress& progress = {});

  private:
    Result<void, TallywiseBackupError> refuseWhileActive();
    Result<CreatedBackup, TallywiseBackupError> writeVerifiedBackup(
        const std::filesystem::path& destination, AtomicFileWriter::FolderPolicy folders,
        const BackupStageProgress& progress);
    Result<BackupRestoreSummary, TallywiseBackupError> import(const ValidatedBackup& backup,
                                                              bool replacing,
                                                              const BackupStageProgress& progress);

    TallywiseBackupServiceDependencies dependencies_;
};

}  // namespace lumenote::portability
