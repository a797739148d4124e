#include "bridge/browser_activity_event.hpp"

#include "bridge/json_members.hpp"

namespace lumenote::bridge {

Result<BrowserActivityEvent, std::string> decodeBrowserActivityEvent(std::string_view json) {
    auto root = parseJsonObject(json);
    if (!root) {
        return fail(root.error());
    }
    BrowserActivityEvent event;
    JsonMembers members(*root);
    members.uuid("id", event.id);
    members.string("browserDisplayName", event.browserDisplayName);
    members.string("browserBundleIdentifier", event.browserBundleIdentifier);
    members.optionalString("hostname", event.hostname);
    members.optionalString("temporaryTabIdentifier", event.temporaryTabIdentifier);
    members.date("timestamp", event.timestamp);
    members.enumeration("eventType", event.eventType);
    members.boolean("isPrivate", event.isPrivate);
    members.enumeration("resourceType", event.resourceType);
    members.optionalString("pdfIdentifier", event.pdfIdentifier);
    members.optionalString("pdfLabel", event.pdfLabel);
    members.optionalEnumeration("pdfLabelSource", event.pdfLabelSource);
    members.optionalEnumeration("localFilePermission", event.localFilePermission);
    if (members.failure()) {
        return fail(*members.failure());
    }
    return event;
}

std::string encodeBrowserActivityEvent(const BrowserActivityEvent& event) {
    nlohmann::ordered_json json;
    json["id"] = event.id.upperString();
    json["browserDisplayName"] = event.browserDisplayName;
    json["browserBundleIdentifier"] = event.browserBundleIdentifier;
    if (event.hostname) {
        json["hostname"] = *event.hostname;
    }
    if (event.temporaryTabIdentifier) {
        json["temporaryTabIdentifier"] = *event.temporaryTabIdentifier;
    }
    json["timestamp"] = formatIso8601(event.timestamp, {.fractionalSeconds = true});
    json["eventType"] = rawValue(event.eventType);
    json["isPrivate"] = event.isPrivate;
    json["resourceType"] = rawValue(event.resourceType);
    if (event.pdfIdentifier) {
        json["pdfIdentifier"] = *event.pdfIdentifier;
    }
    if (event.pdfLabel) {
        json["pdfLabel"] = *event.pdfLabel;
    }
    if (event.pdfLabelSource) {
        json["pdfLabelSource"] = rawValue(*event.pdfLabelSource);
    }
    if (event.localFilePermission) {
        json["localFilePermission"] = rawValue(*event.localFilePermission);
    }
    return json.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

}  // namespace lumenote::bridge
