#include "portability/diagnostic_report.hpp"

#include <fmt/format.h>

namespace lumenote::portability {

namespace {

using bridge::BrowserExtensionConnectionState;

constexpr std::string_view kDevelopment = "Development";

std::string_view orDevelopment(const std::optional<std::string>& value) {
    return value && !value->empty() ? std::string_view(*value) : kDevelopment;
}

std::string countText(const std::optional<std::size_t>& count) {
    return count ? std::to_string(*count) : std::string("Unavailable");
}

std::string_view enabledText(bool enabled) {
    return enabled ? "Enabled" : "Disabled";
}

// Letters, digits and the few marks a URI leaves as they are (RFC 3986's
// unreserved set); every other byte is written as %XX.
std::string percentEncoded(std::string_view text) {
    std::string encoded;
    encoded.reserve(text.size());
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        const bool unreserved = (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z') ||
                                (byte >= '0' && byte <= '9') || byte == '-' || byte == '.' ||
                                byte == '_' || byte == '~';
        if (unreserved) {
            encoded += c;
        } else {
            encoded += fmt::format("%{:02X}", byte);
        }
    }
    return encoded;
}

// Mail bodies separate lines with CRLF (RFC 6068, section 5).
std::string withCrlf(std::string_view text) {
    std::string result;
    result.reserve(text.size() + 8);
    for (const char c : text) {
        if (c == '\n') {
            result += '\r';
        }
        result += c;
    }
    return result;
}

}  // namespace

std::string_view displayText(ReportedNotificationState state) {
    switch (state) {
        case ReportedNotificationState::disabled:
            return "Disabled";
        case ReportedNotificationState::notRequested:
            return "Not requested";
        case ReportedNotificationState::denied:
            return "Denied";
        case ReportedNotificationState::authorised:
            return "Authorised";
        case ReportedNotificationState::unavailable:
            return "Unavailable";
    }
    return "Unavailable";
}

ReportedNotificationState reportedNotificationState(
    bool enabledInLumenote, bridge::NotificationAuthorizationState desktop) {
    if (!enabledInLumenote) {
        return ReportedNotificationState::disabled;
    }
    switch (desktop) {
        case bridge::NotificationAuthorizationState::notDetermined:
            return ReportedNotificationState::notRequested;
        case bridge::NotificationAuthorizationState::authorized:
            return ReportedNotificationState::authorised;
        case bridge::NotificationAuthorizationState::denied:
            return ReportedNotificationState::denied;
        case bridge::NotificationAuthorizationState::unavailable:
            return ReportedNotificationState::unavailable;
    }
    return ReportedNotificationState::unavailable;
}

std::string_view buildArchitectureText() {
#if defined(__x86_64__)
    return "Intel (x86_64)";
#elif defined(__aarch64__)
    return "Arm (aarch64)";
#elif defined(__i386__)
    return "Intel (i386)";
#elif defined(__arm__)
    return "Arm (armhf)";
#elif defined(__riscv) && __riscv_xlen == 64
    return "RISC-V (riscv64)";
#elif defined(__powerpc64__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    return "POWER (ppc64le)";
#elif defined(__s390x__)
    return "IBM Z (s390x)";
#else
    return "Other";
#endif
}

std::string_view browserReadinessText(BrowserExtensionConnectionState state) {
    switch (state) {
        case BrowserExtensionConnectionState::notInstalled:
            return "Not installed";
        case BrowserExtensionConnectionState::installed:
            return "Installed";
        case BrowserExtensionConnectionState::connecting:
            return "Connecting";
        case BrowserExtensionConnectionState::connected:
            return "Connected";
        case BrowserExtensionConnectionState::permissionRequired:
            return "Permission required";
        case BrowserExtensionConnectionState::connectionProblem:
            return "Connection problem";
        case BrowserExtensionConnectionState::extensionDisabled:
            return "Extension disabled";
        case BrowserExtensionConnectionState::unsupportedVersion:
            return "Unsupported version";
    }
    return "Connection problem";
}

BrowserExtensionConnectionState browserReadiness(bool browserInstalled,
                                                 BrowserExtensionConnectionState extension) {
    if (!browserInstalled) {
        return BrowserExtensionConnectionState::notInstalled;
    }
    return extension == BrowserExtensionConnectionState::notInstalled
               ? BrowserExtensionConnectionState::installed
               : extension;
}

std::string browserReadinessLine(bridge::SupportedBrowser browser,
                                 BrowserExtensionConnectionState state) {
    return fmt::format("- {}: {}", bridge::displayName(browser), browserReadinessText(state));
}

std::string buildDiagnosticReport(const DiagnosticReportFacts& facts) {
    std::string report;
    const auto line = [&report](std::string_view text) {
        report += text;
        report += '\n';
    };
    line("Lumenote Diagnostic Report");
    line("Generated: " + formatIso8601(facts.generatedAt));
    line("");
    line("Application");
    line(fmt::format("- Version: {}", orDevelopment(facts.appVersion)));
    line(fmt::format("- Build: {}", orDevelopment(facts.appBuild)));
    line(fmt::format("- Backup format: {}", facts.backupFormatVersion));
    line(fmt::format("- Export format: {}", facts.exportFormatVersion));
    line("");
    line("System");
    line(fmt::format("- Linux: {}", facts.operatingSystem));
    line(fmt::format("- Architecture: {}", facts.architecture));
    line(fmt::format("- Appearance preference: {}", rawValue(facts.appearance)));
    line("");
    line("State");
    line(fmt::format("- Active session: {}", facts.activeSession ? "Yes" : "No"));
    line(fmt::format("- Sessions: {}", countText(facts.sessions)));
    line(fmt::format("- Activity segments: {}", countText(facts.activitySegments)));
    line(fmt::format("- Application rules: {}", countText(facts.applicationRules)));
    line(fmt::format("- Website rules: {}", countText(facts.websiteRules)));
    line("");
    line("Features");
    line(fmt::format("- Browser tracking: {}", enabledText(facts.browserTrackingEnabled)));
    line(fmt::format("- Hostname tracking: {}", enabledText(facts.hostnameTrackingEnabled)));
    line(fmt::format("- Local PDF detection: {}", enabledText(facts.localPDFDetectionEnabled)));
    line(fmt::format("- Notifications: {}", displayText(facts.notifications)));
    line("");
    line("Browser readiness");
    for (const auto& [browser, state] : facts.browserReadiness) {
        line(browserReadinessLine(browser, state));
    }
    return report;
}

FeedbackMessage buildFeedbackMessage(const DiagnosticReportFacts& facts) {
    FeedbackMessage message;
    message.recipient = std::string(kFeedbackRecipient);
    message.subject = "Lumenote Feedback";
    message.body = fmt::format(
        "Describe the issue or suggestion here.\n\nLumenote {} (build {}, {})\n\nDiagnostic "
        "reports are optional. Review one in Settings → Data & Privacy before saving and "
        "attaching it manually.\nNo session or browsing data is attached or sent automatically.",
        orDevelopment(facts.appVersion), orDevelopment(facts.appBuild), facts.architecture);
    return message;
}

std::string FeedbackMessage::mailtoLink() const {
    return "mailto:" + recipient + "?subject=" + percentEncoded(subject) +
           "&body=" + percentEncoded(withCrlf(body));
}

}  // namespace lumenote::portability
