// What the Browsers section of the settings says of each browser (installed,
// registered, connected, last event, version, the one diagnostic sentence
// and which registration actions make sense), where the extension packages
// are and how to load them, and the setup test's lines.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "bridge/browser_status_report.hpp"
#include "bridge/setup_test.hpp"
#include "foundation/dates.hpp"

namespace lumenote::ui::models {

// One labelled fact of a browser's card.
struct BrowserFact {
    std::string label;
    std::string value;

    friend bool operator==(const BrowserFact&, const BrowserFact&) = default;
};

struct BrowserCard {
    std::string title;  // "Chromium"
    // In order: "Browser" ("Installed", "Installed, version 131.0", "Not
    // installed"), "Native host" ("Registered", "Needs repair", "Not
    // registered"), "Extension" (its readiness; "Not heard from yet" while an
    // installed browser's extension never wrote), "Last event" (local day and
    // time, or "None yet") and "Versions" (their compatibility).
    std::vector<BrowserFact> facts;
    std::string diagnosis;     // the one sentence: the issue, or that it is recorded
    bool canRegister = false;  // no manifest yet
    bool canRepair = false;    // a manifest that is not ready
    bool canRemove = false;    // a manifest, ready or not
};

BrowserCard browserCard(const bridge::BrowserStatusRow& row, const LocalCalendar& calendar);

// Whether a browser gets a card of its own: installed, or holding a
// manifest that may need removing. The others are named in one line.
bool deservesCard(const bridge::BrowserStatusRow& row);

// "Not installed: Brave, Vivaldi." for the browsers without a card; "" when
// every browser has one.
std::string notInstalledText(const std::vector<bridge::BrowserStatusRow>& rows);

// Where the built packages are and how each family loads them; without a
// folder, that none was found beside this installation.
std::vector<std::string> extensionPackagesLines(const std::optional<std::filesystem::path>& folder);

// "Application tracking: Ready — {sentence}" per check, then "Next: {action}"
// when one is recommended.
std::vector<std::string> setupTestLines(const bridge::SetupTestReport& report);

}  // namespace lumenote::ui::models
