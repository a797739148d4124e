#include "foundation/user_paths.hpp"

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace lumenote {
namespace {

UserPaths pathsFor(const std::map<std::string, std::string>& environment) {
    return UserPaths::fromEnvironment([&](const char* name) -> const char* {
        const auto found = environment.find(name);
        return found == environment.end() ? nullptr : found->second.c_str();
    });
}

TEST(UserPathsTest, DefaultsUnderHome) {
    const UserPaths paths = pathsFor({{"HOME", "/home/ada"}});
    EXPECT_EQ(paths.applicationData(), "/home/ada/.local/share/Lumenote");
    EXPECT_EQ(paths.applicationConfig(), "/home/ada/.config/Lumenote");
    EXPECT_EQ(paths.autostart(), "/home/ada/.config/autostart");
}

TEST(UserPathsTest, XdgFoldersWinWhenAbsolute) {
    const UserPaths paths =
        pathsFor({{"HOME", "/home/ada"}, {"XDG_DATA_HOME", "/data"}, {"XDG_CONFIG_HOME", "/cfg"}});
    EXPECT_EQ(paths.applicationData(), "/data/Lumenote");
    EXPECT_EQ(paths.applicationConfig(), "/cfg/Lumenote");
    EXPECT_EQ(paths.autostart(), "/cfg/autostart");
}

TEST(UserPathsTest, RelativeOrEmptyXdgValuesAreIgnored) {
    const UserPaths paths =
        pathsFor({{"HOME", "/home/ada"}, {"XDG_DATA_HOME", "data"}, {"XDG_CONFIG_HOME", ""}});
    EXPECT_EQ(paths.dataHome, "/home/ada/.local/share");
    EXPECT_EQ(paths.configHome, "/home/ada/.config");
}

}  // namespace
}  // namespace lumenote
