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
#pragma once

#include <filesystem>
#include <string_view>
#include <vector>

#include "bridge/supported_browser.hpp"

namespace lumenote::bridge {

struct BrowserSearchLocations {
    std::vector<std::filesystem::path> executableFolders;  // $PATH
    std::vector<std::filesystem::path> dataFolders;        // $XDG_DATA_HOME, $XDG_DATA_DIRS

    // From PATH, XDG_DATA_HOME (else ~/.local/share) and XDG_DATA_DIRS (else
    // /usr/local/share:/usr/share) as `environment` gives them.
    static BrowserSearchLocations fromEnvironment(const char* (*environment)(const char*));
};

bool browserInstalled(SupportedBrowser browser, const BrowserSearchLocations& locations);

}  // namespace lumenote::bridge
