#include "bridge/host/extension_messages.hpp"

#include <nlohmann/json.hpp>

#include "bridge/bridge_documents.hpp"
#include "bridge/json_members.hpp"

namespace lumenote::bridge::host {

namespace {

using Json = nlohmann::json;

std::optional<std::string> stringMember(const Json& object, const char* key) {
    const auto found = object.find(key);
    if (found == object.end() || !found->is_string()) {
        return std::nullopt;
    }
    return found->get<std::string>();
}

ExtensionMessage readControlMessage(const Json& object, const Json& kind) {
    if (!kind.is_string() || kind.get_ref<const std::string&>() != "hello") {
        return UnreadableMessage{"unknown bridge message"};
    }
    const auto version = object.find("protocolVersion");
    auto extensionVersion = stringMember(object, "extensionVersion");
    if (!extensionVersion || version == object.end() || !version->is_number_integer()) {
        return UnreadableMessage{"hello without extensionVersion and protocolVersion"};
    }
    return ExtensionHello{std::move(*extensionVersion), version->get<long long>(),
                          stringMember(object, "browserBundleIdentifier")};
}

}  // namespace

ExtensionMessage readExtensionMessage(std::string_view payload) {
    auto parsed = parseJsonObject(payload);
    if (!parsed) {
        return UnreadableMessage{parsed.error()};
    }
    const Json& object = parsed.value();
    if (const auto kind = object.find("bridgeMessage"); kind != object.end()) {
        return readControlMessage(object, *kind);
    }
    return ExtensionEvent{std::string(payload), stringMember(object, "browserBundleIdentifier"),
                          stringMember(object, "eventType") == "heartbeat"};
}

std::string encodeStatusMessage(const HostStatus& status, std::string_view nativeHostVersion) {
    nlohmann::ordered_json json;
    json["bridgeMessage"] = "status";
    json["applicationRunning"] = status.applicationRunning;
    json["sessionRunning"] = status.sessionRunning;
    json["trackingPaused"] = status.trackingPaused;
    json["filenameLabelsEnabled"] = status.filenameLabelsEnabled;
    if (status.browserBundleIdentifier) {
        json["browserBundleIdentifier"] = *status.browserBundleIdentifier;
    }
    json["nativeHostVersion"] = nativeHostVersion;
    json["protocolVersion"] = kBridgeProtocolVersion;
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::string encodeCommandMessage(const BrowserBridgeCommand& command) {
    return R"({"bridgeMessage":"command","command":)" + encodeCommand(command) + "}";
}

}  // namespace lumenote::bridge::host
