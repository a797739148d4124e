#include "bridge/browser_activity_resolution.hpp"

namespace lumenote::bridge {

namespace {

using recording::BrowserFallbackReason;
using recording::BrowserResolution;

std::optional<BrowserFallbackReason> fallbackReason(const BrowserActivityFacts& facts) {
    if (facts.settings.browserTrackingPaused) {
        return BrowserFallbackReason::paused;
    }
    if (!facts.last || facts.last->event.eventType == BrowserActivityEventType::tabClosed) {
        return BrowserFallbackReason::awaitingFreshEvent;
    }
    const BrowserActivityEvent& event = facts.last->event;
    if (event.eventType == BrowserActivityEventType::extensionDisconnected) {
        return BrowserFallbackReason::extensionDisconnected;
    }
    if (event.eventType == BrowserActivityEventType::browserWindowBlurred) {
        return BrowserFallbackReason::applicationSwitch;
    }
    if (!isFreshBrowserEvent(facts.last->receivedAt, facts.now)) {
        const double age = facts.now.secondsSince(facts.last->receivedAt);
        return facts.idleSeconds >= age ? BrowserFallbackReason::inactivity
                                        : BrowserFallbackReason::staleEvent;
    }
    if (event.isPrivate) {
        return BrowserFallbackReason::privateOrRestricted;
    }
    const bool website = event.resourceType == BrowserActivityResourceType::website;
    if (website ? (!event.hostname || !facts.settings.hostnameTrackingEnabled)
                : !facts.settings.localPDFDetectionEnabled) {
        return BrowserFallbackReason::privateOrRestricted;
    }
    return std::nullopt;
}

bool labelAllowed(BrowserPDFLabelSource source, const BrowserTrackingSettings& settings) {
    return source == BrowserPDFLabelSource::filename ? settings.filenameLabelsEnabled
                                                     : settings.manualPDFLabelsEnabled;
}

}  // namespace

bool isFreshBrowserEvent(Date receivedAt, Date now) {
    return now.millisecondsSince1970() - receivedAt.millisecondsSince1970() <=
           kBrowserEventFreshSeconds * 1000.0;
}

BrowserResolution resolveBrowserActivity(const BrowserActivityFacts& facts) {
    BrowserResolution resolution;
    resolution.browserBundleIdentifier = facts.frontmostBundleIdentifier;
    resolution.tabSessionIdentifier = facts.tabSessionIdentifier;
    if (const auto reason = fallbackReason(facts)) {
        resolution.kind = BrowserResolution::Kind::fallback;
        resolution.fallbackReason = reason;
        if (*reason == BrowserFallbackReason::privateOrRestricted && facts.last->event.isPrivate) {
            resolution.isPrivate = true;
            resolution.tabSessionIdentifier.reset();
        }
        return resolution;
    }
    const BrowserActivityEvent& event = facts.last->event;
    if (event.resourceType == BrowserActivityResourceType::website) {
        resolution.kind = BrowserResolution::Kind::website;
        resolution.hostname = event.hostname;
        return resolution;
    }
    resolution.kind = BrowserResolution::Kind::localPDF;
    resolution.pdfIdentifier = Uuid::parse(event.pdfIdentifier.value_or(""));
    if (event.pdfLabel && event.pdfLabelSource &&
        labelAllowed(*event.pdfLabelSource, facts.settings)) {
        resolution.pdfDisplayLabel = event.pdfLabel;
        resolution.pdfLabelSource = event.pdfLabelSource;
    }
    return resolution;
}

}  // namespace lumenote::bridge
