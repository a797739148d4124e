// What the Data section of the settings shows and asks: the typed words that
// unlock a replace, a reset or a delete-all, the preview of a validated
// backup, and the fixed explanations beside each action.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/dates.hpp"
#include "portability/backup_error.hpp"
#include "portability/backup_records.hpp"

namespace lumenote::ui::models {

// The words a destructive action must be confirmed with, typed exactly.
inline constexpr std::string_view kRestoreConfirmationWord = "RESTORE";
inline constexpr std::string_view kResetConfirmationWord = "RESET";
inline constexpr std::string_view kDeleteAllConfirmationWord = "DELETE";

// True only when `typed` is `word` character for character: no trimming, no
// change of letter case, so "restore", "RESTOR" and "RESTORE " unlock nothing.
bool confirmationMatches(std::string_view typed, std::string_view word);

// "Type RESET to continue." and its like: the line above a confirmation field.
std::string typeToConfirmText(std::string_view word);

inline constexpr std::string_view kDataSectionSummary = "Export, back up, restore, or delete.";
inline constexpr std::string_view kMergeExplanation =
    "Merge preserves current records, skips duplicate session IDs, and keeps current rules when "
    "classifications conflict.";
inline constexpr std::string_view kReplaceExplanation =
    "Replace requires a verified automatic pre-restore backup. Type RESTORE to continue.";
inline constexpr std::string_view kResetExplanation =
    "Removes session history, classification rules, local PDF labels, and app and receipt "
    "preferences. Templates, automatic backups, recovery files, and Chrome setup stay.";
inline constexpr std::string_view kDeleteAllExplanation =
    "Deletes every recorded session with its activity and confirmations. Classification rules, "
    "preferences, templates and automatic backups stay. This cannot be undone.";
inline constexpr std::string_view kRestorePreviewTitle = "Validated history backup";

// The lines of a restore preview, in order: who made the backup and when
// (local day and time), then "Sessions: N", "Activity segments: N",
// "Classification rules: N" and "Supported preferences only".
std::vector<std::string> restorePreviewLines(const portability::BackupValidationReport& report,
                                             const LocalCalendar& calendar);

// "Restore validation failed: {the error's sentence}".
std::string restoreValidationFailedText(const portability::TallywiseBackupError& error);

// "3 sessions exported." / "1 session exported."
std::string exportedText(std::size_t sessions);

// "4 sessions deleted." in the manner of the history's undo banner, "There
// were no sessions to delete." for none, and "All sessions were deleted."
// when they could not be counted beforehand.
std::string deletedAllText(std::optional<std::size_t> sessions);

inline constexpr std::string_view kResetDoneText =
    "Lumenote was reset. Templates, automatic backups, recovery files, and Chrome setup were "
    "kept.";

}  // namespace lumenote::ui::models
