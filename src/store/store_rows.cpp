#include "store/store_rows.hpp"

#include <algorithm>
#include <initializer_list>

namespace lumenote::store {

namespace {

// `indexed` names the columns other than the key that some index covers.
TableLayout makeLayout(std::string table, std::initializer_list<std::string_view> columns,
                       std::string_view key, std::initializer_list<std::string_view> indexed) {
    TableLayout layout{std::move(table), columns, {}, {}, {}};
    std::string placeholders;
    std::string upsertAssignments;
    std::string plainAssignments;
    std::string unchangedColumns;
    for (std::size_t index = 0; index < layout.columns.size(); ++index) {
        const std::string column(layout.columns[index]);
        const std::string parameter = "?" + std::to_string(index + 1);
        if (index > 0) {
            layout.columnList += ", ";
            placeholders += ", ";
        }
        layout.columnList += column;
        placeholders += parameter;
        if (column == key) {
            unchangedColumns = column + " = " + parameter + unchangedColumns;
            continue;
        }
        upsertAssignments += upsertAssignments.empty() ? "" : ", ";
        upsertAssignments += column + " = excluded." + column;
        if (std::find(indexed.begin(), indexed.end(), column) != indexed.end()) {
            unchangedColumns += " AND " + column + " IS " + parameter;
        } else {
            plainAssignments += plainAssignments.empty() ? "" : ", ";
            plainAssignments += column + " = " + parameter;
        }
    }
    layout.upsert = "INSERT INTO " + layout.table + " (" + layout.columnList + ") VALUES (" +
                    placeholders + ") ON CONFLICT (" + std::string(key) + ") DO UPDATE SET " +
                    upsertAssignments;
    if (!plainAssignments.empty()) {
        layout.updateUnindexed =
            "UPDATE " + layout.table + " SET " + plainAssignments + " WHERE " + unchangedColumns;
    }
    return layout;
}

}  // namespace

const TableLayout& sessionLayout() {
    static const TableLayout layout = makeLayout("sessions",
                                                 {"id",
                                                  "subject",
                                                  "goal",
                                                  "notesStorage",
                                                  "plannedDuration",
                                                  "timingModeStorage",
                                                  "startDate",
                                                  "endDate",
                                                  "statusRawValue",
                                                  "timerDuration",
                                                  "focusedDuration",
                                                  "distractedDuration",
                                                  "neutralDuration",
                                                  "unclassifiedDurationStorage",
                                                  "inactiveDuration",
                                                  "ignoredDurationStorage",
                                                  "focusScore",
                                                  "calculationVersionStorage",
                                                  "originatingTemplateIDStorage",
                                                  "studyModeStorage",
                                                  "schemaVersionStorage",
                                                  "passiveStudyDurationStorage",
                                                  "confirmedBreakDurationStorage",
                                                  "systemExcludedDurationStorage"},
                                                 "id", {"startDate", "statusRawValue"});
    return layout;
}

const TableLayout& segmentLayout() {
    static const TableLayout layout =
        makeLayout("segments",
                   {"id", "startDate", "endDate", "duration", "applicationName", "bundleIdentifier",
                    "classificationRawValue", "isInactive", "activitySourceRawValue",
                    "browserBundleIdentifier", "hostname", "tabSessionIdentifier", "pdfIdentifier",
                    "pdfDisplayLabelStorage", "pdfLabelSourceRawValue",
                    "browserFallbackReasonRawValue", "session"},
                   "id", {"startDate", "session"});
    return layout;
}

const TableLayout& confirmedIntervalLayout() {
    static const TableLayout layout =
        makeLayout("confirmed_intervals",
                   {"id", "startDate", "endDate", "stateRawValue", "sourceRawValue", "createdAt",
                    "supersededAt", "session"},
                   "id", {"startDate", "session"});
    return layout;
}

const TableLayout& pdfIdentityLayout() {
    static const TableLayout layout =
        makeLayout("pdf_identities",
                   {"id", "browserBundleIdentifier", "displayLabelStorage", "labelSourceRawValue",
                    "classificationRawValue", "createdAt", "session"},
                   "id", {"session"});
    return layout;
}

const TableLayout& appClassificationLayout() {
    static const TableLayout layout =
        makeLayout("app_classifications",
                   {"bundleIdentifier", "applicationName", "classificationRawValue", "updatedAt"},
                   "bundleIdentifier", {});
    return layout;
}

const TableLayout& websiteClassificationLayout() {
    static const TableLayout layout =
        makeLayout("website_classifications", {"hostname", "classificationRawValue", "updatedAt"},
                   "hostname", {});
    return layout;
}

const TableLayout& localPDFPreferencesLayout() {
    static const TableLayout layout =
        makeLayout("local_pdf_preferences",
                   {"id", "filenameLabelsEnabled", "defaultClassificationRawValue"}, "id", {});
    return layout;
}

std::string selectSql(const TableLayout& layout, std::string_view tail) {
    return "SELECT " + layout.columnList + " FROM " + layout.table + " " + std::string(tail);
}

void bindRow(SqliteStatement& statement, const recording::StudySession& session) {
    statement.bind(1, session.id);
    statement.bind(2, session.subject);
    statement.bind(3, session.goal);
    statement.bind(4, session.notesStorage);
    statement.bind(5, session.plannedDuration);
    statement.bind(6, session.timingModeStorage);
    statement.bind(7, session.startDate);
    statement.bind(8, session.endDate);
    statement.bind(9, session.statusRawValue);
    statement.bind(10, session.timerDuration);
    statement.bind(11, session.focusedDuration);
    statement.bind(12, session.distractedDuration);
    statement.bind(13, session.neutralDuration);
    statement.bind(14, session.unclassifiedDurationStorage);
    statement.bind(15, session.inactiveDuration);
    statement.bind(16, session.ignoredDurationStorage);
    statement.bind(17, session.focusScore);
    statement.bind(18, session.calculationVersionStorage);
    statement.bind(19, session.originatingTemplateIDStorage);
    statement.bind(20, session.studyModeStorage);
    statement.bind(21, session.schemaVersionStorage);
    statement.bind(22, session.passiveStudyDurationStorage);
    statement.bind(23, session.confirmedBreakDurationStorage);
    statement.bind(24, session.systemExcludedDurationStorage);
}

void bindRow(SqliteStatement& statement, const recording::ActivitySegment& segment) {
    statement.bind(1, segment.id);
    statement.bind(2, segment.startDate);
    statement.bind(3, segment.endDate);
    statement.bind(4, segment.duration);
    statement.bind(5, segment.applicationName);
    statement.bind(6, segment.bundleIdentifier);
    statement.bind(7, segment.classificationRawValue);
    statement.bind(8, segment.isInactive);
    statement.bind(9, segment.activitySourceRawValue);
    statement.bind(10, segment.browserBundleIdentifier);
    statement.bind(11, segment.hostname);
    statement.bind(12, segment.tabSessionIdentifier);
    statement.bind(13, segment.pdfIdentifier);
    statement.bind(14, segment.pdfDisplayLabelStorage);
    statement.bind(15, segment.pdfLabelSourceRawValue);
    statement.bind(16, segment.browserFallbackReasonRawValue);
    statement.bind(17, segment.session);
}

void bindRow(SqliteStatement& statement, const recording::ConfirmedNoInputInterval& interval) {
    statement.bind(1, interval.id);
    statement.bind(2, interval.startDate);
    statement.bind(3, interval.endDate);
    statement.bind(4, interval.stateRawValue);
    statement.bind(5, interval.sourceRawValue);
    statement.bind(6, interval.createdAt);
    statement.bind(7, interval.supersededAt);
    statement.bind(8, interval.session);
}

void bindRow(SqliteStatement& statement, const classification::LocalPDFIdentity& identity) {
    statement.bind(1, identity.id);
    statement.bind(2, identity.browserBundleIdentifier);
    statement.bind(3, identity.displayLabelStorage);
    statement.bind(4, identity.labelSourceRawValue);
    statement.bind(5, identity.classificationRawValue);
    statement.bind(6, identity.createdAt);
    statement.bind(7, identity.session);
}

void bindRow(SqliteStatement& statement, const classification::AppClassification& rule) {
    statement.bind(1, rule.bundleIdentifier);
    statement.bind(2, rule.applicationName);
    statement.bind(3, rule.classificationRawValue);
    statement.bind(4, rule.updatedAt);
}

void bindRow(SqliteStatement& statement, const classification::WebsiteClassification& rule) {
    statement.bind(1, rule.hostname);
    statement.bind(2, rule.classificationRawValue);
    statement.bind(3, rule.updatedAt);
}

void bindRow(SqliteStatement& statement, const classification::LocalPDFPreferences& preferences) {
    statement.bind(1, preferences.id);
    statement.bind(2, preferences.filenameLabelsEnabled);
    statement.bind(3, preferences.defaultClassificationRawValue);
}

recording::StudySession readSession(const SqliteStatement& row) {
    recording::StudySession session;
    session.id = row.uuidAt(0);
    session.subject = row.textAt(1);
    session.goal = row.textAt(2);
    session.notesStorage = row.optionalTextAt(3);
    session.plannedDuration = row.doubleAt(4);
    session.timingModeStorage = row.optionalTextAt(5);
    session.startDate = row.dateAt(6);
    session.endDate = row.optionalDateAt(7);
    session.statusRawValue = row.textAt(8);
    session.timerDuration = row.doubleAt(9);
    session.focusedDuration = row.doubleAt(10);
    session.distractedDuration = row.doubleAt(11);
    session.neutralDuration = row.doubleAt(12);
    session.unclassifiedDurationStorage = row.optionalDoubleAt(13);
    session.inactiveDuration = row.doubleAt(14);
    session.ignoredDurationStorage = row.optionalDoubleAt(15);
    session.focusScore = row.optionalDoubleAt(16);
    session.calculationVersionStorage = row.optionalIntegerAt(17);
    session.originatingTemplateIDStorage = row.optionalUuidAt(18);
    session.studyModeStorage = row.optionalTextAt(19);
    session.schemaVersionStorage = row.optionalIntegerAt(20);
    session.passiveStudyDurationStorage = row.optionalDoubleAt(21);
    session.confirmedBreakDurationStorage = row.optionalDoubleAt(22);
    session.systemExcludedDurationStorage = row.optionalDoubleAt(23);
    return session;
}

recording::ActivitySegment readSegment(const SqliteStatement& row) {
    recording::ActivitySegment segment;
    segment.id = row.uuidAt(0);
    segment.startDate = row.dateAt(1);
    segment.endDate = row.dateAt(2);
    segment.duration = row.doubleAt(3);
    segment.applicationName = row.textAt(4);
    segment.bundleIdentifier = row.textAt(5);
    segment.classificationRawValue = row.textAt(6);
    segment.isInactive = row.boolAt(7);
    segment.activitySourceRawValue = row.optionalTextAt(8);
    segment.browserBundleIdentifier = row.optionalTextAt(9);
    segment.hostname = row.optionalTextAt(10);
    segment.tabSessionIdentifier = row.optionalUuidAt(11);
    segment.pdfIdentifier = row.optionalUuidAt(12);
    segment.pdfDisplayLabelStorage = row.optionalTextAt(13);
    segment.pdfLabelSourceRawValue = row.optionalTextAt(14);
    segment.browserFallbackReasonRawValue = row.optionalTextAt(15);
    segment.session = row.optionalUuidAt(16);
    return segment;
}

recording::ConfirmedNoInputInterval readConfirmedInterval(const SqliteStatement& row) {
    recording::ConfirmedNoInputInterval interval;
    interval.id = row.uuidAt(0);
    interval.startDate = row.dateAt(1);
    interval.endDate = row.dateAt(2);
    interval.stateRawValue = row.textAt(3);
    interval.sourceRawValue = row.textAt(4);
    interval.createdAt = row.dateAt(5);
    interval.supersededAt = row.optionalDateAt(6);
    interval.session = row.optionalUuidAt(7);
    return interval;
}

classification::LocalPDFIdentity readPDFIdentity(const SqliteStatement& row) {
    classification::LocalPDFIdentity identity;
    identity.id = row.uuidAt(0);
    identity.browserBundleIdentifier = row.textAt(1);
    identity.displayLabelStorage = row.optionalTextAt(2);
    identity.labelSourceRawValue = row.optionalTextAt(3);
    identity.classificationRawValue = row.textAt(4);
    identity.createdAt = row.dateAt(5);
    identity.session = row.optionalUuidAt(6);
    return identity;
}

classification::AppClassification readAppClassification(const SqliteStatement& row) {
    return classification::AppClassification{row.textAt(0), row.textAt(1), row.textAt(2),
                                             row.dateAt(3)};
}

classification::WebsiteClassification readWebsiteClassification(const SqliteStatement& row) {
    return classification::WebsiteClassification{row.textAt(0), row.textAt(1), row.dateAt(2)};
}

classification::LocalPDFPreferences readLocalPDFPreferences(const SqliteStatement& row) {
    classification::LocalPDFPreferences preferences;
    preferences.id = row.uuidAt(0);
    preferences.filenameLabelsEnabled = row.boolAt(1);
    preferences.defaultClassificationRawValue = row.textAt(2);
    return preferences;
}

}  // namespace lumenote::store
