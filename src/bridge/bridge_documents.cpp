#include "bridge/bridge_documents.hpp"

#include <limits>

#include "bridge/base64.hpp"
#include "bridge/json_members.hpp"

namespace lumenote::bridge {

namespace {

using Json = nlohmann::ordered_json;

std::string dateText(Date date) {
    return formatIso8601(date, {.fractionalSeconds = true});
}

std::string dumped(const Json& json) {
    return json.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

Json commandJson(const BrowserBridgeCommand& command) {
    Json json;
    json["id"] = command.id.upperString();
    json["type"] = rawValue(command.type);
    json["browserBundleIdentifier"] = command.browserBundleIdentifier;
    if (command.sessionIdentifier) {
        json["sessionIdentifier"] = command.sessionIdentifier->upperString();
    }
    if (command.pdfIdentifier) {
        json["pdfIdentifier"] = command.pdfIdentifier->upperString();
    }
    if (command.filenameLabelsEnabled) {
        json["filenameLabelsEnabled"] = *command.filenameLabelsEnabled;
    }
    json["createdAt"] = dateText(command.createdAt);
    return json;
}

Json readinessJson(const BrowserBridgeReadiness& readiness) {
    Json json;
    json["version"] = readiness.version;
    json["browserBundleIdentifier"] = readiness.browserBundleIdentifier;
    json["extensionVersion"] = readiness.extensionVersion;
    json["nativeHostVersion"] = readiness.nativeHostVersion;
    json["protocolVersion"] = readiness.protocolVersion;
    json["connectionAvailable"] = readiness.connectionAvailable;
    json["updatedAt"] = dateText(readiness.updatedAt);
    return json;
}

// Decodes the root object of `text` with `read`, which fills `out` through
// the members reader; fails with the parse problem or the first member problem.
template <typename T, typename Read>
Result<T, std::string> decoded(std::string_view text, Read read) {
    auto root = parseJsonObject(text);
    if (!root) {
        return fail(root.error());
    }
    T out{};
    JsonMembers members(*root);
    read(members, out);
    if (members.failure()) {
        return fail(*members.failure());
    }
    return out;
}

void readCommand(JsonMembers& members, BrowserBridgeCommand& command) {
    members.uuid("id", command.id);
    members.enumeration("type", command.type);
    members.string("browserBundleIdentifier", command.browserBundleIdentifier);
    members.optionalUuid("sessionIdentifier", command.sessionIdentifier);
    members.optionalUuid("pdfIdentifier", command.pdfIdentifier);
    members.optionalBoolean("filenameLabelsEnabled", command.filenameLabelsEnabled);
    members.date("createdAt", command.createdAt);
}

void readReadiness(JsonMembers& members, BrowserBridgeReadiness& readiness) {
    members.integer("version", readiness.version);
    members.string("browserBundleIdentifier", readiness.browserBundleIdentifier);
    members.string("extensionVersion", readiness.extensionVersion);
    members.string("nativeHostVersion", readiness.nativeHostVersion);
    members.integer("protocolVersion", readiness.protocolVersion);
    members.boolean("connectionAvailable", readiness.connectionAvailable);
    members.date("updatedAt", readiness.updatedAt);
}

}  // namespace

std::string encodeState(const BrowserBridgeState& state) {
    Json json;
    json["version"] = state.version;
    json["appProcessIdentifier"] = state.appProcessIdentifier;
    json["sessionRunning"] = state.sessionRunning;
    if (state.sessionIdentifier) {
        json["sessionIdentifier"] = state.sessionIdentifier->upperString();
    }
    json["browserTrackingPaused"] = state.browserTrackingPaused;
    if (state.frontmostBrowserBundleIdentifier) {
        json["frontmostBrowserBundleIdentifier"] = *state.frontmostBrowserBundleIdentifier;
    }
    json["updatedAt"] = dateText(state.updatedAt);
    return dumped(json);
}

std::string encodePreferences(const BrowserBridgePreferencesEnvelope& preferences) {
    Json json;
    json["version"] = preferences.version;
    json["token"] = preferences.token;
    json["filenameLabelsEnabled"] = preferences.filenameLabelsEnabled;
    return dumped(json);
}

std::string encodeCommandEnvelope(const BrowserBridgeCommandEnvelope& envelope) {
    Json json;
    json["version"] = envelope.version;
    json["token"] = envelope.token;
    json["command"] = commandJson(envelope.command);
    return dumped(json);
}

std::string encodeCommand(const BrowserBridgeCommand& command) {
    return dumped(commandJson(command));
}

std::string encodeReadinessEnvelope(const BrowserBridgeReadinessEnvelope& envelope) {
    Json json;
    json["version"] = envelope.version;
    json["token"] = envelope.token;
    json["readiness"] = readinessJson(envelope.readiness);
    return dumped(json);
}

std::string encodeEnvelope(const BrowserBridgeEnvelope& envelope) {
    Json json;
    json["version"] = envelope.version;
    json["token"] = envelope.token;
    json["sessionIdentifier"] = envelope.sessionIdentifier.upperString();
    json["receivedAt"] = dateText(envelope.receivedAt);
    json["eventData"] = base64Encoded(envelope.eventData);
    return dumped(json);
}

Result<BrowserBridgeState, std::string> decodeState(std::string_view json) {
    return decoded<BrowserBridgeState>(json, [](JsonMembers& members, BrowserBridgeState& state) {
        long long processIdentifier = 0;
        members.integer("version", state.version);
        members.integer("appProcessIdentifier", processIdentifier);
        members.boolean("sessionRunning", state.sessionRunning);
        members.optionalUuid("sessionIdentifier", state.sessionIdentifier);
        members.boolean("browserTrackingPaused", state.browserTrackingPaused);
        members.optionalString("frontmostBrowserBundleIdentifier",
                               state.frontmostBrowserBundleIdentifier);
        members.date("updatedAt", state.updatedAt);
        state.appProcessIdentifier = static_cast<std::int32_t>(processIdentifier);
        if (processIdentifier < 0 || processIdentifier > std::numeric_limits<std::int32_t>::max()) {
            members.reject("appProcessIdentifier is out of range");
        }
    });
}

Result<BrowserBridgePreferencesEnvelope, std::string> decodePreferences(std::string_view json) {
    return decoded<BrowserBridgePreferencesEnvelope>(
        json, [](JsonMembers& members, BrowserBridgePreferencesEnvelope& preferences) {
            members.integer("version", preferences.version);
            members.string("token", preferences.token);
            members.boolean("filenameLabelsEnabled", preferences.filenameLabelsEnabled);
        });
}

Result<BrowserBridgeCommandEnvelope, std::string> decodeCommandEnvelope(std::string_view json) {
    return decoded<BrowserBridgeCommandEnvelope>(
        json, [](JsonMembers& members, BrowserBridgeCommandEnvelope& envelope) {
            members.integer("version", envelope.version);
            members.string("token", envelope.token);
            if (const nlohmann::json* command = members.object("command")) {
                JsonMembers commandMembers(*command);
                readCommand(commandMembers, envelope.command);
                if (commandMembers.failure()) {
                    members.reject("command: " + *commandMembers.failure());
                }
            }
        });
}

Result<BrowserBridgeReadinessEnvelope, std::string> decodeReadinessEnvelope(std::string_view json) {
    return decoded<BrowserBridgeReadinessEnvelope>(
        json, [](JsonMembers& members, BrowserBridgeReadinessEnvelope& envelope) {
            members.integer("version", envelope.version);
            members.string("token", envelope.token);
            if (const nlohmann::json* readiness = members.object("readiness")) {
                JsonMembers readinessMembers(*readiness);
                readReadiness(readinessMembers, envelope.readiness);
                if (readinessMembers.failure()) {
                    members.reject("readiness: " + *readinessMembers.failure());
                }
            }
        });
}

Result<BrowserBridgeEnvelope, std::string> decodeEnvelope(std::string_view json) {
    return decoded<BrowserBridgeEnvelope>(
        json, [](JsonMembers& members, BrowserBridgeEnvelope& envelope) {
            std::string eventData;
            members.integer("version", envelope.version);
            members.string("token", envelope.token);
            members.uuid("sessionIdentifier", envelope.sessionIdentifier);
            members.date("receivedAt", envelope.receivedAt);
            members.string("eventData", eventData);
            if (members.failure()) {
                return;
            }
            if (auto bytes = base64Decoded(eventData)) {
                envelope.eventData = std::move(*bytes);
            } else {
                members.reject("eventData is not base64");
            }
        });
}

}  // namespace lumenote::bridge
