// The vocabulary the browser diagnostics speak: why browser activity is not
// being tracked, what the last event showed, and what the tracking
// coordinator knew when it handled its last event.
#pragma once

#include <array>
#include <optional>
#include <string_view>
#include <utility>

#include "bridge/supported_browser.hpp"
#include "foundation/dates.hpp"
#include "foundation/raw_enum.hpp"

namespace lumenote::bridge {

enum class BrowserDiagnosticIssue {
    noActiveSession,
    browserNotFrontmost,
    trackingPaused,
    extensionDisconnected,
    nativeHostNotRegistered,
    bridgeMissing,
    bridgeStale,
    appPIDMismatch,
    sessionMismatch,
    eventStale,
    eventOutOfOrder,
    unsupportedPage,
    privateBrowsing,
    fileAccessNotGranted,
    localPDFDisabled,
    invalidEvent,
    browserMismatch,
    closedPDFTab,
    extensionVersionMismatch,
    unknown,
};

// The issue's fixed display text ("The browser is not frontmost").
std::string_view displayText(BrowserDiagnosticIssue issue);

enum class BrowserDiagnosticResource {
    website,
    localPDF,
    genericBrowser,
    restrictedPage,
    unavailable
};

std::string_view displayText(BrowserDiagnosticResource resource);

// The last event the tracking coordinator handled for one browser.
struct BrowserLiveDiagnostic {
    Date receivedAt;
    std::optional<SupportedBrowser> browser;
    BrowserDiagnosticResource resource = BrowserDiagnosticResource::unavailable;
    bool accepted = false;
    std::optional<BrowserDiagnosticIssue> issue;
    bool sessionMatched = false;
    bool browserFrontmost = false;
    bool eventFresh = false;

    friend bool operator==(const BrowserLiveDiagnostic&, const BrowserLiveDiagnostic&) = default;
};

}  // namespace lumenote::bridge

namespace lumenote {

template <>
struct RawValues<bridge::BrowserDiagnosticIssue> {
    using E = bridge::BrowserDiagnosticIssue;
    static constexpr std::array<std::pair<E, std::string_view>, 20> entries{{
        {E::noActiveSession, "noActiveSession"},
        {E::browserNotFrontmost, "browserNotFrontmost"},
        {E::trackingPaused, "trackingPaused"},
        {E::extensionDisconnected, "extensionDisconnected"},
        {E::nativeHostNotRegistered, "nativeHostNotRegistered"},
        {E::bridgeMissing, "bridgeMissing"},
        {E::bridgeStale, "bridgeStale"},
        {E::appPIDMismatch, "appPIDMismatch"},
        {E::sessionMismatch, "sessionMismatch"},
        {E::eventStale, "eventStale"},
        {E::eventOutOfOrder, "eventOutOfOrder"},
        {E::unsupportedPage, "unsupportedPage"},
        {E::privateBrowsing, "privateBrowsing"},
        {E::fileAccessNotGranted, "fileAccessNotGranted"},
        {E::localPDFDisabled, "localPDFDisabled"},
        {E::invalidEvent, "invalidEvent"},
        {E::browserMismatch, "browserMismatch"},
        {E::closedPDFTab, "closedPDFTab"},
        {E::extensionVersionMismatch, "extensionVersionMismatch"},
        {E::unknown, "unknown"},
    }};
};

template <>
struct RawValues<bridge::BrowserDiagnosticResource> {
    using E = bridge::BrowserDiagnosticResource;
    static constexpr std::array<std::pair<E, std::string_view>, 5> entries{{
        {E::website, "website"},
        {E::localPDF, "localPDF"},
        {E::genericBrowser, "genericBrowser"},
        {E::restrictedPage, "restrictedPage"},
        {E::unavailable, "unavailable"},
    }};
};

}  // namespace lumenote
