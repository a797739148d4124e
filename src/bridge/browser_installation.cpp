#include "bridge/browser_installation.hpp"

#include <unistd.h>

#include <array>
#include <string>
#include <system_error>

namespace lumenote::bridge {

namespace fs = std::filesystem;

namespace {

struct BrowserNames {
    std::vector<std::string_view> executables;
    std::vector<std::string_view> desktopIds;
};

BrowserNames namesOf(SupportedBrowser browser) {
    switch (browser) {
        case SupportedBrowser::googleChrome:
            return {{"google-chrome", "google-chrome-stable"},
                    {"google-chrome", "com.google.Chrome"}};
        case SupportedBrowser::chromium:
            return {{"chromium", "chromium-browser"},
                    {"chromium", "chromium-browser", "org.chromium.Chromium"}};
        case SupportedBrowser::microsoftEdge:
            return {{"microsoft-edge", "microsoft-edge-stable"},
                    {"microsoft-edge", "com.microsoft.Edge"}};
        case SupportedBrowser::brave:
            return {{"brave-browser", "brave"}, {"brave-browser", "com.brave.Browser"}};
        case SupportedBrowser::vivaldi:
            return {{"vivaldi", "vivaldi-stable"}, {"vivaldi-stable", "com.vivaldi.Vivaldi"}};
        case SupportedBrowser::opera:
            return {{"opera"}, {"opera", "com.opera.Opera"}};
        case SupportedBrowser::firefox:
            return {{"firefox", "firefox-esr"}, {"firefox", "firefox-esr", "org.mozilla.firefox"}};
        case SupportedBrowser::arc:
        case SupportedBrowser::safari:
            return {{}, {}};
    }
    return {{}, {}};
}

std::vector<fs::path> splitFolders(const char* value) {
    std::vector<fs::path> folders;
    if (!value) {
        return folders;
    }
    std::string_view rest(value);
    while (!rest.empty()) {
        const auto colon = rest.find(':');
        const std::string_view part = rest.substr(0, colon);
        if (!part.empty() && part.front() == '/') {
            folders.emplace_back(part);
        }
        if (colon == std::string_view::npos) {
            break;
        }
        rest.remove_prefix(colon + 1);
    }
    return folders;
}

}  // namespace

BrowserSearchLocations BrowserSearchLocations::fromEnvironment(
    const char* (*environment)(const char*)) {
    BrowserSearchLocations locations;
    locations.executableFolders = splitFolders(environment("PATH"));
    auto dataHome = splitFolders(environment("XDG_DATA_HOME"));
    if (dataHome.empty()) {
        if (const char* home = environment("HOME"); home && *home == '/') {
            dataHome.push_back(fs::path(home) / ".local" / "share");
        }
    }
    auto dataDirs = splitFolders(environment("XDG_DATA_DIRS"));
    if (dataDirs.empty()) {
        dataDirs = {"/usr/local/share", "/usr/share"};
    }
    locations.dataFolders = std::move(dataHome);
    locations.dataFolders.insert(locations.dataFolders.end(), dataDirs.begin(), dataDirs.end());
    return locations;
}

bool browserInstalled(SupportedBrowser browser, const BrowserSearchLocations& locations) {
    const BrowserNames names = namesOf(browser);
    std::error_code error;
    for (const fs::path& folder : locations.executableFolders) {
        for (const std::string_view name : names.executables) {
            const fs::path candidate = folder / name;
            if (fs::is_regular_file(candidate, error) && ::access(candidate.c_str(), X_OK) == 0) {
                return true;
            }
        }
    }
    for (const fs::path& folder : locations.dataFolders) {
        for (const std::string_view id : names.desktopIds) {
            if (fs::is_regular_file(folder / "applications" / (std::string(id) + ".desktop"),
                                    error)) {
                return true;
            }
        }
    }
    return false;
}

}  // namespace lumenote::bridge
