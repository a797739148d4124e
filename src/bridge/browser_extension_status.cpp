#include "bridge/browser_extension_status.hpp"

namespace lumenote::bridge {

namespace {

bool isFresh(std::optional<Date> at, Date now) {
    return at && now.secondsSince(*at) <= kExtensionFreshSeconds;
}

}  // namespace

std::string_view displayText(BrowserVersionCompatibility compatibility) {
    switch (compatibility) {
        case BrowserVersionCompatibility::compatible:
            return "Compatible";
        case BrowserVersionCompatibility::extensionUpdateRequired:
            return "Extension update required";
        case BrowserVersionCompatibility::appUpdateRequired:
            return "App update required";
        case BrowserVersionCompatibility::unknown:
            return "Unknown version";
    }
    return "Unknown version";
}

BrowserVersionCompatibility versionCompatibility(
    const std::optional<std::string>& extensionVersion,
    const std::optional<std::string>& nativeHostVersion, std::optional<long long> protocolVersion) {
    if (!extensionVersion || !nativeHostVersion || !protocolVersion) {
        return BrowserVersionCompatibility::unknown;
    }
    if (*protocolVersion < kBridgeProtocolVersion) {
        return BrowserVersionCompatibility::extensionUpdateRequired;
    }
    if (*protocolVersion > kBridgeProtocolVersion) {
        return BrowserVersionCompatibility::appUpdateRequired;
    }
    return BrowserVersionCompatibility::compatible;
}

BrowserExtensionStatus extensionStatus(SupportedBrowser browser,
                                       const std::optional<BrowserBridgeReadiness>& readiness,
                                       std::optional<Date> lastEvent,
                                       std::optional<BrowserLocalFilePermission> permission,
                                       Date now, Date startedAt) {
    using State = BrowserExtensionConnectionState;
    BrowserExtensionStatus status;
    status.browser = browser;
    status.lastEventReceived = lastEvent;
    status.localPDFPermission = permission;
    if (readiness) {
        status.lastResponseReceived = readiness->updatedAt;
        status.extensionVersion = readiness->extensionVersion;
        status.nativeHostVersion = readiness->nativeHostVersion;
        status.protocolVersion = readiness->protocolVersion;
    }
    const bool saysConnected = readiness && readiness->connectionAvailable;
    if (!readiness && !lastEvent) {
        status.state = State::notInstalled;
    } else if (readiness && status.compatibility() != BrowserVersionCompatibility::compatible) {
        status.state = State::unsupportedVersion;
    } else if ((saysConnected && isFresh(readiness->updatedAt, now)) || isFresh(lastEvent, now)) {
        status.state = State::connected;
    } else if (saysConnected) {
        status.state = now.secondsSince(startedAt) <= kExtensionConnectingGraceSeconds
                           ? State::connecting
                           : State::connectionProblem;
    } else {
        status.state = State::installed;
    }
    return status;
}

BrowserExtensionStatusService::BrowserExtensionStatusService(const BrowserBridgeStore& store,
                                                             Date startedAt)
    : store_(store), startedAt_(startedAt) {
    recompute({}, startedAt);
}

BrowserExtensionStatusService BrowserExtensionStatusService::readNow(
    const BrowserBridgeStore& store, Date now) {
    BrowserExtensionStatusService service(store,
                                          now.addingSeconds(-2 * kExtensionConnectingGraceSeconds));
    service.refresh(now);
    return service;
}

void BrowserExtensionStatusService::recordEvent(
    SupportedBrowser browser, Date receivedAt,
    std::optional<BrowserLocalFilePermission> permission) {
    lastEvents_[browser] = receivedAt;
    if (permission) {
        localPDFPermissions_[browser] = *permission;
    }
}

void BrowserExtensionStatusService::refresh(Date now) {
    std::map<SupportedBrowser, BrowserBridgeReadiness> readiness;
    for (auto& found : store_.readReadiness()) {
        if (const auto browser = supportedBrowser(found.browserBundleIdentifier)) {
            readiness[*browser] = std::move(found);
        }
    }
    recompute(readiness, now);
}

void BrowserExtensionStatusService::recompute(
    const std::map<SupportedBrowser, BrowserBridgeReadiness>& readiness, Date now) {
    statuses_.clear();
    for (const auto& [browser, name] : RawValues<SupportedBrowser>::entries) {
        const auto ready = readiness.find(browser);
        const auto event = lastEvents_.find(browser);
        const auto permission = localPDFPermissions_.find(browser);
        statuses_.push_back(extensionStatus(
            browser, ready == readiness.end() ? std::nullopt : std::optional(ready->second),
            event == lastEvents_.end() ? std::nullopt : std::optional(event->second),
            permission == localPDFPermissions_.end() ? std::nullopt
                                                     : std::optional(permission->second),
            now, startedAt_));
    }
}

const BrowserExtensionStatus& BrowserExtensionStatusService::status(
    SupportedBrowser browser) const {
    for (const auto& status : statuses_) {
        if (status.browser == browser) {
            return status;
        }
    }
    return statuses_.front();
}

}  // namespace lumenote::bridge
