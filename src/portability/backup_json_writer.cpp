#include "portability/backup_json_writer.hpp"

#include <optional>

#include "portability/json_text.hpp"

namespace lumenote::portability {

namespace {

using json_text::appendDate;
using json_text::appendInteger;
using json_text::appendNumber;
using json_text::appendString;

// Writes the members of one object, putting the commas between them.
class ObjectWriter {
  public:
    explicit ObjectWriter(std::string& out) : out_(out) { out_ += '{'; }
    ~ObjectWriter() { out_ += '}'; }
    ObjectWriter(const ObjectWriter&) = delete;
    ObjectWriter& operator=(const ObjectWriter&) = delete;

    // Writes the key and returns the buffer for the value.
    std::string& key(std::string_view name) {
        out_ += first_ ? "\"" : ",\"";
        first_ = false;
        out_ += name;
        out_ += "\":";
        return out_;
    }
    void text(std::string_view name, std::string_view value) { appendString(key(name), value); }
    void number(std::string_view name, double value) { appendNumber(key(name), value); }
    void integer(std::string_view name, long long value) { appendInteger(key(name), value); }
    void date(std::string_view name, Date value) { appendDate(key(name), value); }
    void boolean(std::string_view name, bool value) { key(name) += value ? "true" : "false"; }
    void uuid(std::string_view name, const Uuid& value) { text(name, value.upperString()); }

    void textIfPresent(std::string_view name, const std::optional<std::string>& value) {
        if (value) {
            text(name, *value);
        }
    }
    void numberIfPresent(std::string_view name, const std::optional<double>& value) {
        if (value) {
            number(name, *value);
        }
    }
    void integerIfPresent(std::string_view name, const std::optional<long long>& value) {
        if (value) {
            integer(name, *value);
        }
    }
    void dateIfPresent(std::string_view name, const std::optional<Date>& value) {
        if (value) {
            date(name, *value);
        }
    }
    void booleanIfPresent(std::string_view name, const std::optional<bool>& value) {
        if (value) {
            boolean(name, *value);
        }
    }
    void uuidIfPresent(std::string_view name, const std::optional<Uuid>& value) {
        if (value) {
            uuid(name, *value);
        }
    }

