#include "bridge/supported_browser.hpp"

namespace lumenote::bridge {

namespace {

struct BrowserRow {
    SupportedBrowser browser;
    std::string_view bundleIdentifier;
    std::string_view displayName;
};

constexpr std::array<BrowserRow, 9> kBrowsers{{
    {SupportedBrowser::googleChrome, "com.google.Chrome", "Google Chrome"},
    {SupportedBrowser::microsoftEdge, "com.microsoft.edgemac", "Microsoft Edge"},
    {SupportedBrowser::brave, "com.brave.Browser", "Brave"},
    {SupportedBrowser::arc, "company.thebrowser.Browser", "Arc"},
    {SupportedBrowser::opera, "com.operasoftware.Opera", "Opera"},
    {SupportedBrowser::vivaldi, "com.vivaldi.Vivaldi", "Vivaldi"},
    {SupportedBrowser::safari, "com.apple.Safari", "Safari"},
    {SupportedBrowser::firefox, "org.mozilla.firefox", "Firefox"},
    {SupportedBrowser::chromium, "org.chromium.Chromium", "Chromium"},
}};

const BrowserRow& row(SupportedBrowser browser) {
    for (const BrowserRow& candidate : kBrowsers) {
        if (candidate.browser == browser) {
            return candidate;
        }
    }
    return kBrowsers.front();
}

}  // namespace

std::string_view bundleIdentifier(SupportedBrowser browser) {
    return row(browser).bundleIdentifier;
}

std::optional<SupportedBrowser> supportedBrowser(std::string_view identifier) {
    for (const BrowserRow& candidate : kBrowsers) {
        if (candidate.bundleIdentifier == identifier) {
            return candidate.browser;
        }
    }
    return std::nullopt;
}

std::string_view displayName(SupportedBrowser browser) {
    return row(browser).displayName;
}

}  // namespace lumenote::bridge
