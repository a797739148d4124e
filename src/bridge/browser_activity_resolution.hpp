// What the frontmost browser shows, worked out from the last event accepted
// from it: a website, a local PDF, or the browser itself with the reason no
// page can be named. Pure; the coordinator supplies the facts.
#pragma once

#include <optional>
#include <string>

#include "bridge/browser_event_receiver.hpp"
#include "recording/platform_services.hpp"

namespace lumenote::bridge {

// The user's browser settings as the coordinator applies them.
struct BrowserTrackingSettings {
    bool browserTrackingEnabled = true;    // off: browsers are recorded as plain applications
    bool hostnameTrackingEnabled = true;   // off: websites are not named
    bool localPDFDetectionEnabled = true;  // off: local PDFs are not named
    bool manualPDFLabelsEnabled = true;    // labels the user typed in the extension
    bool filenameLabelsEnabled = true;     // labels taken from file names
    bool browserTrackingPaused = false;    // "pause all browser tracking"

    friend bool operator==(const BrowserTrackingSettings&,
                           const BrowserTrackingSettings&) = default;
};

// How long an event describes what the browser shows. The host asks the
// extension for a heartbeat every 20 seconds while a session runs (and the
// extension reports every change at once), so an event stays fresh for three
// heartbeats: one or two lost heartbeats do not interrupt a website stretch,
// while a browser whose extension went silent falls back within a minute.
inline constexpr double kBrowserEventFreshSeconds = 60.0;

struct BrowserActivityFacts {
    std::string frontmostBundleIdentifier;     // a supported browser
    std::optional<ReceivedBrowserEvent> last;  // the last accepted event from it this session
    std::optional<Uuid> tabSessionIdentifier;  // the tab session of that event's tab
    BrowserTrackingSettings settings;
    Date now;
    double idleSeconds = 0.0;  // seconds since the user's last input
};

// Whether an event received at `receivedAt` still describes the page at
// `now`. Ages are counted in whole milliseconds, the resolution of dates on
// the wire, so that an event exactly kBrowserEventFreshSeconds old is fresh
// however the clocks' fractions round.
bool isFreshBrowserEvent(Date receivedAt, Date now);

// The resolution, by the first rule that applies:
// 1. tracking paused: fallback `paused`;
// 2. no event yet this session, or the last one closed a tab: fallback
//    `awaitingFreshEvent` (the extension reports the next active tab at once);
// 3. the extension said it disconnects: `extensionDisconnected`;
// 4. the last event says the browser window lost focus: `applicationSwitch`
//    (the desktop shows the browser in front before the extension hears of it);
// 5. older than kBrowserEventFreshSeconds: `inactivity` when the user has
//    given no input since it was received (nothing happened, so nothing was
//    reported), else `staleEvent`;
// 6. private browsing: fallback `privateOrRestricted`, marked private;
// 7. a page that cannot be tracked (a website without a hostname), a website
//    while hostname tracking is off or a PDF while PDF detection is off:
//    `privateOrRestricted`, as the user's own settings keep it out too;
// 8. otherwise the website's hostname or the local PDF, with its label when
//    the label's source is allowed (filename labels, manual labels).
// The tab session identifier is passed on for every resolution but the
// private one.
recording::BrowserResolution resolveBrowserActivity(const BrowserActivityFacts& facts);

}  // namespace lumenote::bridge
