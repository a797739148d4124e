// Every registrable browser's diagnosis from one set of sources, and the
// text that `lumenote-cli browser status` prints for it. The running
// recorder fills the sources from its coordinator (the last events, the
// frontmost browser, its own process); without a recorder the command fills
// them from the bridge files alone.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "bridge/browser_diagnostics.hpp"
#include "bridge/browser_installation.hpp"
#include "foundation/dates.hpp"

namespace lumenote::bridge {

struct BrowserStatusSources {
    const NativeHostRegistrationChecker& registration;
    const BrowserExtensionStatusService& extensions;
    BrowserSearchLocations installations;
    std::optional<BrowserBridgeState> bridgeState;
    std::optional<std::int32_t> recorderProcessIdentifier;
    bool sessionRunning = false;
    bool trackingPaused = false;
    std::optional<std::string> frontmostBundleIdentifier;
    bool filenameLabelsEnabled = false;
    std::function<std::optional<BrowserLiveDiagnostic>(SupportedBrowser)> liveDiagnostic;
    Date now;
};

struct BrowserStatusRow {
    BrowserDiagnosticStatus diagnosis;
    NativeHostSetupSnapshot registration;
    BrowserExtensionStatus extension;
};

// One row per browser that has a native-messaging folder on Linux (all but
// Arc and Safari), in the order of SupportedBrowser.
std::vector<BrowserStatusRow> browserStatusRows(const BrowserStatusSources& sources);

// The lines of one browser: installed or not, the registration, the
// extension, when it was last heard from, the last event, the connection
// test and the issue. Dates in `calendar`'s zone.
std::string browserStatusText(const BrowserStatusRow& row, const LocalCalendar& calendar);

}  // namespace lumenote::bridge
