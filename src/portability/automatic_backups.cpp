#include "portability/automatic_backups.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <system_error>
#include <vector>

#include "portability/backup_file.hpp"

namespace lumenote::portability {

namespace {

// Whether `name` is one automatic backups are given.
bool isAutomaticBackupName(std::string_view name) {
    return name.starts_with(kAutomaticBackupPrefix) && name.ends_with(kBackupExtension);
}

}  // namespace

std::filesystem::path automaticBackupFolder(const UserPaths& paths) {
    return paths.dataHome / "Tallywise" / "Backups";
}

std::string automaticBackupName(Date now, const LocalCalendar& calendar, int counter) {
    // "2026-11-16T09:30:00+01:00": the local date, then the time.
    const std::string local = calendar.formatIso8601(now);
    std::string name = std::string(kAutomaticBackupPrefix) + local.substr(0, 10) + "-" +
                       local.substr(11, 2) + local.substr(14, 2) + local.substr(17, 2);
    if (counter > 1) {
        name += fmt::format("-{}", counter);
    }
    return name + std::string(kBackupExtension);
}

std::filesystem::path freeAutomaticBackupPath(const std::filesystem::path& folder, Date now,
                                              const LocalCalendar& calendar) {
    for (int counter = 1;; ++counter) {
        std::filesystem::path candidate = folder / automaticBackupName(now, calendar, counter);
        std::error_code error;
        if (!std::filesystem::exists(std::filesystem::symlink_status(candidate, error))) {
            return candidate;
        }
    }
}

std::size_t removeOldAutomaticBackups(const std::filesystem::path& folder, std::size_t keep) {
    std::vector<std::filesystem::path> backups;
    std::error_code error;
    // increment() with an error code: a folder that cannot be listed is
    // left alone rather than throwing.
    for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        std::error_code kindError;
        if (entry->is_regular_file(kindError) &&
            isAutomaticBackupName(entry->path().filename().string())) {
            backups.push_back(entry->path());
        }
    }
    if (backups.size() <= keep) {
        return 0;
    }
    // By name without the extension, so that "...-093000" comes before
    // "...-093000-2", made later in the same second.
    std::sort(backups.begin(), backups.end(),
              [](const auto& a, const auto& b) { return a.stem().string() > b.stem().string(); });
    std::size_t removed = 0;
    for (std::size_t index = keep; index < backups.size(); ++index) {
        if (std::filesystem::remove(backups[index], error)) {
            ++removed;
        }
    }
    return removed;
}

}  // namespace lumenote::portability
