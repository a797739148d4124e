#include "ui/models/browser_settings.hpp"

#include <fmt/format.h>

#include "portability/diagnostic_report.hpp"
#include "ui/models/receipt_dates.hpp"

namespace lumenote::ui::models {

BrowserCard browserCard(const bridge::BrowserStatusRow& row, const LocalCalendar& calendar) {
    const bridge::BrowserDiagnosticStatus& diagnosis = row.diagnosis;
    BrowserCard card;
    card.title = std::string(bridge::displayName(diagnosis.browser));
    const std::string installed =
        !diagnosis.browserInstalled ? "Not installed"
        : diagnosis.browserVersion ? fmt::format("Installed, version {}", *diagnosis.browserVersion)
                                   : std::string("Installed");
    const bridge::NativeHostSetupSnapshot& registration = row.registration;
    const std::string host = registration.isReady()         ? "Registered"
                             : registration.manifestPresent ? "Needs repair"
                                                            : "Not registered";
    const auto readiness =
        portability::browserReadiness(diagnosis.browserInstalled, row.extension.state);
    // The readiness of an installed browser whose extension never wrote is
    // "Installed", which says nothing about the extension itself.
    const std::string extension =
        diagnosis.browserInstalled &&
                row.extension.state == bridge::BrowserExtensionConnectionState::notInstalled
            ? std::string("Not heard from yet")
            : std::string(portability::browserReadinessText(readiness));
    const std::string lastEvent =
        diagnosis.lastEvent
            ? fmt::format("{} at {}", receiptDayText(*diagnosis.lastEvent, calendar),
                          receiptTimeText(*diagnosis.lastEvent, calendar))
            : std::string("None yet");
    card.facts = {{"Browser", installed},
                  {"Native host", host},
                  {"Extension", extension},
                  {"Last event", lastEvent},
                  {"Versions", std::string(bridge::displayText(diagnosis.compatibility))}};
    card.diagnosis = diagnosis.issue
                         ? std::string(bridge::displayText(*diagnosis.issue))
                         : fmt::format("Activity in {} is recorded by website.", card.title);
    card.canRegister = !registration.manifestPresent;
    card.canRepair = registration.manifestPresent && !registration.isReady();
    card.canRemove = registration.manifestPresent;
    return card;
}

bool deservesCard(const bridge::BrowserStatusRow& row) {
    return row.diagnosis.browserInstalled || row.registration.manifestPresent;
}

std::string notInstalledText(const std::vector<bridge::BrowserStatusRow>& rows) {
    std::string names;
    for (const auto& row : rows) {
        if (!deservesCard(row)) {
            names += (names.empty() ? "" : ", ") +
                     std::string(bridge::displayName(row.diagnosis.browser));
        }
    }
    return names.empty() ? std::string() : "Not installed: " + names + ".";
}

std::vector<std::string> extensionPackagesLines(
    const std::optional<std::filesystem::path>& folder) {
    if (!folder) {
        return {
            "The extension packages were not found beside this installation. Build them "
            "with extension/tools/build.js, or install the package that ships them."};
    }
    const std::string base = folder->string();
    return {
        fmt::format("The extension packages are in {}.", base),
        fmt::format("Chrome, Chromium, Edge, Brave, Vivaldi and Opera: open the extensions page, "
                    "turn on developer mode, choose \"Load unpacked\" and pick {}/chromium.",
                    base),
        fmt::format("Firefox: open about:debugging, \"This Firefox\", \"Load Temporary Add-on\" "
                    "and pick {}/lumenote-firefox.xpi.",
                    base),
    };
}

std::vector<std::string> setupTestLines(const bridge::SetupTestReport& report) {
    std::vector<std::string> lines;
    for (const bridge::SetupTestItem& item : report.items) {
        lines.push_back(fmt::format("{}: {} \u2014 {}", item.title,
                                    bridge::displayText(item.status), item.sentence));
    }
    if (report.recommendedAction) {
        lines.push_back(fmt::format("Next: {}", bridge::displayText(*report.recommendedAction)));
    }
    return lines;
}

}  // namespace lumenote::ui::models
