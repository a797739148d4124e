// The supported preferences between the preferences store and a backup.
#pragma once

#include "portability/backup_records.hpp"
#include "settings/preferences_store.hpp"

namespace lumenote::portability {

// Every supported preference as the store holds it now.
BackupPreferences backupPreferencesOf(const settings::PreferencesStore& preferences);

// Assigns each preference the backup holds through the store's own setters,
// which clamp out-of-range values and read unknown texts as the store reads
// them (an unknown appearance is "system"; a long sleep other than 0, 300 or
// 1800 is ten minutes). Absent members leave their setting as it is.
void applyBackupPreferences(const BackupPreferences& backup,
                            settings::PreferencesStore& preferences);

}  // namespace lumenote::portability
