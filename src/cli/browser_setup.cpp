#include "cli/browser_setup.hpp"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <system_error>

namespace lumenote::cli {

namespace {

std::string lowered(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return result;
}

}  // namespace

bridge::NativeHostRegistrationChecker registrationChecker(const CliContext& context) {
    return bridge::NativeHostRegistrationChecker(
        bridge::nativeHostConfiguration(context.paths, processEnvironmentValue));
}

Result<bridge::SupportedBrowser, std::string> parseBrowserName(std::string_view name) {
    const std::string wanted = lowered(name);
    constexpr std::pair<std::string_view, bridge::SupportedBrowser> kShortNames[] = {
        {"chrome", bridge::SupportedBrowser::googleChrome},
        {"google-chrome", bridge::SupportedBrowser::googleChrome},
        {"edge", bridge::SupportedBrowser::microsoftEdge},
    };
    for (const auto& [shortName, browser] : kShortNames) {
        if (wanted == shortName) {
            return browser;
        }
    }
    for (const auto& [browser, rawName] : RawValues<bridge::SupportedBrowser>::entries) {
        if (wanted == lowered(rawName) || wanted == lowered(bridge::bundleIdentifier(browser))) {
            return browser;
        }
    }
    return fail("No supported browser is called \"" + std::string(name) +
                "\". Name one of: chrome, chromium, edge, brave, vivaldi, opera, firefox.");
}

}  // namespace lumenote::cli
