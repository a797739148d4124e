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
    EXPECT_EQ(found.configHome, "/home/student/.config");
    gEnvironment = {{"XDG_DATA_HOME", "/data"},
                    {"XDG_DATA_DIRS", "/var/lib/flatpak/exports/share"}};
    found = BrowserSearchLocations::fromEnvironment(lookup);
    EXPECT_TRUE(found.executableFolders.empty());
    EXPECT_EQ(found.dataFolders,
              (std::vector<fs::path>{"/data", "/var/lib/flatpak/exports/share"}));
    EXPECT_TRUE(found.configHome.empty());
    gEnvironment = {{"XDG_CONFIG_HOME", "/config"}, {"HOME", "/home/student"}};
    EXPECT_EQ(BrowserSearchLocations::fromEnvironment(lookup).configHome, "/config");
}

TEST_F(BrowserInstallationTest, AChromiumFamilyVersionIsTheOneItLastRanAs) {
    BrowserSearchLocations where = locations();
    where.configHome = home_.root() / "config";
    EXPECT_FALSE(installedBrowserVersion(SupportedBrowser::chromium, where)) << "never started";
    writeFile(where.configHome / "chromium/Last Version", "142.0.7444.175");
    writeFile(where.configHome / "BraveSoftware/Brave-Browser/Last Version", "1.84.139\n");
    EXPECT_EQ(installedBrowserVersion(SupportedBrowser::chromium, where), "142.0.7444.175");
    EXPECT_EQ(installedBrowserVersion(SupportedBrowser::brave, where), "1.84.139");
    EXPECT_FALSE(installedBrowserVersion(SupportedBrowser::googleChrome, where));

    for (const std::string& bad : std::vector<std::string>{"", "\n", "v142", "142.0; rm -rf",
                                                           std::string(33, '1'), "142.0\n143.0"}) {
        writeFile(where.configHome / "chromium/Last Version", bad);
        EXPECT_FALSE(installedBrowserVersion(SupportedBrowser::chromium, where)) << bad;
    }
    fs::remove(where.configHome / "chromium/Last Version");
    fs::create_directories(where.configHome / "chromium/Last Version");
    EXPECT_FALSE(installedBrowserVersion(SupportedBrowser::chromium, where)) << "a folder";
}

TEST_F(BrowserInstallationTest, FirefoxVersionComesFromTheIniBesideItsRealExecutable) {
    const fs::path lib = home_.root() / "lib/firefox-esr";
    writeFile(lib / "firefox-esr", "#!/bin/sh\n");
    writeFile(lib / "application.ini",
              "[Crash Reporter]\nVersion=1\r\n[App]\r\nVendor=Mozilla\r\nVersion=115.5.0esr\r\n");
    fs::create_directories(home_.root() / "bin");
    fs::create_symlink(lib / "firefox-esr", home_.root() / "bin/firefox-esr");
    EXPECT_EQ(installedBrowserVersion(SupportedBrowser::firefox, locations()), "115.5.0esr");

    writeFile(lib / "application.ini", "[App]\nName=Firefox\n");
    EXPECT_FALSE(installedBrowserVersion(SupportedBrowser::firefox, locations()));
    fs::remove(lib / "firefox-esr");  // a dangling link
    EXPECT_FALSE(installedBrowserVersion(SupportedBrowser::firefox, locations()));
    EXPECT_FALSE(installedBrowserVersion(SupportedBrowser::safari, locations()));
}

}  // namespace
}  // namespace lumenote::bridge
