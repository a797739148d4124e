#include "foundation/user_paths.hpp"

#include <cstdlib>

namespace lumenote {
inline namespace foundation {

namespace {

std::filesystem::path absoluteOrEmpty(const char* value) {
    if (value == nullptr || *value == '\0') {
        return {};
    }
    std::filesystem::path path(value);
    return path.is_absolute() ? path : std::filesystem::path{};
}

}  // namespace

UserPaths UserPaths::fromEnvironment(const EnvironmentLookup& lookup) {
    std::filesystem::path home = absoluteOrEmpty(lookup("HOME"));
    if (home.empty()) {
        home = std::filesystem::current_path();
    }
    UserPaths paths;
    paths.dataHome = absoluteOrEmpty(lookup("XDG_DATA_HOME"));
    if (paths.dataHome.empty()) {
        paths.dataHome = home / ".local" / "share";
    }
    paths.configHome = absoluteOrEmpty(lookup("XDG_CONFIG_HOME"));
    if (paths.configHome.empty()) {
        paths.configHome = home / ".config";
    }
    return paths;
}

const char* processEnvironmentValue(const char* name) {
    return std::getenv(name);
}

UserPaths UserPaths::fromProcessEnvironment() {
    return fromEnvironment(processEnvironmentValue);
}

}  // namespace foundation
}  // namespace lumenote
