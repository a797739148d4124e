#include "bridge/host/browser_identity.hpp"

#include <unistd.h>

#include <array>
#include <filesystem>
#include <system_error>
#include <utility>

namespace lumenote::bridge::host {

namespace {

constexpr std::string_view kDeletedSuffix = " (deleted)";

bool startsWith(std::string_view text, std::string_view prefix) {
    return text.substr(0, prefix.size()) == prefix;
}

bool endsWith(std::string_view text, std::string_view suffix) {
    return text.size() >= suffix.size() && text.substr(text.size() - suffix.size()) == suffix;
}

// Executable names matched exactly, then by prefix (distribution wrappers add
// channel suffixes such as "-stable" or "-beta").
constexpr std::array<std::pair<std::string_view, SupportedBrowser>, 10> kExactNames{{
    {"msedge", SupportedBrowser::microsoftEdge},
    {"brave", SupportedBrowser::brave},
    {"vivaldi", SupportedBrowser::vivaldi},
    {"vivaldi-bin", SupportedBrowser::vivaldi},
    {"opera", SupportedBrowser::opera},
    {"firefox", SupportedBrowser::firefox},
    {"firefox-esr", SupportedBrowser::firefox},
    {"firefox-bin", SupportedBrowser::firefox},
    {"chromium", SupportedBrowser::chromium},
    {"chromium-browser", SupportedBrowser::chromium},
}};

constexpr std::array<std::pair<std::string_view, SupportedBrowser>, 4> kNamePrefixes{{
    {"google-chrome", SupportedBrowser::googleChrome},
    {"microsoft-edge", SupportedBrowser::microsoftEdge},
    {"brave-browser", SupportedBrowser::brave},
    {"chromium", SupportedBrowser::chromium},
}};

}  // namespace

std::optional<SupportedBrowser> browserFromExecutable(std::string_view executablePath) {
    if (endsWith(executablePath, kDeletedSuffix)) {
        executablePath.remove_suffix(kDeletedSuffix.size());
    }
    const std::size_t slash = executablePath.rfind('/');
    const std::string_view name =
        slash == std::string_view::npos ? executablePath : executablePath.substr(slash + 1);
    const std::string_view folder =
        slash == std::string_view::npos ? std::string_view{} : executablePath.substr(0, slash);
    if (name == "chrome") {
        return folder.find("/google/") != std::string_view::npos || endsWith(folder, "/google")
                   ? SupportedBrowser::googleChrome
                   : SupportedBrowser::chromium;
    }
    for (const auto& [exact, browser] : kExactNames) {
        if (name == exact) {
            return browser;
        }
    }
    for (const auto& [prefix, browser] : kNamePrefixes) {
        if (startsWith(name, prefix)) {
            return browser;
        }
    }
    return std::nullopt;
}

bool hasFirefoxArguments(const std::vector<std::string>& arguments) {
    return arguments.size() >= 2 && endsWith(arguments[0], ".json") &&
           !startsWith(arguments[1], "chrome-extension://");
}

std::optional<SupportedBrowser> identifyBrowser(const std::vector<std::string>& arguments,
                                                std::string_view parentExecutable) {
    if (hasFirefoxArguments(arguments)) {
        return SupportedBrowser::firefox;
    }
    return browserFromExecutable(parentExecutable);
}

std::string parentProcessExecutable() {
    std::error_code error;
    const auto target = std::filesystem::read_symlink(
        std::filesystem::path("/proc") / std::to_string(getppid()) / "exe", error);
    return error ? std::string() : target.string();
}

}  // namespace lumenote::bridge::host
