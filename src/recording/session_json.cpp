#include "recording/session_json.hpp"

namespace lumenote::recording {

namespace {

std::string dateText(Date date) {
    return formatIso8601(date, {.fractionalSeconds = true});
}

template <typename T, typename Convert>
void putOptional(nlohmann::json& object, const char* key, const std::optional<T>& value,
                 Convert convert) {
    if (value) {
        object[key] = convert(*value);
    }
}

template <typename T>
void putOptional(nlohmann::json& object, const char* key, const std::optional<T>& value) {
    putOptional(object, key, value, [](const T& v) { return v; });
}

std::string uuidText(const Uuid& id) {
    return id.upperString();
}

}  // namespace

nlohmann::json segmentJson(const ActivitySegment& segment) {
    nlohmann::json object{
        {"id", uuidText(segment.id)},
        {"startDate", dateText(segment.startDate)},
        {"endDate", dateText(segment.endDate)},
        {"duration", segment.duration},
        {"applicationName", segment.applicationName},
        {"bundleIdentifier", segment.bundleIdentifier},
        {"classification", segment.classificationRawValue},
        {"isInactive", segment.isInactive},
        {"activitySource", std::string(rawValue(segment.activitySource()))},
    };
    putOptional(object, "browserBundleIdentifier", segment.browserBundleIdentifier);
    putOptional(object, "hostname", segment.hostname);
    putOptional(object, "tabSessionIdentifier", segment.tabSessionIdentifier, uuidText);
    putOptional(object, "pdfIdentifier", segment.pdfIdentifier, uuidText);
    putOptional(object, "pdfDisplayLabel", segment.pdfDisplayLabelStorage);
    putOptional(object, "pdfLabelSource", segment.pdfLabelSourceRawValue);
    putOptional(object, "browserFallbackReason", segment.browserFallbackReasonRawValue);
    return object;
}

nlohmann::json confirmedIntervalJson(const ConfirmedNoInputInterval& interval) {
    nlohmann::json object{
        {"id", uuidText(interval.id)},           {"startDate", dateText(interval.startDate)},
        {"endDate", dateText(interval.endDate)}, {"state", interval.stateRawValue},
        {"source", interval.sourceRawValue},     {"createdAt", dateText(interval.createdAt)},
    };
    putOptional(object, "supersededAt", interval.supersededAt, dateText);
    return object;
}

nlohmann::json sessionJson(const StudySession& session, bool includeChildren) {
    nlohmann::json object{
        {"id", uuidText(session.id)},
        {"subject", session.subject},
        {"goal", session.goal},
        {"plannedDuration", session.plannedDuration},
        {"timingMode", std::string(rawValue(session.timingMode()))},
        {"studyMode", std::string(rawValue(session.studyMode()))},
        {"startDate", dateText(session.startDate)},
        {"status", session.statusRawValue},
        {"timerDuration", session.timerDuration},
        {"focusedDuration", session.focusedDuration},
        {"distractedDuration", session.distractedDuration},
        {"neutralDuration", session.neutralDuration},
        {"unclassifiedDuration", session.unclassifiedDuration()},
        {"ignoredDuration", session.ignoredDuration()},
        {"inactiveDuration", session.inactiveDuration},
        {"passiveStudyDuration", session.passiveStudyDuration()},
        {"confirmedBreakDuration", session.confirmedBreakDuration()},
        {"systemExcludedDuration", session.systemExcludedDuration()},
    };
    putOptional(object, "notes", session.notesStorage);
    putOptional(object, "endDate", session.endDate, dateText);
    putOptional(object, "focusScore", session.focusScore);
    putOptional(object, "calculationVersion", session.calculationVersionStorage);
    putOptional(object, "originatingTemplateID", session.originatingTemplateIDStorage, uuidText);
    putOptional(object, "schemaVersion", session.schemaVersionStorage);
    if (includeChildren) {
        nlohmann::json segments = nlohmann::json::array();
        for (const auto& segment : session.segments) {
            segments.push_back(segmentJson(segment));
        }
        nlohmann::json intervals = nlohmann::json::array();
        for (const auto& interval : session.confirmedNoInputIntervals) {
            intervals.push_back(confirmedIntervalJson(interval));
        }
        object["segments"] = std::move(segments);
        object["confirmedNoInputIntervals"] = std::move(intervals);
    }
    return object;
}

}  // namespace lumenote::recording
