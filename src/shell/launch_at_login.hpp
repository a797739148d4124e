// Launch at login: the XDG autostart entry that makes the user's desktop
// session start Lumenote, $XDG_CONFIG_HOME/autostart/com.tallywise.Lumenote.desktop.
//
// The autostart folder belongs to the user's whole desktop: Lumenote adds and
// removes its own entry there and touches nothing else. The folder's mode is
// never changed (a missing folder is created, private like every new folder
// of the system), no other file in it is written or removed, and an entry
// that is a symbolic link or anything but a regular file is left alone and
// reported, since it is then not one Lumenote wrote.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "foundation/result.hpp"
#include "foundation/user_paths.hpp"

namespace lumenote::shell {

inline constexpr std::string_view kAutostartEntryFileName = "com.tallywise.Lumenote.desktop";

// The entry of `paths`: in its autostart folder, under kAutostartEntryFileName.
std::filesystem::path autostartEntryPath(const UserPaths& paths);

// The entry's text for the program at `executablePath`: an application named
// Lumenote with its icon, no terminal and no startup notification, enabled
// for autostart, whose Exec key is the path alone, written by execArgument.
// nullopt when execArgument cannot write the path.
std::optional<std::string> autostartEntryText(const std::filesystem::path& executablePath);

enum class LaunchAtLoginFailure {
    executableNotAbsolute,       // the program path is relative
    executableNotRepresentable,  // not UTF-8, or holds a control character
    entryIsSymbolicLink,         // a symbolic link has the entry's name
    entryIsNotAFile,             // a folder (a FIFO, a socket ...) has the entry's name
    folderUnusable,              // the autostart folder cannot be created or is not a folder
    writeFailed,                 // the entry could not be written whole
    removeFailed,                // {systemReason}: the system refused to remove the entry
};

// A failure with what fills its sentence.
struct LaunchAtLoginError {
    bool adding = true;  // adding the entry, or else removing it
    LaunchAtLoginFailure failure = LaunchAtLoginFailure::writeFailed;
    // The entry's path; the program's for the two executable failures; the
    // folder's for folderUnusable.
    std::filesystem::path path;
    std::string systemReason;  // the system's own words, for removeFailed

    // "Lumenote could not add itself to the applications that start at login
    // ({reason})." or "Lumenote could not remove itself from the applications
    // that start at login ({reason}).", the reason naming the path.
    std::string message() const;
};

// Adds (`enabled`) or removes the autostart entry of `paths`, for the program
// at `executablePath` (absolute; used only when adding). Adding writes the
// whole entry to a temporary sibling with mode 0600 and renames it into
// place, so the session never reads half an entry; a failure leaves no
// temporary file behind and any previous entry as it was. Adding again
// rewrites the same entry; removing an entry that is not there succeeds.
Result<void, LaunchAtLoginError> applyLaunchAtLogin(bool enabled, const UserPaths& paths,
                                                    const std::filesystem::path& executablePath);

}  // namespace lumenote::shell
