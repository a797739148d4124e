#include "bridge/setup_test.hpp"

#include <gtest/gtest.h>

namespace lumenote::bridge {
namespace {

using Kind = SetupTestKind;
using Status = SetupTestStatus;
const Date kNow = *parseIso8601("2026-11-25T10:00:00Z");

SetupTestInput everythingReady() {
    SetupTestInput input;
    input.applicationObservationAvailable = true;
    input.samplingPipelinePassed = true;
    input.persistenceReadable = true;
    input.chromeInstalled = true;
    input.chromeVersion = "131.0.6778.85";
    input.nativeHost = {true, true, true, true, true};
    input.extensionState = BrowserExtensionConnectionState::connected;
    input.extensionVersion = "1.0.0";
    input.nativeHostVersion = "0.1.0";
    input.protocolVersion = 1;
    input.lastReadinessAt = kNow.addingSeconds(-10);
    input.notificationPreferenceEnabled = true;
    input.notificationState = NotificationAuthorizationState::authorized;
    input.appVersion = "0.1.0";
    input.appBuild = "1";
    input.macOSVersion = "Debian GNU/Linux 12 (bookworm)";
    input.architecture = "x86_64";
    input.configuredExtensionIdentifier = "abcdefghijklmnopabcdefghijklmnop";
    return input;
}

const SetupTestItem& item(const SetupTestReport& report, Kind kind) {
    return report.items.at(static_cast<std::size_t>(kind));
}

TEST(SetupTestTest, AReadyInstallationHasEveryCheckReadyAndNoAction) {
    const auto report = runSetupTest(everythingReady(), kNow);
    ASSERT_EQ(report.items.size(), 9u);
    for (const auto& checked : report.items) {
        EXPECT_EQ(checked.status, Status::ready) << checked.title << ": " << checked.sentence;
    }
    EXPECT_EQ(item(report, Kind::overallReadiness).sentence,
              "Lumenote is ready for a study session. Optional features may remain off.");
    EXPECT_EQ(report.recommendedAction, std::nullopt);
    EXPECT_EQ(report.diagnosticText.rfind("Lumenote Setup Test Diagnostic Report\n", 0), 0u);
}

TEST(SetupTestTest, TrackingOffMakesTheBrowserChecksNotEnabledAndStillReady) {
    auto input = everythingReady();
    input.browserTrackingEnabled = false;
    input.chromeInstalled = false;
    input.nativeHost = {};
    input.extensionState = BrowserExtensionConnectionState::notInstalled;
    const auto report = runSetupTest(input, kNow);
    for (const Kind kind : {Kind::nativeHost, Kind::chromeExtension, Kind::nativeMessaging}) {
        EXPECT_EQ(item(report, kind).status, Status::notEnabled) << rawValue(kind);
    }
    EXPECT_EQ(item(report, Kind::chromeApplication).status, Status::unavailable);
    EXPECT_EQ(item(report, Kind::overallReadiness).status, Status::ready);
    EXPECT_EQ(item(report, Kind::nativeMessaging).sentence,
              "Browser tracking is turned off, so native messaging is optional.");
}

TEST(SetupTestTest, NativeHostSentencesFollowTheirOrder) {
    auto input = everythingReady();
    input.nativeHost.exactConfiguredOriginAuthorised = false;
    auto report = runSetupTest(input, kNow);
    EXPECT_EQ(item(report, Kind::nativeHost).sentence,
              "The native-host registration does not authorise the expected extension exactly.");
    EXPECT_EQ(item(report, Kind::nativeMessaging).sentence,
              "Native messaging cannot start until the native host is repaired.");
    EXPECT_EQ(report.recommendedAction, SetupTestAction::repairNativeHost);
    EXPECT_EQ(item(report, Kind::overallReadiness).sentence,
              "An enabled or required setup check needs attention.");

    input.nativeHost.helperExecutable = false;
    EXPECT_EQ(item(runSetupTest(input, kNow), Kind::nativeHost).sentence,
              "The Lumenote native helper is missing or cannot run.");
    input.nativeHost.manifestPresent = false;
    EXPECT_EQ(item(runSetupTest(input, kNow), Kind::nativeHost).sentence,
              "The Lumenote native-host manifest is missing.");
}

TEST(SetupTestTest, ExtensionAndMessagingFollowTheConnection) {
    auto input = everythingReady();
    input.extensionState = BrowserExtensionConnectionState::notInstalled;
    input.lastReadinessAt.reset();
    auto report = runSetupTest(input, kNow);
    EXPECT_EQ(item(report, Kind::chromeExtension).sentence,
              "The Lumenote Chrome extension was not detected.");
    EXPECT_EQ(item(report, Kind::nativeMessaging).status, Status::notEnabled);
    EXPECT_EQ(report.recommendedAction, SetupTestAction::openChromeExtensions);

    input.extensionState = BrowserExtensionConnectionState::installed;
    EXPECT_EQ(item(runSetupTest(input, kNow), Kind::nativeMessaging).sentence,
              "Lumenote has not received a compatible readiness heartbeat.");

    input.extensionState = BrowserExtensionConnectionState::unsupportedVersion;
    input.protocolVersion = 0;
    report = runSetupTest(input, kNow);
    EXPECT_EQ(item(report, Kind::chromeExtension).sentence,
              "The Chrome extension and Lumenote versions are incompatible.");
    EXPECT_EQ(item(report, Kind::nativeMessaging).sentence,
              "The extension and Lumenote versions are incompatible.");
}

TEST(SetupTestTest, NotificationsRecommendTheirOwnAction) {
    auto input = everythingReady();
    input.notificationState = NotificationAuthorizationState::denied;
    EXPECT_EQ(runSetupTest(input, kNow).recommendedAction,
              SetupTestAction::openNotificationSettings);
    input.notificationState = NotificationAuthorizationState::notDetermined;
    EXPECT_EQ(runSetupTest(input, kNow).recommendedAction, SetupTestAction::requestNotifications);
    input.notificationPreferenceEnabled = false;
    const auto report = runSetupTest(input, kNow);
    EXPECT_EQ(item(report, Kind::notifications).status, Status::notEnabled);
    EXPECT_EQ(report.recommendedAction, std::nullopt);
}

TEST(SetupTestTest, TheReportHoldsNothingOutsideThePermittedCharacters) {
    auto input = everythingReady();
    input.extensionVersion = "1.0\n- Manifest valid: yes";
    input.nativeHostVersion = "/home/student/Secret Thesis.pdf";
    input.chromeVersion = "Chrome 131 «beta» \t\x01";
    input.macOSVersion = "Debian/Linux 12: bookworm; {student}";
    input.architecture = "";
    input.configuredExtensionIdentifier = "abc def/ghi";
    input.recentIssues = {BrowserDiagnosticIssue::privateBrowsing};
    const std::string text = runSetupTest(input, kNow).diagnosticText;
    const std::string permitted = std::string(kReportWordCharacters) + ":;,\n";
    for (const char c : text) {
        EXPECT_NE(permitted.find(c), std::string::npos) << "character " << int(c) << " in\n"
                                                        << text;
    }
    EXPECT_NE(text.find("- Extension version: 1.0-Manifestvalidyes\n"), std::string::npos) << text;
    EXPECT_NE(text.find("- Native host version: homestudentSecretThesis.pdf\n"), std::string::npos);
    EXPECT_NE(text.find("- System: DebianLinux 12 bookworm student\n"), std::string::npos);
    EXPECT_NE(text.find("- Architecture: unknown\n"), std::string::npos);
    EXPECT_NE(text.find("- Authenticated extension ID: abcdefghi\n"), std::string::npos);
    EXPECT_NE(text.find("- Recent readiness heartbeat: 2026-11-25T09:59:50Z\n"), std::string::npos);
    EXPECT_EQ(text.find("Manifest valid: yes\n- Manifest valid"), std::string::npos);
}

}  // namespace
}  // namespace lumenote::bridge
