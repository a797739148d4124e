// Whether a supported browser is installed: an executable of one of its
// names on the search path, or one of its desktop entries in an
// "applications" folder of the data folders (which covers Flatpak and Snap
// exports as the desktop lists them). Arc and Safari are never installed on
// Linux.
//
//   googleChrome   google-chrome, google-chrome-stable | google-chrome, com.google.Chrome
//   chromium       chromium, chromium-browser          | chromium, chromium-browser,
//                                                        org.chromium.Chromium
//   microsoftEdge  microsoft-edge, microsoft-edge-stable | microsoft-edge, com.microsoft.Edge
//   brave          brave-browser, brave                | brave-browser, com.brave.Browser
//   vivaldi        vivaldi, vivaldi-stable             | vivaldi-stable, com.vivaldi.Vivaldi
//   opera          opera                               | opera, com.opera.Opera
//   firefox        firefox, firefox-esr                | firefox, firefox-esr,
//                                                        org.mozilla.firefox
//
// Which version is installed, without starting the browser:
// - The Chromium family writes the version it last ran as into "Last
//   Version" in its user-data folder (the folder that also holds its
//   NativeMessagingHosts), so the version is the one this user last started;
//   before the first start it is unknown.
// - Firefox ships "application.ini" next to its real executable (the
//   executable on the path is often a symbolic link into /usr/lib); its
//   "Version=" line under "[App]" is the installed version.
// Only a short text of digits, dots and letters (such as "115.5.0esr") is
// accepted as a version; anything else reads as unknown.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "bridge/supported_browser.hpp"

namespace lumenote::bridge {

struct BrowserSearchLocations {
    std::vector<std::filesystem::path> executableFolders;  // $PATH
    std::vector<std::filesystem::path> dataFolders;        // $XDG_DATA_HOME, $XDG_DATA_DIRS
    std::filesystem::path configHome;                      // $XDG_CONFIG_HOME

    // From PATH, XDG_DATA_HOME (else ~/.local/share), XDG_DATA_DIRS (else
    // /usr/local/share:/usr/share) and XDG_CONFIG_HOME (else ~/.config) as
    // `environment` gives them.
    static BrowserSearchLocations fromEnvironment(const char* (*environment)(const char*));
};

bool browserInstalled(SupportedBrowser browser, const BrowserSearchLocations& locations);

// The installed version as described above; nullopt when it cannot be told.
std::optional<std::string> installedBrowserVersion(SupportedBrowser browser,
                                                   const BrowserSearchLocations& locations);

// The user-data folder of a Chromium-family browser under the configuration
// folder ("chromium", "BraveSoftware/Brave-Browser", ...); nullopt for the
// other browsers.
std::optional<std::filesystem::path> chromiumUserDataFolderName(SupportedBrowser browser);

}  // namespace lumenote::bridge
