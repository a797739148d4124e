#include "bridge/browser_event_log.hpp"

#include <nlohmann/json.hpp>

#include "bridge/json_members.hpp"
#include "bridge/supported_browser.hpp"

namespace lumenote::bridge {

namespace {

using Json = nlohmann::ordered_json;

template <typename E>
void putCase(Json& object, const char* key, const std::optional<E>& value) {
    if (value) {
        object[key] = rawValue(*value);
    }
}

template <typename E>
std::optional<E> readCase(const nlohmann::json& object, const char* key) {
    const auto found = object.find(key);
    return found != object.end() && found->is_string()
               ? fromRawValue<E>(found->get_ref<const std::string&>())
               : std::nullopt;
}

std::string browserName(const std::optional<std::string>& bundleIdentifier) {
    if (!bundleIdentifier) {
        return "Unknown browser";
    }
    const auto browser = supportedBrowser(*bundleIdentifier);
    return browser ? std::string(displayName(*browser)) : *bundleIdentifier;
}

}  // namespace

std::string browserEventLogJson(const std::deque<BrowserEventLogEntry>& log) {
    Json events = Json::array();
    for (const BrowserEventLogEntry& entry : log) {
        Json event;
        event["receivedAt"] = formatIso8601(entry.receivedAt, {.fractionalSeconds = true});
        event["accepted"] = entry.accepted;
        if (entry.browserBundleIdentifier) {
            event["browserBundleIdentifier"] = *entry.browserBundleIdentifier;
        }
        putCase(event, "eventType", entry.eventType);
        putCase(event, "resourceType", entry.resourceType);
        if (entry.hostname) {
            event["hostname"] = *entry.hostname;
        }
        event["isPrivate"] = entry.isPrivate;
        if (!entry.reason.empty()) {
            event["reason"] = entry.reason;
        }
        putCase(event, "issue", entry.issue);
        events.push_back(std::move(event));
    }
    return Json{{"events", std::move(events)}}.dump(-1, ' ', false,
                                                    nlohmann::json::error_handler_t::replace);
}

Result<std::vector<BrowserEventLogEntry>, std::string> parseBrowserEventLog(std::string_view json) {
    auto root = parseJsonObject(json);
    if (!root) {
        return fail(root.error());
    }
    const auto events = root->find("events");
    if (events == root->end() || !events->is_array()) {
        return fail(std::string("events must be an array"));
    }
    std::vector<BrowserEventLogEntry> entries;
    for (const nlohmann::json& event : *events) {
        if (!event.is_object()) {
            return fail(std::string("each event must be an object"));
        }
        BrowserEventLogEntry entry;
        std::optional<bool> isPrivate;
        std::optional<std::string> reason;
        JsonMembers members(event);
        members.date("receivedAt", entry.receivedAt);
        members.boolean("accepted", entry.accepted);
        members.optionalString("browserBundleIdentifier", entry.browserBundleIdentifier);
        members.optionalString("hostname", entry.hostname);
        members.optionalBoolean("isPrivate", isPrivate);
        members.optionalString("reason", reason);
        if (members.failure()) {
            return fail(*members.failure());
        }
        entry.eventType = readCase<BrowserActivityEventType>(event, "eventType");
        entry.resourceType = readCase<BrowserActivityResourceType>(event, "resourceType");
        entry.issue = readCase<BrowserDiagnosticIssue>(event, "issue");
        entry.isPrivate = isPrivate.value_or(false);
        entry.reason = reason.value_or("");
        entries.push_back(std::move(entry));
    }
    return entries;
}

std::string browserEventLogLine(const BrowserEventLogEntry& entry, const LocalCalendar& calendar) {
    // "2026-11-25T14:02:05+01:00" -> "14:02:05"
    const std::string time = calendar.formatIso8601(entry.receivedAt).substr(11, 8);
    std::string line = time + (entry.accepted ? "  accepted  " : "  refused   ") +
                       browserName(entry.browserBundleIdentifier);
    if (!entry.accepted) {
        return line + "  " + entry.reason;
    }
    if (entry.eventType) {
        line += "  " + std::string(rawValue(*entry.eventType));
    }
    if (entry.isPrivate) {
        return line + "  private";
    }
    if (entry.resourceType) {
        line += "  " + std::string(rawValue(*entry.resourceType));
    }
    if (entry.hostname) {
        line += " " + *entry.hostname;
    }
    return line;
}

}  // namespace lumenote::bridge
