// The messages between the extension and the host beside the browser events.
//
// From the extension, a JSON object with a "bridgeMessage" member is a control
// message; the only one is
//   {"bridgeMessage":"hello","extensionVersion":"1.2.0","protocolVersion":1}
// sent once on connecting (a "browserBundleIdentifier" member may name the
// browser when the extension knows it). Any other JSON object is a browser
// event document, relayed as its raw bytes.
//
// To the extension, the host sends
//   {"bridgeMessage":"status","applicationRunning":true,"sessionRunning":true,
//    "trackingPaused":false,"filenameLabelsEnabled":true,
//    "browserBundleIdentifier":"org.chromium.Chromium",
//    "nativeHostVersion":"0.1.0","protocolVersion":1}
// so that the extension reports nothing while nothing is recording and names
// its browser as the host identified it ("browserBundleIdentifier" is left
// out while the host does not know it), and
//   {"bridgeMessage":"command","command":{...}}
// with one queued command as the bridge directory holds it.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "bridge/bridge_documents.hpp"

namespace lumenote::bridge::host {

struct ExtensionHello {
    std::string extensionVersion;
    long long protocolVersion = 0;
    std::optional<std::string> browserBundleIdentifier;
};

// A browser event, kept as the bytes that arrived; the two members the host
// itself needs are read from it when they are strings.
struct ExtensionEvent {
    std::string payload;
    std::optional<std::string> browserBundleIdentifier;
    bool isHeartbeat = false;
};

// Not JSON, not an object, a control message of an unknown kind or a hello
// without its versions.
struct UnreadableMessage {
    std::string reason;
};

using ExtensionMessage = std::variant<ExtensionHello, ExtensionEvent, UnreadableMessage>;

ExtensionMessage readExtensionMessage(std::string_view payload);

struct HostStatus {
    bool applicationRunning = false;
    bool sessionRunning = false;
    bool trackingPaused = false;
    bool filenameLabelsEnabled = false;
    std::optional<std::string> browserBundleIdentifier;

    friend bool operator==(const HostStatus&, const HostStatus&) = default;
};

std::string encodeStatusMessage(const HostStatus& status, std::string_view nativeHostVersion);
std::string encodeCommandMessage(const BrowserBridgeCommand& command);

}  // namespace lumenote::bridge::host
