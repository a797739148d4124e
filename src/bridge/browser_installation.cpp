#include "bridge/browser_installation.hpp"

#include <unistd.h>

#include <array>
#include <fstream>
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

// The longest version text accepted, and the most of a version file read.
constexpr std::size_t kMaximumVersionLength = 32;
constexpr std::size_t kMaximumVersionFileBytes = 4096;

std::optional<std::string> versionText(std::string_view text) {
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r' || text.back() == ' ')) {
        text.remove_suffix(1);
    }
    if (text.empty() || text.size() > kMaximumVersionLength ||
        !(text.front() >= '0' && text.front() <= '9')) {
        return std::nullopt;
    }
    for (const char c : text) {
        const bool allowed =
            (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '.';
        if (!allowed) {
            return std::nullopt;
        }
    }
    return std::string(text);
}

// The start of a regular file, at most kMaximumVersionFileBytes of it.
std::optional<std::string> smallFile(const fs::path& path) {
    std::error_code error;
    if (!fs::is_regular_file(path, error)) {
        return std::nullopt;
    }
    std::ifstream in(path, std::ios::binary);
    std::string bytes(kMaximumVersionFileBytes, '\0');
    in.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    bytes.resize(static_cast<std::size_t>(in.gcount()));
    return in.bad() ? std::nullopt : std::optional<std::string>(std::move(bytes));
}

// "Version=" under "[App]" of an application.ini.
std::optional<std::string> applicationIniVersion(const std::string& text) {
    bool inApp = false;
    std::size_t start = 0;
    while (start < text.size()) {
        std::size_t end = text.find('\n', start);
        if (end == std::string::npos) {
            end = text.size();
        }
        std::string_view line(text.data() + start, end - start);
        if (!line.empty() && line.back() == '\r') {
            line.remove_suffix(1);
        }
        if (!line.empty() && line.front() == '[') {
            inApp = line == "[App]";
        } else if (inApp && line.starts_with("Version=")) {
            return versionText(line.substr(8));
        }
        start = end + 1;
    }
    return std::nullopt;
}

std::optional<std::string> firefoxVersion(const BrowserSearchLocations& locations) {
    std::error_code error;
    for (const fs::path& folder : locations.executableFolders) {
        for (const std::string_view name : namesOf(SupportedBrowser::firefox).executables) {
            const fs::path real = fs::canonical(folder / name, error);
            if (error) {
                continue;
            }
            if (const auto ini = smallFile(real.parent_path() / "application.ini")) {
                if (auto version = applicationIniVersion(*ini)) {
                    return version;
                }
            }
        }
    }
    return std::nullopt;
}

}  // namespace

std::optional<fs::path> chromiumUserDataFolderName(SupportedBrowser browser) {
    switch (browser) {
        case SupportedBrowser::googleChrome:
            return fs::path("google-chrome");
        case SupportedBrowser::chromium:
            return fs::path("chromium");
        case SupportedBrowser::microsoftEdge:
            return fs::path("microsoft-edge");
        case SupportedBrowser::brave:
            return fs::path("BraveSoftware") / "Brave-Browser";
        case SupportedBrowser::vivaldi:
            return fs::path("vivaldi");
        case SupportedBrowser::opera:
            return fs::path("opera");
        case SupportedBrowser::firefox:
        case SupportedBrowser::arc:
        case SupportedBrowser::safari:
            return std::nullopt;
    }
    return std::nullopt;
}

std::optional<std::string> installedBrowserVersion(SupportedBrowser browser,
                                                   const BrowserSearchLocations& locations) {
    if (browser == SupportedBrowser::firefox) {
        return firefoxVersion(locations);
    }
    const auto userData = chromiumUserDataFolderName(browser);
    if (!userData || locations.configHome.empty()) {
        return std::nullopt;
    }
    const auto text = smallFile(locations.configHome / *userData / "Last Version");
    return text ? versionText(*text) : std::nullopt;
}

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
    if (const auto configHome = splitFolders(environment("XDG_CONFIG_HOME")); !configHome.empty()) {
        locations.configHome = configHome.front();
    } else if (const char* home = environment("HOME"); home && *home == '/') {
        locations.configHome = fs::path(home) / ".config";
    }
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
