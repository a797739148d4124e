#include "bridge/browser_installation.hpp"

#include <sys/stat.h>

#include <map>
#include <string>

#include <gtest/gtest.h>

#include "support/temporary_home.hpp"

namespace lumenote::bridge {
namespace {

namespace fs = std::filesystem;
using lumenote::testing::writeFile;

class BrowserInstallationTest : public ::testing::Test {
  protected:
    BrowserSearchLocations locations() const {
        return {{home_.root() / "bin"}, {home_.root() / "data", home_.root() / "flatpak"}};
    }
    void executable(const std::string& name, mode_t mode = 0755) {
        writeFile(home_.root() / "bin" / name, "#!/bin/sh\n");
        ::chmod((home_.root() / "bin" / name).c_str(), mode);
    }
    lumenote::testing::TemporaryHome home_;
};

TEST_F(BrowserInstallationTest, AnExecutableOnThePathOrADesktopEntryMeansInstalled) {
    EXPECT_FALSE(browserInstalled(SupportedBrowser::googleChrome, locations()));
    executable("google-chrome-stable");
    EXPECT_TRUE(browserInstalled(SupportedBrowser::googleChrome, locations()));

    writeFile(home_.root() / "flatpak/applications/org.mozilla.firefox.desktop",
              "[Desktop Entry]\n");
    EXPECT_TRUE(browserInstalled(SupportedBrowser::firefox, locations()));
    EXPECT_FALSE(browserInstalled(SupportedBrowser::chromium, locations()))
        << "one browser's files name no other";
}

TEST_F(BrowserInstallationTest, NearMissesAreNotInstalled) {
    executable("chromium", 0644);                            // not executable
    fs::create_directories(home_.root() / "bin" / "brave");  // a folder
    writeFile(home_.root() / "data/applications/opera.desktop.bak", "x");
    writeFile(home_.root() / "data/vivaldi-stable.desktop", "x");  // not in applications/
    for (const auto browser : {SupportedBrowser::chromium, SupportedBrowser::brave,
                               SupportedBrowser::opera, SupportedBrowser::vivaldi}) {
        EXPECT_FALSE(browserInstalled(browser, locations())) << rawValue(browser);
    }
    executable("safari");
    EXPECT_FALSE(browserInstalled(SupportedBrowser::safari, locations()));
}

std::map<std::string, std::string> gEnvironment;
const char* lookup(const char* name) {
    const auto found = gEnvironment.find(name);
    return found == gEnvironment.end() ? nullptr : found->second.c_str();
}

TEST_F(BrowserInstallationTest, LocationsFollowTheEnvironmentWithTheStandardDefaults) {
    gEnvironment = {{"PATH", "/usr/bin:relative:/opt/bin:"}, {"HOME", "/home/student"}};
    auto found = BrowserSearchLocations::fromEnvironment(lookup);
    EXPECT_EQ(found.executableFolders, (std::vector<fs::path>{"/usr/bin", "/opt/bin"}));
    EXPECT_EQ(found.dataFolders, (std::vector<fs::path>{"/home/student/.local/share",
                                                        "/usr/local/share", "/usr/share"}));
    gEnvironment = {{"XDG_DATA_HOME", "/data"},
                    {"XDG_DATA_DIRS", "/var/lib/flatpak/exports/share"}};
    found = BrowserSearchLocations::fromEnvironment(lookup);
    EXPECT_TRUE(found.executableFolders.empty());
    EXPECT_EQ(found.dataFolders,
              (std::vector<fs::path>{"/data", "/var/lib/flatpak/exports/share"}));
}

}  // namespace
}  // namespace lumenote::bridge
