#include "bridge/browser_event_validator.hpp"

#include <cstdint>

#include "bridge/supported_browser.hpp"
#include "classification/hostname_validation.hpp"
#include "foundation/text.hpp"

namespace lumenote::bridge {

namespace {

using F = BrowserEventValidationFailure;

constexpr std::size_t kMaximumDisplayNameCharacters = 64;
constexpr std::size_t kMaximumTabIdentifierLength = 64;
constexpr std::size_t kMaximumPDFLabelCharacters = 200;

// The code points of UTF-8 `text`; false when it is not valid UTF-8.
template <typename Visit>
bool forEachCodePoint(std::string_view text, Visit visit) {
    std::size_t index = 0;
    while (index < text.size()) {
        const auto lead = static_cast<unsigned char>(text[index]);
        const std::size_t length = lead < 0x80           ? 1
                                   : (lead >> 5) == 0x6  ? 2
                                   : (lead >> 4) == 0xE  ? 3
                                   : (lead >> 3) == 0x1E ? 4
                                                         : 0;
        if (length == 0 || index + length > text.size()) {
            return false;
        }
        std::uint32_t codePoint = length == 1 ? lead : lead & (0x7F >> length);
        for (std::size_t i = 1; i < length; ++i) {
            const auto continuation = static_cast<unsigned char>(text[index + i]);
            if ((continuation & 0xC0) != 0x80) {
                return false;
            }
            codePoint = (codePoint << 6) | (continuation & 0x3F);
        }
        visit(codePoint);
        index += length;
    }
    return true;
}

bool isControlOrSeparator(std::uint32_t codePoint) {
    return codePoint < 0x20 || (codePoint >= 0x7F && codePoint <= 0x9F) || codePoint == 0x2028 ||
           codePoint == 0x2029;
}

// 1 to `maximumCharacters` characters of valid UTF-8, not only white space,
// without control characters.
bool isDisplayText(std::string_view text, std::size_t maximumCharacters) {
    bool clean = true;
    const bool valid = forEachCodePoint(text, [&clean](std::uint32_t codePoint) {
        clean = clean && !isControlOrSeparator(codePoint);
    });
    return valid && clean && !text::trimmed(text).empty() &&
           text::characterCount(text) <= maximumCharacters;
}

bool isNormalisedHostname(const std::string& hostname) {
    const auto validated = classification::validatedHostname(hostname);
    return validated.ok() && validated.value() == hostname;
}

bool isTabIdentifier(std::string_view identifier) {
    if (identifier.empty() || identifier.size() > kMaximumTabIdentifierLength) {
        return false;
    }
    for (const char c : identifier) {
        const bool allowed = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
                             (c >= '0' && c <= '9') || c == '_' || c == '-';
        if (!allowed) {
            return false;
        }
    }
    return true;
}

bool isPageEvent(BrowserActivityEventType type) {
    switch (type) {
        case BrowserActivityEventType::browserBecameActive:
        case BrowserActivityEventType::tabActivated:
        case BrowserActivityEventType::tabNavigated:
        case BrowserActivityEventType::browserWindowFocused:
        case BrowserActivityEventType::heartbeat:
            return true;
        case BrowserActivityEventType::browserWindowBlurred:
        case BrowserActivityEventType::tabClosed:
        case BrowserActivityEventType::extensionDisconnected:
            return false;
    }
    return false;
}

bool hasPDFField(const BrowserActivityEvent& event) {
    return event.pdfIdentifier || event.pdfLabel || event.pdfLabelSource;
}

bool fieldsFitEventType(const BrowserActivityEvent& event) {
    if (event.isPrivate && hasPDFField(event)) {
        return false;
    }
    if (!isPageEvent(event.eventType)) {
        const bool tabAllowed = event.eventType == BrowserActivityEventType::tabClosed;
        return !event.hostname && !hasPDFField(event) &&
               (tabAllowed || !event.temporaryTabIdentifier);
    }
    if (event.resourceType == BrowserActivityResourceType::website) {
        return !hasPDFField(event);
    }
    return !event.hostname && (event.isPrivate || event.pdfIdentifier);
}

std::optional<F> contentFailure(const BrowserActivityEvent& event) {
    if (!isDisplayText(event.browserDisplayName, kMaximumDisplayNameCharacters)) {
        return F::invalidBrowserDisplayName;
    }
    if (event.hostname && !isNormalisedHostname(*event.hostname)) {
        return F::invalidHostname;
    }
    if (event.temporaryTabIdentifier && !isTabIdentifier(*event.temporaryTabIdentifier)) {
        return F::invalidTemporaryTabIdentifier;
    }
    if (event.pdfIdentifier &&
        (event.pdfIdentifier->size() != 36 || !Uuid::parse(*event.pdfIdentifier).has_value())) {
        return F::invalidPDFIdentifier;
    }
    if (event.pdfLabel && !isDisplayText(*event.pdfLabel, kMaximumPDFLabelCharacters)) {
        return F::invalidPDFLabel;
    }
    if (event.pdfLabel.has_value() != event.pdfLabelSource.has_value()) {
        return F::invalidPDFLabelSource;
    }
    if (event.resourceType == BrowserActivityResourceType::localPDF && event.localFilePermission &&
        *event.localFilePermission != BrowserLocalFilePermission::enabled) {
        return F::invalidLocalFilePermission;
    }
    if (event.isPrivate && (event.hostname || event.temporaryTabIdentifier)) {
        return F::privateBrowsingDataRejected;
    }
    if (!fieldsFitEventType(event)) {
        return F::invalidFieldCombination;
    }
    return std::nullopt;
}

Failure<BrowserEventValidationError> failWith(F failure) {
    return fail(BrowserEventValidationError{failure});
}

}  // namespace

std::string BrowserEventValidationError::message() const {
    switch (failure) {
        case F::payloadTooLarge:
            return "The browser event is " + std::to_string(actualBytes) + " bytes; the limit is " +
                   std::to_string(maximumBytes) + " bytes.";
        case F::unsupportedBrowser:
            return "The browser bundle identifier is not allowed: " + bundleIdentifier + ".";
        case F::emptyPayload:
            return "The browser event is empty.";
        case F::malformedPayload:
            return "The browser event is not valid Lumenote JSON.";
        case F::invalidBrowserDisplayName:
            return "The browser display name is invalid.";
        case F::invalidHostname:
            return "The browser hostname is invalid.";
        case F::invalidTemporaryTabIdentifier:
            return "The temporary browser tab identifier is invalid.";
        case F::invalidPDFIdentifier:
            return "The local PDF identifier is invalid.";
        case F::invalidPDFLabel:
            return "The local PDF label is invalid.";
        case F::invalidPDFLabelSource:
            return "The local PDF label source is invalid.";
        case F::invalidLocalFilePermission:
            return "The local-file permission status is invalid.";
        case F::invalidFieldCombination:
            return "The event contains fields that are not valid for its event type.";
        case F::privateBrowsingDataRejected:
            return "Lumenote does not accept hostnames or tab identifiers from private browsing.";
        case F::timestampTooOld:
            return "The browser event timestamp is too old.";
        case F::timestampTooFarInFuture:
            return "The browser event timestamp is too far in the future.";
    }
    return {};
}

Result<BrowserActivityEvent, BrowserEventValidationError> BrowserEventValidator::validate(
    std::string_view bytes, Date now) const {
    if (bytes.empty()) {
        return failWith(F::emptyPayload);
    }
    if (bytes.size() > limits_.maximumPayloadBytes) {
        return fail(BrowserEventValidationError{F::payloadTooLarge, bytes.size(),
                                                limits_.maximumPayloadBytes});
    }
    auto decoded = decodeBrowserActivityEvent(bytes);
    if (!decoded) {
        BrowserEventValidationError error{F::malformedPayload};
        error.decodingProblem = decoded.error();
        return fail(std::move(error));
    }
    BrowserActivityEvent event = std::move(decoded).value();

    const double age = now.secondsSince(event.timestamp);
    if (age > limits_.maximumTimestampAge) {
        return failWith(F::timestampTooOld);
    }
    if (age < -limits_.maximumFutureTimestampSkew) {
        return failWith(F::timestampTooFarInFuture);
    }
    if (!supportedBrowser(event.browserBundleIdentifier)) {
        BrowserEventValidationError error{F::unsupportedBrowser};
        error.bundleIdentifier = event.browserBundleIdentifier;
        return fail(std::move(error));
    }
    if (const auto failure = contentFailure(event)) {
        return failWith(*failure);
    }
    return event;
}

}  // namespace lumenote::bridge
