#include "bridge/browser_diagnostic_types.hpp"

namespace lumenote::bridge {

std::string_view displayText(BrowserDiagnosticIssue issue) {
    using I = BrowserDiagnosticIssue;
    switch (issue) {
        case I::noActiveSession:
            return "No active Lumenote session";
        case I::browserNotFrontmost:
            return "The browser is not frontmost";
        case I::trackingPaused:
            return "Browser tracking is paused";
        case I::extensionDisconnected:
            return "The extension did not respond recently";
        case I::nativeHostNotRegistered:
            return "The native host is not registered";
        case I::bridgeMissing:
            return "The Lumenote bridge state is missing";
        case I::bridgeStale:
            return "The Lumenote bridge state is stale";
        case I::appPIDMismatch:
            return "The bridge belongs to an old Lumenote process";
        case I::sessionMismatch:
            return "The browser event belongs to another session";
        case I::eventStale:
            return "The browser event was stale";
        case I::eventOutOfOrder:
            return "The browser event arrived out of order";
        case I::unsupportedPage:
            return "This browser page cannot be tracked";
        case I::privateBrowsing:
            return "Private browsing activity is unavailable";
        case I::fileAccessNotGranted:
            return "Allow access to file URLs to track local PDFs";
        case I::localPDFDisabled:
            return "Local PDF detection is disabled";
        case I::invalidEvent:
            return "The extension sent an invalid event";
        case I::browserMismatch:
            return "The event came from a different browser";
        case I::closedPDFTab:
            return "That local PDF tab is no longer open";
        case I::extensionVersionMismatch:
            return "The extension and Lumenote versions are incompatible";
        case I::unknown:
            return "Browser status is temporarily unavailable";
    }
    return {};
}

std::string_view displayText(BrowserDiagnosticResource resource) {
    using R = BrowserDiagnosticResource;
    switch (resource) {
        case R::website:
            return "Website";
        case R::localPDF:
            return "Local PDF";
        case R::genericBrowser:
            return "Generic browser";
        case R::restrictedPage:
            return "Restricted page";
        case R::unavailable:
            return "Unavailable";
    }
    return {};
}

}  // namespace lumenote::bridge
