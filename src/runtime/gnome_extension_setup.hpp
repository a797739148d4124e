// Installing the GNOME Shell extension this program ships, as the command
// line's `setup wayland` and the setup assistant both do it.
#pragma once

#include <string>
#include <vector>

#include "foundation/user_paths.hpp"

namespace lumenote::runtime {

struct GnomeExtensionSetup {
    bool installed = false;
    // What was done and what the user must do themselves, or why nothing
    // could be done: fixed sentences to show one per line.
    std::vector<std::string> sentences;
};

// Finds the extension's builds beside the running executable (the build
// tree's or the installed ones), installs the build the running GNOME Shell
// loads into `paths`' data folder and enables it.
GnomeExtensionSetup installShippedGnomeExtension(const UserPaths& paths);

}  // namespace lumenote::runtime
