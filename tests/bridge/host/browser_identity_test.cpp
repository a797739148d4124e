#include "bridge/host/browser_identity.hpp"

#include <gtest/gtest.h>

namespace lumenote::bridge::host {
namespace {

TEST(BrowserIdentityTest, ParentExecutablesOfTheBrowsersAsDistributionsInstallThem) {
    const std::vector<std::pair<const char*, std::optional<SupportedBrowser>>> cases{
        {"/opt/google/chrome/chrome", SupportedBrowser::googleChrome},
        {"/opt/google/chrome-beta/chrome", SupportedBrowser::googleChrome},
        {"/usr/bin/google-chrome-stable", SupportedBrowser::googleChrome},
        {"/usr/lib/chromium/chromium", SupportedBrowser::chromium},
        {"/snap/chromium/3000/usr/lib/chromium-browser/chrome", SupportedBrowser::chromium},
        {"/opt/microsoft/msedge/msedge", SupportedBrowser::microsoftEdge},
        {"/opt/brave.com/brave/brave", SupportedBrowser::brave},
        {"/usr/bin/brave-browser-nightly", SupportedBrowser::brave},
        {"/opt/vivaldi/vivaldi-bin", SupportedBrowser::vivaldi},
        {"/usr/lib/x86_64-linux-gnu/opera/opera", SupportedBrowser::opera},
        {"/usr/lib/firefox-esr/firefox-esr", SupportedBrowser::firefox},
        {"/usr/lib/firefox/firefox (deleted)", SupportedBrowser::firefox},
        {"/usr/bin/bash", std::nullopt},
        {"/usr/bin/chromedriver", std::nullopt},
        {"/usr/bin/operator", std::nullopt},
        {"", std::nullopt},
    };
    for (const auto& [path, expected] : cases) {
        EXPECT_EQ(browserFromExecutable(path), expected) << path;
    }
}

TEST(BrowserIdentityTest, FirefoxArgumentsNameFirefoxWhateverTheParent) {
    EXPECT_EQ(
        identifyBrowser({"/home/u/.mozilla/native-messaging-hosts/com.tallywise.browser_host.json",
                         "extension@lumenote"},
                        "/usr/bin/bash"),
        SupportedBrowser::firefox);
    // Chromium-family arguments leave the decision to the parent.
    EXPECT_EQ(
        identifyBrowser({"chrome-extension://abcdefghijklmnop/"}, "/opt/brave.com/brave/brave"),
        SupportedBrowser::brave);
    EXPECT_EQ(identifyBrowser({"chrome-extension://abcdefghijklmnop/"}, "/usr/bin/python3"),
              std::nullopt);
    EXPECT_EQ(identifyBrowser({}, "/usr/bin/python3"), std::nullopt);
}

}  // namespace
}  // namespace lumenote::bridge::host
