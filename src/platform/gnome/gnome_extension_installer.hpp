// Installs the GNOME Shell extension of data/gnome-shell into the user's data
// folder and asks GNOME Shell to enable it.
#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/result.hpp"
#include "foundation/user_paths.hpp"

namespace lumenote::platform::gnome {

inline constexpr std::string_view kExtensionUuid = "lumenote@tallywise.com";

// The two builds of the extension: legacy for GNOME Shell 43 and 44 (the
// imports.gi format), modules for 45 and later (ES modules).
enum class ExtensionFormat { legacy, modules };

// The folder name of a format's build ("legacy", "modules").
std::string_view formatFolder(ExtensionFormat format);

// The major version in `gnome-shell --version` output ("GNOME Shell 43.9"
// is 43); nullopt for any other text.
std::optional<int> parseGnomeShellVersion(std::string_view versionOutput);

// The format a shell of major version `major` loads.
ExtensionFormat extensionFormatFor(int major);

// The folder holding both builds (<folder>/<format>/lumenote@tallywise.com)
// for an executable in `executableFolder`: the build tree's gnome-shell/
// beside bin/, or <prefix>/share/lumenote/gnome-shell when installed. nullopt
// when neither holds them.
std::optional<std::filesystem::path> shippedExtensionsFolder(
    const std::filesystem::path& executableFolder);

// Where GNOME Shell looks for the user's copy:
// $XDG_DATA_HOME/gnome-shell/extensions/lumenote@tallywise.com.
std::filesystem::path installedExtensionFolder(const UserPaths& paths);

// What running a program gave: its exit status and standard output.
struct ProgramOutput {
    int exitCode = 0;
    std::string standardOutput;
};

// Runs `program` (looked up on PATH) with `arguments`; nullopt when it
// cannot be started, or does not end in time (it is then killed).
using ProgramRunner = std::function<std::optional<ProgramOutput>(
    const std::string& program, const std::vector<std::string>& arguments)>;

// The real runner, bounding each program by `timeout`.
ProgramRunner processRunner(std::chrono::milliseconds timeout = std::chrono::seconds(10));

enum class ExtensionInstallError {
    gnomeShellNotFound,         // gnome-shell cannot be run
    unknownShellVersion,        // its --version output is not understood
    shippedExtensionMissing,    // the build of the needed format is not there
    destinationNotReplaceable,  // the destination is a file or a symbolic link
    copyFailed,                 // the copy could not be written
};

// The fixed sentence for the user.
std::string_view describe(ExtensionInstallError error);

enum class ExtensionEnabling {
    enabled,      // gnome-extensions enable succeeded
    toolMissing,  // gnome-extensions is not installed
    toolFailed,   // gnome-extensions ran and refused
};

struct ExtensionInstallReport {
    std::filesystem::path folder;  // the installed copy
    ExtensionFormat format = ExtensionFormat::legacy;
    bool replacedPrevious = false;  // an earlier copy was there and was replaced
    ExtensionEnabling enabling = ExtensionEnabling::enabled;
};

// Two fixed sentences: what was done, then the one thing the user must do
// (log out and in, since GNOME Shell on Wayland loads new extensions only at
// login; and enable the extension when gnome-extensions could not).
std::vector<std::string> describe(const ExtensionInstallReport& report);

// Asks `run` for gnome-shell's version, copies the matching build from
// `shippedFolder` (shippedExtensionsFolder()) to installedExtensionFolder(),
// replacing an earlier copy there, then runs `gnome-extensions enable
// lumenote@tallywise.com`. The copy is written beside the destination first
// and moved into place, so an interrupted install leaves the earlier copy or
// the new one, never a mix; nothing else in the extensions folder is
// touched. Running it again gives the same result. Fails without changing
// anything, except copyFailed, which may leave the earlier copy removed.
Result<ExtensionInstallReport, ExtensionInstallError> installGnomeShellExtension(
    const std::filesystem::path& shippedFolder, const UserPaths& paths, const ProgramRunner& run);

}  // namespace lumenote::platform::gnome
