// BrowserEventValidator: turns the raw bytes of one browser event into a
// BrowserActivityEvent that may influence tracking, or into the one
// BrowserEventValidationError that explains why it may not. Stateless apart
// from its three limits, so a rejected event affects nothing later.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "bridge/browser_activity_event.hpp"
#include "foundation/dates.hpp"
#include "foundation/result.hpp"

namespace lumenote::bridge {

enum class BrowserEventValidationFailure {
    payloadTooLarge,
    unsupportedBrowser,
    emptyPayload,
    malformedPayload,
    invalidBrowserDisplayName,
    invalidHostname,
    invalidTemporaryTabIdentifier,
    invalidPDFIdentifier,
    invalidPDFLabel,
    invalidPDFLabelSource,
    invalidLocalFilePermission,
    invalidFieldCombination,
    privateBrowsingDataRejected,
    timestampTooOld,
    timestampTooFarInFuture,
};

struct BrowserEventValidationError {
    BrowserEventValidationFailure failure = BrowserEventValidationFailure::malformedPayload;
    std::size_t actualBytes = 0;   // payloadTooLarge
    std::size_t maximumBytes = 0;  // payloadTooLarge
    std::string bundleIdentifier;  // unsupportedBrowser
    std::string decodingProblem;   // malformedPayload: what the decoder met, for diagnostics

    // The user-facing sentence.
    std::string message() const;
};

// The field rules, chosen here and kept in one place so that the extension's
// own checks can mirror them:
// - browserDisplayName: 1 to 64 characters, not only white space, no control
//   characters.
// - hostname: the normalised form of a valid hostname and nothing else: one
//   or more dot-separated labels of a-z, 0-9 and "-" (no capitals, no hyphen
//   at a label's edge, punycode "xn--" labels welcome), at most 63 characters
//   a label and 253 in all, no final dot, no scheme, user info, port or path.
// - temporaryTabIdentifier: 1 to 64 characters of A-Z, a-z, 0-9, "_" and "-".
// - pdfIdentifier: the opaque identity the extension derives for one local
//   file, written as a UUID in its 36-character hyphenated form (either case).
// - pdfLabel: 1 to 200 characters, not only white space, no control
//   characters (C0, DEL, C1) and no line or paragraph separators.
// - pdfLabelSource: present exactly when pdfLabel is.
// - localFilePermission: a local-PDF event can only have been seen with file
//   access, so it may report `enabled` and nothing else.
// Which fields each event may carry (else invalidFieldCombination):
// - page events (browserBecameActive, tabActivated, tabNavigated,
//   browserWindowFocused, heartbeat) describe the active tab: a `website`
//   event may carry a hostname (none means a page that cannot be tracked,
//   such as the browser's own pages) and no PDF field; a `localPDF` event
//   must carry pdfIdentifier unless private, may carry a label, and never a
//   hostname;
// - tabClosed may carry the closed tab's identifier and nothing else of a page;
// - browserWindowBlurred and extensionDisconnected carry no page field and no
//   tab identifier;
// - a private event carries no PDF field either: private browsing is reported
//   as the flag alone (a hostname or a tab identifier there is
//   privateBrowsingDataRejected instead);
// - localFilePermission may come with any event.
struct BrowserEventLimits {
    // An event of the largest fields allowed encodes to well under 2 KiB;
    // 8 KiB leaves room for later fields while keeping a flood cheap.
    std::size_t maximumPayloadBytes = 8192;
    // Events reach the recorder within a second or two (the host writes them
    // at once, the recorder drains every tick); five minutes also covers a
    // backlog after the machine was busy, while a replayed old event cannot
    // bring back a page long gone.
    double maximumTimestampAge = 300.0;
    // Browser and recorder read the same machine clock: 30 seconds covers a
    // clock adjusted in between.
    double maximumFutureTimestampSkew = 30.0;
};

class BrowserEventValidator {
  public:
    BrowserEventValidator() = default;
    explicit BrowserEventValidator(BrowserEventLimits limits) : limits_(limits) {}

    const BrowserEventLimits& limits() const { return limits_; }

    // Validates one raw event at `now`; the first failure ends validation:
    // empty, too large (a payload of exactly the limit passes), undecodable
    // (malformedPayload), then the timestamp (strict bounds: an event exactly
    // at either bound is accepted), then the content checks in the order of
    // BrowserEventValidationFailure (browser, display name, hostname, tab,
    // PDF identifier, label, label source, file permission), then the
    // private-browsing rule, then the field combination.
    Result<BrowserActivityEvent, BrowserEventValidationError> validate(std::string_view bytes,
                                                                       Date now) const;

  private:
    BrowserEventLimits limits_;
};

}  // namespace lumenote::bridge
