// The automatic backups a replacing restore makes of the current data first:
// where they go, their names, and how many are kept.
//
// They live in $XDG_DATA_HOME/Tallywise/Backups and are named
// "pre-restore-" + the local date and time "yyyy-MM-dd-HHmmss" +
// ".tallywisebackup" ("pre-restore-2026-11-16-093000.tallywisebackup"); a
// second one within the same second gets "-2" before the extension, and so
// on. The kKeptAutomaticBackups newest are kept: each replace that succeeds
// removes the older ones (a backup of ten heavy years takes hundreds of MB).
// Files in the folder that do not have such a name are never touched, and a
// reset of the history leaves the folder alone.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

#include "foundation/dates.hpp"
#include "foundation/user_paths.hpp"

namespace lumenote::portability {

inline constexpr std::string_view kAutomaticBackupPrefix = "pre-restore-";
inline constexpr std::size_t kKeptAutomaticBackups = 5;

// $XDG_DATA_HOME/Tallywise/Backups
std::filesystem::path automaticBackupFolder(const UserPaths& paths);

// The name for a backup made at `now` in `calendar`'s local time, with
// `counter` above 1 appended as "-{counter}".
std::string automaticBackupName(Date now, const LocalCalendar& calendar, int counter = 1);

// The first name for `now` that no entry of `folder` has yet.
std::filesystem::path freeAutomaticBackupPath(const std::filesystem::path& folder, Date now,
                                              const LocalCalendar& calendar);

// Removes the automatic backups of `folder` beyond the `keep` newest (by
// name, which orders them by time). Returns how many were removed; one that
// cannot be removed stays and is not counted.
std::size_t removeOldAutomaticBackups(const std::filesystem::path& folder, std::size_t keep);

}  // namespace lumenote::portability
