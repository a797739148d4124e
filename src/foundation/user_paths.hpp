// Where the system keeps its files for the current user, following the XDG
// base-directory rules.
#pragma once

#include <filesystem>
#include <functional>

namespace lumenote {
inline namespace foundation {

// Looks up an environment variable; nullptr when unset.
using EnvironmentLookup = std::function<const char*(const char*)>;

// The lookup of this process's own environment.
const char* processEnvironmentValue(const char* name);

struct UserPaths {
    std::filesystem::path dataHome;    // $XDG_DATA_HOME, else ~/.local/share
    std::filesystem::path configHome;  // $XDG_CONFIG_HOME, else ~/.config

    // Relative or empty XDG values are ignored, as the base-directory rules
    // require. Without HOME the current folder stands in for it.
    static UserPaths fromEnvironment(const EnvironmentLookup& lookup);
    static UserPaths fromProcessEnvironment();

    // $XDG_DATA_HOME/Lumenote: the store, the checkpoint, the templates.
    std::filesystem::path applicationData() const { return dataHome / "Lumenote"; }
    // $XDG_CONFIG_HOME/Lumenote: the defaults domain.
    std::filesystem::path applicationConfig() const { return configHome / "Lumenote"; }
    // $XDG_CONFIG_HOME/autostart: the desktop entries the user's session
    // starts at login. The folder is shared with other applications.
    std::filesystem::path autostart() const { return configHome / "autostart"; }
};

}  // namespace foundation
}  // namespace lumenote
