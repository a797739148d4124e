#include "portability/diagnostic_report.hpp"

#include <gtest/gtest.h>

#include <string>

namespace lumenote::portability {
namespace {

using bridge::BrowserExtensionConnectionState;
using bridge::NotificationAuthorizationState;
using bridge::SupportedBrowser;

DiagnosticReportFacts facts() {
    DiagnosticReportFacts f;
    f.generatedAt = Date::fromUnixSeconds(1795628712.0);  // 2026-11-25T17:45:12Z
    f.appVersion = "0.1.0";
    f.appBuild = "7";
    f.backupFormatVersion = 1;
    f.exportFormatVersion = 1;
    f.operatingSystem = "Debian GNU/Linux 12 (bookworm), kernel 6.1.0";
    f.architecture = "Intel (x86_64)";
    f.appearance = settings::TallywiseAppearance::dark;
    f.activeSession = true;
    f.sessions = 20000;
    f.activitySegments = 2000000;
    f.applicationRules = 31;
    f.websiteRules = 12;
    f.browserTrackingEnabled = true;
    f.hostnameTrackingEnabled = false;
    f.localPDFDetectionEnabled = true;
    f.notifications = ReportedNotificationState::authorised;
    f.browserReadiness = {
        {SupportedBrowser::chromium, BrowserExtensionConnectionState::connected},
        {SupportedBrowser::firefox, BrowserExtensionConnectionState::notInstalled}};
    return f;
}

TEST(DiagnosticReportTest, EveryLineInItsSectionAndOrder) {
    EXPECT_EQ(buildDiagnosticReport(facts()),
              "Lumenote Diagnostic Report\n"
              "Generated: 2026-11-25T17:45:12Z\n"
              "\n"
              "Application\n"
              "- Version: 0.1.0\n"
              "- Build: 7\n"
              "- Backup format: 1\n"
              "- Export format: 1\n"
              "\n"
              "System\n"
              "- Linux: Debian GNU/Linux 12 (bookworm), kernel 6.1.0\n"
              "- Architecture: Intel (x86_64)\n"
              "- Appearance preference: dark\n"
              "\n"
              "State\n"
              "- Active session: Yes\n"
              "- Sessions: 20000\n"
              "- Activity segments: 2000000\n"
              "- Application rules: 31\n"
              "- Website rules: 12\n"
              "\n"
              "Features\n"
              "- Browser tracking: Enabled\n"
              "- Hostname tracking: Disabled\n"
              "- Local PDF detection: Enabled\n"
              "- Notifications: Authorised\n"
              "\n"
              "Browser readiness\n"
              "- Chromium: Connected\n"
              "- Firefox: Not installed\n");
}

TEST(DiagnosticReportTest, MissingVersionKeysReadDevelopmentAndCountsReadZeroOrUnavailable) {
    for (const std::optional<std::string>& missing :
         {std::optional<std::string>(), std::optional<std::string>("")}) {
        DiagnosticReportFacts f = facts();
        f.appVersion = missing;
        f.appBuild = missing;
        f.sessions = 0;
        f.activitySegments = 0;
        f.activeSession = false;
        f.websiteRules.reset();  // a store that could not be read
        const std::string report = buildDiagnosticReport(f);
        EXPECT_NE(report.find("- Version: Development\n- Build: Development\n"), std::string::npos);
        EXPECT_NE(report.find("- Active session: No\n- Sessions: 0\n- Activity segments: 0\n"),
                  std::string::npos);
        EXPECT_NE(report.find("- Website rules: Unavailable\n"), std::string::npos);
        EXPECT_NE(buildFeedbackMessage(f).body.find("Lumenote Development (build Development, "),
                  std::string::npos);
    }
}

TEST(DiagnosticReportTest, NotificationsTurnedOffInLumenoteReadDisabledWhateverTheDesktopSays) {
    const struct {
        bool enabled;
        NotificationAuthorizationState desktop;
        std::string_view expected;
    } cases[] = {
        {false, NotificationAuthorizationState::authorized, "Disabled"},
        {false, NotificationAuthorizationState::denied, "Disabled"},
        {false, NotificationAuthorizationState::unavailable, "Disabled"},
        {true, NotificationAuthorizationState::notDetermined, "Not requested"},
        {true, NotificationAuthorizationState::denied, "Denied"},
        {true, NotificationAuthorizationState::authorized, "Authorised"},
        {true, NotificationAuthorizationState::unavailable, "Unavailable"},
    };
    for (const auto& c : cases) {
        DiagnosticReportFacts f = facts();
        f.notifications = reportedNotificationState(c.enabled, c.desktop);
        EXPECT_NE(
            buildDiagnosticReport(f).find("- Notifications: " + std::string(c.expected) + "\n"),
            std::string::npos)
            << c.expected;
    }
}

TEST(DiagnosticReportTest, EveryReadinessStateHasItsText) {
    using S = BrowserExtensionConnectionState;
    EXPECT_EQ(browserReadinessLine(SupportedBrowser::googleChrome, S::permissionRequired),
              "- Google Chrome: Permission required");
    EXPECT_EQ(browserReadiness(false, S::connected), S::notInstalled)
        << "readiness left behind by a browser since removed";
    EXPECT_EQ(browserReadiness(true, S::notInstalled), S::installed);
    EXPECT_EQ(browserReadiness(true, S::extensionDisabled), S::extensionDisabled);
    EXPECT_EQ(browserReadinessText(S::installed), "Installed");
    EXPECT_EQ(browserReadinessText(S::connecting), "Connecting");
    EXPECT_EQ(browserReadinessText(S::connectionProblem), "Connection problem");
    EXPECT_EQ(browserReadinessText(S::extensionDisabled), "Extension disabled");
    EXPECT_EQ(browserReadinessText(S::unsupportedVersion), "Unsupported version");
}

// Decodes %XX escapes, as a mail program reads the link.
std::string percentDecoded(std::string_view text) {
    std::string decoded;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%' && i + 2 < text.size()) {
            decoded +=
                static_cast<char>(std::stoi(std::string(text.substr(i + 1, 2)), nullptr, 16));
            i += 2;
        } else {
            decoded += text[i];
        }
    }
    return decoded;
}

TEST(DiagnosticReportTest, TheFeedbackLinkCarriesSubjectAndBodyButNeverTheReport) {
    const FeedbackMessage message = buildFeedbackMessage(facts());
    EXPECT_EQ(message.subject, "Lumenote Feedback");
    EXPECT_EQ(message.body,
              "Describe the issue or suggestion here.\n\nLumenote 0.1.0 (build 7, Intel (x86_64))"
              "\n\nDiagnostic reports are optional. Review one in Settings → Data & Privacy "
              "before saving and attaching it manually.\nNo session or browsing data is attached "
              "or sent automatically.");

    const std::string link = message.mailtoLink();
    const std::string prefix = "mailto:feedback@lumenote.app?subject=Lumenote%20Feedback&body=";
    ASSERT_EQ(link.substr(0, prefix.size()), prefix);
    const std::string encodedBody = link.substr(prefix.size());
    EXPECT_EQ(encodedBody.find_first_of("&?# \n\r→"), std::string::npos)
        << "a body character that would end or break the link";
    std::string expected;
    for (const char c : message.body) {
        expected += c == '\n' ? std::string("\r\n") : std::string(1, c);
    }
    EXPECT_EQ(percentDecoded(encodedBody), expected);
    EXPECT_EQ(link.find("Diagnostic Report"), std::string::npos);
}

}  // namespace
}  // namespace lumenote::portability
