// BrowserActivityEvent: one report of the browser extension (what the user is
// looking at in one browser), its enumerations coded as their case names,
// and its JSON form as the extension and the host write it.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "classification/classification_enumerations.hpp"
#include "foundation/dates.hpp"
#include "foundation/raw_enum.hpp"
#include "foundation/result.hpp"
#include "foundation/uuid.hpp"

namespace lumenote::bridge {

enum class BrowserActivityEventType {
    browserBecameActive,
    tabActivated,
    tabNavigated,
    browserWindowFocused,
    browserWindowBlurred,
    tabClosed,
    extensionDisconnected,
    heartbeat,
};

enum class BrowserActivityResourceType { website, localPDF };

using classification::BrowserPDFLabelSource;

enum class BrowserLocalFilePermission { enabled, permissionRequired, unsupported };

struct BrowserActivityEvent {
    Uuid id;
    std::string browserDisplayName;
    std::string browserBundleIdentifier;
    std::optional<std::string> hostname;
    std::optional<std::string> temporaryTabIdentifier;
    Date timestamp;
    BrowserActivityEventType eventType = BrowserActivityEventType::heartbeat;
    bool isPrivate = false;
    BrowserActivityResourceType resourceType = BrowserActivityResourceType::website;
    std::optional<std::string> pdfIdentifier;
    std::optional<std::string> pdfLabel;
    std::optional<BrowserPDFLabelSource> pdfLabelSource;
    std::optional<BrowserLocalFilePermission> localFilePermission;

    friend bool operator==(const BrowserActivityEvent&, const BrowserActivityEvent&) = default;
};

// The message of a `timestamp` that is not an ISO-8601 string.
inline constexpr std::string_view kTimestampDecodingMessage =
    "timestamp must be an ISO-8601 string";

// Decodes one event document. The root must be a JSON object holding every
// required key (`id`, `browserDisplayName`, `browserBundleIdentifier`,
// `timestamp`, `eventType`, `isPrivate`, `resourceType`) with the right JSON
// type; an optional key may be absent or null. `timestamp` is an ISO-8601
// string (with or without fractional seconds and a zone designator). Keys
// the document does not define are ignored, so that a later extension may add
// some. Fails with a short English description of the first problem found
// (kTimestampDecodingMessage for the timestamp); the field values are not
// judged here (BrowserEventValidator does that).
Result<BrowserActivityEvent, std::string> decodeBrowserActivityEvent(std::string_view json);

// The event's JSON document with its keys in declaration order, absent
// optionals left out, the timestamp in UTC with milliseconds.
std::string encodeBrowserActivityEvent(const BrowserActivityEvent& event);

}  // namespace lumenote::bridge

namespace lumenote {

template <>
struct RawValues<bridge::BrowserActivityEventType> {
    using E = bridge::BrowserActivityEventType;
    static constexpr std::array<std::pair<E, std::string_view>, 8> entries{{
        {E::browserBecameActive, "browserBecameActive"},
        {E::tabActivated, "tabActivated"},
        {E::tabNavigated, "tabNavigated"},
        {E::browserWindowFocused, "browserWindowFocused"},
        {E::browserWindowBlurred, "browserWindowBlurred"},
        {E::tabClosed, "tabClosed"},
        {E::extensionDisconnected, "extensionDisconnected"},
        {E::heartbeat, "heartbeat"},
    }};
};

template <>
struct RawValues<bridge::BrowserActivityResourceType> {
    using E = bridge::BrowserActivityResourceType;
    static constexpr std::array<std::pair<E, std::string_view>, 2> entries{{
        {E::website, "website"},
        {E::localPDF, "localPDF"},
    }};
};

template <>
struct RawValues<bridge::BrowserLocalFilePermission> {
    using E = bridge::BrowserLocalFilePermission;
    static constexpr std::array<std::pair<E, std::string_view>, 3> entries{{
        {E::enabled, "enabled"},
        {E::permissionRequired, "permissionRequired"},
        {E::unsupported, "unsupported"},
    }};
};

}  // namespace lumenote
