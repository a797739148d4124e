#include "bridge/bridge_tracking_coordinator.hpp"

#include "bridge/browser_silence.hpp"

namespace lumenote::bridge {

namespace {

BrowserDiagnosticResource resourceOf(const BrowserActivityEvent& event) {
    if (event.isPrivate) {
        return BrowserDiagnosticResource::unavailable;
    }
    switch (event.eventType) {
        case BrowserActivityEventType::browserWindowBlurred:
        case BrowserActivityEventType::tabClosed:
        case BrowserActivityEventType::extensionDisconnected:
            return BrowserDiagnosticResource::genericBrowser;
        default:
            break;
    }
    if (event.resourceType == BrowserActivityResourceType::localPDF) {
        return BrowserDiagnosticResource::localPDF;
    }
    return event.hostname ? BrowserDiagnosticResource::website
                          : BrowserDiagnosticResource::restrictedPage;
}

// The issue an accepted event still shows, if any.
std::optional<BrowserDiagnosticIssue> issueOf(const BrowserActivityEvent& event,
                                              const BrowserTrackingSettings& settings) {
    if (event.isPrivate) {
        return BrowserDiagnosticIssue::privateBrowsing;
    }
    if (event.eventType == BrowserActivityEventType::extensionDisconnected) {
        return BrowserDiagnosticIssue::extensionDisconnected;
    }
    if (event.localFilePermission == BrowserLocalFilePermission::permissionRequired) {
        return BrowserDiagnosticIssue::fileAccessNotGranted;
    }
    if (event.resourceType == BrowserActivityResourceType::localPDF &&
        !settings.localPDFDetectionEnabled) {
        return BrowserDiagnosticIssue::localPDFDisabled;
    }
    if (resourceOf(event) == BrowserDiagnosticResource::restrictedPage) {
        return BrowserDiagnosticIssue::unsupportedPage;
    }
    return std::nullopt;
}

bool isPageEvent(BrowserActivityEventType type) {
    return type != BrowserActivityEventType::browserWindowBlurred &&
           type != BrowserActivityEventType::tabClosed &&
           type != BrowserActivityEventType::extensionDisconnected;
}

}  // namespace

BridgeTrackingCoordinator::BridgeTrackingCoordinator(BrowserBridgeStore& store,
                                                     recording::WallClock& clock,
                                                     std::int32_t processIdentifier,
                                                     BrowserEventValidator validator)
    : store_(store),
      clock_(clock),
      processIdentifier_(processIdentifier),
      receiver_(store, validator),
      extensionStatus_(store, clock.now()) {}

Result<void, BrowserBridgeStoreError> BridgeTrackingCoordinator::start() {
    auto prepared = store_.prepare();
    if (!prepared) {
        return fail(prepared.error());
    }
    ready_ = true;
    for (const std::string& name : store_.queuedCommandNames()) {
        store_.removeCommand(name);
    }
    publishPreferences();
    publishState(clock_.now());
    return {};
}

template <typename Value>
void BridgeTrackingCoordinator::noteWrite(const Result<Value, BrowserBridgeWriteError>& written) {
    if (written) {
        publishProblem_.reset();
    } else {
        publishProblem_ = describe(written.error());
    }
}

void BridgeTrackingCoordinator::publishState(Date now) {
    if (!ready_) {
        return;
    }
    BrowserBridgeState state;
    state.appProcessIdentifier = processIdentifier_;
    state.sessionRunning = session_.has_value();
    state.sessionIdentifier = session_;
    state.browserTrackingPaused = settings_.browserTrackingPaused;
    state.frontmostBrowserBundleIdentifier = frontmostBrowser_;
    state.updatedAt = now;
    noteWrite(store_.writeState(state));
    lastPublished_ = now;
}

void BridgeTrackingCoordinator::publishPreferences() {
    if (ready_) {
        noteWrite(store_.writePreferences(settings_.filenameLabelsEnabled));
    }
}

void BridgeTrackingCoordinator::setRunningSession(const std::optional<Uuid>& sessionID) {
    if (sessionID == session_) {
        return;
    }
    const Date now = clock_.now();
    // Whatever waits in the inbox was sent for the previous state: handle it
    // under that state before switching.
    drain(now);
    session_ = sessionID;
    receiver_.setSession(sessionID);
    for (auto& [bundle, browser] : browsers_) {
        browser.last.reset();
    }
    tabs_.clear();
    publishState(now);
}

void BridgeTrackingCoordinator::setFrontmostBundleIdentifier(const std::string& bundleIdentifier) {
    std::optional<std::string> browser;
    if (supportedBrowser(bundleIdentifier)) {
        browser = bundleIdentifier;
    }
    if (browser != frontmostBrowser_) {
        frontmostBrowser_ = std::move(browser);
        frontmostSince_ = clock_.now();
        publishState(clock_.now());
    }
}

std::optional<SupportedBrowser> BridgeTrackingCoordinator::silentFrontmostBrowser(Date now) const {
    if (!session_ || !frontmostBrowser_ || !settings_.browserTrackingEnabled ||
        settings_.browserTrackingPaused ||
        now.secondsSince(frontmostSince_) < kBrowserSilenceDelaySeconds) {
        return std::nullopt;
    }
    const auto browser = supportedBrowser(*frontmostBrowser_);
    const auto heard = browser ? lastEventReceived(*browser) : std::nullopt;
    if (!browser || (heard && isFreshBrowserEvent(*heard, now))) {
        return std::nullopt;
    }
    return browser;
}

std::optional<recording::BrowserResolution> BridgeTrackingCoordinator::resolution(
    const std::string& frontmostBundleIdentifier, Date now, double idleSeconds) {
    if (!ready_ || !settings_.browserTrackingEnabled ||
        !supportedBrowser(frontmostBundleIdentifier)) {
        return std::nullopt;
    }
    drain(now);
    BrowserActivityFacts facts;
    facts.frontmostBundleIdentifier = frontmostBundleIdentifier;
    facts.settings = settings_;
    facts.now = now;
    facts.idleSeconds = idleSeconds;
    if (const auto browser = browsers_.find(frontmostBundleIdentifier);
        browser != browsers_.end() && browser->second.last) {
        facts.last = browser->second.last;
        if (const auto& tab = facts.last->event.temporaryTabIdentifier) {
            const auto found = tabs_.find({frontmostBundleIdentifier, *tab});
            if (found != tabs_.end()) {
                facts.tabSessionIdentifier = found->second.tabSession;
            }
        }
    }
    return resolveBrowserActivity(facts);
}

bool BridgeTrackingCoordinator::tick() {
    const Date now = clock_.now();
    const bool moreWaiting = drain(now);
    if (!lastPublished_ || now.secondsSince(*lastPublished_) >= kBridgeStatePublishInterval ||
        now < *lastPublished_) {
        publishState(now);
    }
    return moreWaiting;
}

bool BridgeTrackingCoordinator::drain(Date now) {
    if (!ready_) {
        return false;
    }
    const auto drained = receiver_.drain(now);
    for (const BrowserEventReceiver::Handled& handled : drained.handled) {
        if (handled.accepted) {
            apply(*handled.accepted, now);
        } else {
            noteRejection(handled.entry, now);
        }
    }
    return drained.moreWaiting;
}

void BridgeTrackingCoordinator::noteRejection(const BrowserEventLogEntry& entry, Date now) {
    if (!entry.browserBundleIdentifier || !supportedBrowser(*entry.browserBundleIdentifier)) {
        return;
    }
    BrowserLiveDiagnostic live;
    live.receivedAt = entry.receivedAt;
    live.browser = supportedBrowser(*entry.browserBundleIdentifier);
    live.accepted = false;
    live.issue = entry.issue;
    live.sessionMatched = entry.issue != BrowserDiagnosticIssue::sessionMismatch;
    live.browserFrontmost = frontmostBrowser_ == entry.browserBundleIdentifier;
    live.eventFresh = isFreshBrowserEvent(entry.receivedAt, now);
    browsers_[*entry.browserBundleIdentifier].live = live;
}

void BridgeTrackingCoordinator::apply(const ReceivedBrowserEvent& received, Date now) {
    const BrowserActivityEvent& event = received.event;
    BrowserState& browser = browsers_[event.browserBundleIdentifier];
    browser.last = received;
    browser.lastAcceptedAt = received.receivedAt;
    if (event.localFilePermission) {
        browser.permission = event.localFilePermission;
    }
    if (const auto supported = supportedBrowser(event.browserBundleIdentifier)) {
        extensionStatus_.recordEvent(*supported, received.receivedAt, event.localFilePermission);
    }
    tabSession(received);
    BrowserLiveDiagnostic live;
    live.receivedAt = received.receivedAt;
    live.browser = supportedBrowser(event.browserBundleIdentifier);
    live.resource = resourceOf(event);
    live.accepted = true;
    live.issue = issueOf(event, settings_);
    live.sessionMatched = true;
    live.browserFrontmost = frontmostBrowser_ == event.browserBundleIdentifier;
    live.eventFresh = isFreshBrowserEvent(received.receivedAt, now);
    browser.live = live;
}

std::optional<Uuid> BridgeTrackingCoordinator::tabSession(const ReceivedBrowserEvent& received) {
    const BrowserActivityEvent& event = received.event;
    if (!event.temporaryTabIdentifier) {
        return std::nullopt;
    }
    auto [tab, created] =
        tabs_.try_emplace({event.browserBundleIdentifier, *event.temporaryTabIdentifier});
    if (created) {
        tab->second.tabSession = Uuid::generate();
    }
    if (event.eventType == BrowserActivityEventType::tabClosed) {
        tab->second.last.reset();
    } else if (isPageEvent(event.eventType)) {
        tab->second.last = received;
    }
    return tab->second.tabSession;
}

const BrowserExtensionStatusService& BridgeTrackingCoordinator::extensionStatus() {
    extensionStatus_.refresh(clock_.now());
    return extensionStatus_;
}

void BridgeTrackingCoordinator::applySettings(const BrowserTrackingSettings& settings) {
    const BrowserTrackingSettings previous = std::exchange(settings_, settings);
    if (previous.browserTrackingPaused != settings.browserTrackingPaused) {
        publishState(clock_.now());
    }
    if (previous.filenameLabelsEnabled != settings.filenameLabelsEnabled) {
        publishPreferences();
        queueFilenameLabelsCommands(clock_.now());
    }
}

void BridgeTrackingCoordinator::queueFilenameLabelsCommands(Date now) {
    if (!ready_) {
        return;
    }
    for (const auto& [bundle, browser] : browsers_) {
        BrowserBridgeCommand command;
        command.id = Uuid::generate();
        command.type = BrowserBridgeCommandType::setFilenameLabelsEnabled;
        command.browserBundleIdentifier = bundle;
        command.sessionIdentifier = session_;
        command.filenameLabelsEnabled = settings_.filenameLabelsEnabled;
        command.createdAt = now;
        noteWrite(store_.queueCommand(command));
    }
}

Result<std::string, BrowserBridgeWriteError> BridgeTrackingCoordinator::queueShowLocalPDF(
    const std::string& browserBundleIdentifier, const Uuid& pdfIdentifier) {
    BrowserBridgeCommand command;
    command.id = Uuid::generate();
    command.type = BrowserBridgeCommandType::showLocalPDF;
    command.browserBundleIdentifier = browserBundleIdentifier;
    command.sessionIdentifier = session_;
    command.pdfIdentifier = pdfIdentifier;
    command.createdAt = clock_.now();
    return store_.queueCommand(command);
}

std::optional<BrowserLiveDiagnostic> BridgeTrackingCoordinator::liveDiagnostic(
    SupportedBrowser browser) const {
    const auto found = browsers_.find(std::string(bundleIdentifier(browser)));
    return found == browsers_.end() ? std::nullopt : found->second.live;
}

std::optional<BrowserLocalFilePermission> BridgeTrackingCoordinator::localFilePermission(
    SupportedBrowser browser) const {
    const auto found = browsers_.find(std::string(bundleIdentifier(browser)));
    return found == browsers_.end() ? std::nullopt : found->second.permission;
}

std::optional<Date> BridgeTrackingCoordinator::lastEventReceived(SupportedBrowser browser) const {
    const auto found = browsers_.find(std::string(bundleIdentifier(browser)));
    return found == browsers_.end() ? std::nullopt : found->second.lastAcceptedAt;
}

std::optional<ReceivedBrowserEvent> BridgeTrackingCoordinator::lastTabEvent(
    const std::string& browserBundleIdentifier, const std::string& tabIdentifier) const {
    const auto found = tabs_.find({browserBundleIdentifier, tabIdentifier});
    return found == tabs_.end() ? std::nullopt : found->second.last;
}

}  // namespace lumenote::bridge
