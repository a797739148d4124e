#include "shell/launch_at_login.hpp"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "foundation/atomic_file_writer.hpp"
#include "shell/desktop_entry_exec.hpp"

namespace lumenote::shell {

namespace fs = std::filesystem;

namespace {

Failure<LaunchAtLoginError> failure(bool adding, LaunchAtLoginFailure failure, fs::path path,
                                    std::string systemReason = {}) {
    return fail(LaunchAtLoginError{adding, failure, std::move(path), std::move(systemReason)});
}

// Refuses what has the entry's name when it is not a regular file: Lumenote
// did not put it there. A name that cannot be looked at is left to the
// write or the removal to report.
Result<void, LaunchAtLoginError> checkEntryIsOurs(const fs::path& entry, bool adding) {
    struct stat info {};
    if (::lstat(entry.c_str(), &info) != 0) {
        return {};
    }
    if (S_ISLNK(info.st_mode)) {
        return failure(adding, LaunchAtLoginFailure::entryIsSymbolicLink, entry);
    }
    if (!S_ISREG(info.st_mode)) {
        return failure(adding, LaunchAtLoginFailure::entryIsNotAFile, entry);
    }
    return {};
}

Result<void, LaunchAtLoginError> addEntry(const fs::path& entry, const fs::path& executablePath) {
    if (!executablePath.is_absolute()) {
        return failure(true, LaunchAtLoginFailure::executableNotAbsolute, executablePath);
    }
    const auto text = autostartEntryText(executablePath);
    if (!text) {
        return failure(true, LaunchAtLoginFailure::executableNotRepresentable, executablePath);
    }
    if (auto ours = checkEntryIsOurs(entry, true); !ours) {
        return ours;
    }
    // The autostart folder is the desktop's, shared with every application:
    // it is used as it is, never narrowed.
    auto writer = AtomicFileWriter::create(entry, systemFileWriteOperations(),
                                           private_file::Durability::synced,
                                           AtomicFileWriter::FolderPolicy::useAsItIs);
    if (!writer) {
        if (writer.error() == PrivateFileError::folderUnusable) {
            return failure(true, LaunchAtLoginFailure::folderUnusable, entry.parent_path());
        }
        return failure(true, LaunchAtLoginFailure::writeFailed, entry);
    }
    if (!writer->append(*text) || !writer->commit()) {
        return failure(true, LaunchAtLoginFailure::writeFailed, entry);
    }
    return {};
}

Result<void, LaunchAtLoginError> removeEntry(const fs::path& entry) {
    if (auto ours = checkEntryIsOurs(entry, false); !ours) {
        return ours;
    }
    // No entry, or no folder to hold one: there is nothing to remove.
    if (::unlink(entry.c_str()) != 0 && errno != ENOENT && errno != ENOTDIR) {
        return failure(false, LaunchAtLoginFailure::removeFailed, entry, std::strerror(errno));
    }
    return {};
}

std::string reason(const LaunchAtLoginError& error) {
    const std::string path = error.path.string();
    switch (error.failure) {
        case LaunchAtLoginFailure::executableNotAbsolute:
            return "the program path " + path + " is not absolute";
        case LaunchAtLoginFailure::executableNotRepresentable:
            // The path itself is not shown: it may not even be text.
            return "its program path cannot be written in a desktop entry";
        case LaunchAtLoginFailure::entryIsSymbolicLink:
            return path + " is a symbolic link, which Lumenote leaves as it is";
        case LaunchAtLoginFailure::entryIsNotAFile:
            return path + " is not a regular file";
        case LaunchAtLoginFailure::folderUnusable:
            return "the folder " + path + " cannot be created or is not a folder";
        case LaunchAtLoginFailure::writeFailed:
            return path + " could not be written";
        case LaunchAtLoginFailure::removeFailed:
            return path + ": " + error.systemReason;
    }
    return path;
}

}  // namespace

fs::path autostartEntryPath(const UserPaths& paths) {
    return paths.autostart() / kAutostartEntryFileName;
}

std::optional<std::string> autostartEntryText(const fs::path& executablePath) {
    const auto exec = execArgument(executablePath.string());
    if (!exec) {
        return std::nullopt;
    }
    return "[Desktop Entry]\n"
           "Type=Application\n"
           "Name=Lumenote\n"
           "Comment=Record study sessions on this computer\n"
           "Exec=" +
           *exec +
           "\n"
           "Icon=com.tallywise.Lumenote\n"
           "Terminal=false\n"
           "Categories=Education;Utility;\n"
           "X-GNOME-Autostart-enabled=true\n"
           "StartupNotify=false\n";
}

std::string LaunchAtLoginError::message() const {
    if (adding) {
        return "Lumenote could not add itself to the applications that start at login (" +
               reason(*this) + ").";
    }
    return "Lumenote could not remove itself from the applications that start at login (" +
           reason(*this) + ").";
}

Result<void, LaunchAtLoginError> applyLaunchAtLogin(bool enabled, const UserPaths& paths,
                                                    const fs::path& executablePath) {
    const fs::path entry = autostartEntryPath(paths);
    return enabled ? addEntry(entry, executablePath) : removeEntry(entry);
}

}  // namespace lumenote::shell