  private:
    std::string& out_;
    bool first_ = true;
};

template <typename Record, typename Write>
void appendList(std::string& out, const std::vector<Record>& records, Write write) {
    out += '[';
    for (std::size_t index = 0; index < records.size(); ++index) {
        if (index > 0) {
            out += ',';
        }
        write(out, records[index]);
    }
    out += ']';
}

void appendPreferences(std::string& out, const BackupPreferences& preferences) {
    ObjectWriter object(out);
    object.textIfPresent("appearance", preferences.appearance);
    object.numberIfPresent("defaultDuration", preferences.defaultDuration);
    object.numberIfPresent("inactivityThreshold", preferences.inactivityThreshold);
    object.integerIfPresent("longSleep", preferences.longSleep);
    object.booleanIfPresent("notificationsEnabled", preferences.notificationsEnabled);
    object.booleanIfPresent("notificationsIncludeSubject", preferences.notificationsIncludeSubject);
    object.booleanIfPresent("browserTrackingEnabled", preferences.browserTrackingEnabled);
    object.booleanIfPresent("hostnameTrackingEnabled", preferences.hostnameTrackingEnabled);
    object.booleanIfPresent("localPDFDetectionEnabled", preferences.localPDFDetectionEnabled);
    object.booleanIfPresent("manualPDFLabelsEnabled", preferences.manualPDFLabelsEnabled);
    object.booleanIfPresent("rememberSubject", preferences.rememberSubject);
    object.booleanIfPresent("rememberGoal", preferences.rememberGoal);
    object.booleanIfPresent("rememberDuration", preferences.rememberDuration);
    object.integerIfPresent("onboardingCompletedVersion", preferences.onboardingCompletedVersion);
}

void appendApplicationRule(std::string& out, const BackupApplicationRule& rule) {
    ObjectWriter object(out);
    object.text("bundleIdentifier", rule.bundleIdentifier);
    object.text("applicationName", rule.applicationName);
    object.text("classification", rule.classificationRawValue);
    object.date("updatedAt", rule.updatedAt);
}

void appendWebsiteRule(std::string& out, const BackupWebsiteRule& rule) {
    ObjectWriter object(out);
    object.text("hostname", rule.hostname);
    object.text("classification", rule.classificationRawValue);
    object.date("updatedAt", rule.updatedAt);
}

void appendSegment(std::string& out, const BackupSegment& segment) {
    ObjectWriter object(out);
    object.uuid("id", segment.id);
    object.date("startDate", segment.startDate);
    object.date("endDate", segment.endDate);
    object.number("duration", segment.duration);
    object.text("applicationName", segment.applicationName);
    object.text("bundleIdentifier", segment.bundleIdentifier);
    object.text("classification", segment.classificationRawValue);
    object.boolean("isInactive", segment.isInactive);
    object.textIfPresent("activitySource", segment.activitySourceRawValue);
    object.textIfPresent("browserBundleIdentifier", segment.browserBundleIdentifier);
    object.textIfPresent("hostname", segment.hostname);
    object.uuidIfPresent("tabSessionIdentifier", segment.tabSessionIdentifier);
    object.uuidIfPresent("pdfIdentifier", segment.pdfIdentifier);
    object.textIfPresent("pdfDisplayLabel", segment.pdfDisplayLabelStorage);
    object.textIfPresent("pdfLabelSource", segment.pdfLabelSourceRawValue);
    object.textIfPresent("browserFallbackReason", segment.browserFallbackReasonRawValue);
}

void appendConfirmation(std::string& out, const BackupConfirmedInterval& interval) {
    ObjectWriter object(out);
    object.uuid("id", interval.id);
    object.date("startDate", interval.startDate);
    object.date("endDate", interval.endDate);
    object.text("state", interval.stateRawValue);
    object.text("source", interval.sourceRawValue);
    object.date("createdAt", interval.createdAt);
    object.dateIfPresent("supersededAt", interval.supersededAt);
}

void appendPDFIdentity(std::string& out, const BackupPDFIdentity& identity) {
    ObjectWriter object(out);
    object.uuid("id", identity.id);
    object.text("browserBundleIdentifier", identity.browserBundleIdentifier);
    object.textIfPresent("displayLabel", identity.displayLabelStorage);
    object.textIfPresent("labelSource", identity.labelSourceRawValue);
    object.text("classification", identity.classificationRawValue);
    object.date("createdAt", identity.createdAt);
}

}  // namespace

void appendDocumentHead(std::string& out, const BackupDocumentHead& head) {
    out += "{\"formatVersion\":";
    appendInteger(out, kBackupFormatVersion);
    out += ",\"appVersion\":";
    appendString(out, head.appVersion);
    out += ",\"createdAt\":";
    appendDate(out, head.createdAt);
    out += ",\"preferences\":";
    appendPreferences(out, head.preferences);
    out += ",\"applicationRules\":";
    appendList(out, head.applicationRules, appendApplicationRule);
    out += ",\"websiteRules\":";
    appendList(out, head.websiteRules, appendWebsiteRule);
    out += ",\"sessions\":[";
}

void appendSession(std::string& out, const recording::StudySession& session,
                   const std::vector<BackupPDFIdentity>& pdfIdentities, bool first) {
    if (!first) {
        out += ',';
    }
    ObjectWriter object(out);
    object.uuid("id", session.id);
    object.text("subject", session.subject);
    object.text("goal", session.goal);
    object.text("notes", session.notesStorage ? std::string_view(*session.notesStorage) : "");
    object.number("plannedDuration", session.plannedDuration);
    object.date("startDate", session.startDate);
    object.dateIfPresent("endDate", session.endDate);
    object.text("status", session.statusRawValue);
    object.number("timerDuration", session.timerDuration);
    object.integerIfPresent("calculationVersion", session.calculationVersionStorage);
    object.textIfPresent("studyMode", session.studyModeStorage);
    object.integerIfPresent("schemaVersion", session.schemaVersionStorage);
    object.textIfPresent("timingMode", session.timingModeStorage);
    appendList(object.key("confirmedNoInputIntervals"), session.confirmedNoInputIntervals,
               appendConfirmation);
    appendList(object.key("segments"), session.segments, appendSegment);
    appendList(object.key("localPDFIdentities"), pdfIdentities, appendPDFIdentity);
}

void appendDocumentTail(std::string& out) {
    out += "]}";
}

}  // namespace lumenote::portability
