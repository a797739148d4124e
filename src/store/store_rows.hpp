// The column layout of each stored record, and the code that binds a record
// to a statement's parameters and reads it back from a result row.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "classification/classification_records.hpp"
#include "recording/session_records.hpp"
#include "store/sqlite_connection.hpp"

namespace lumenote::store {

// One table: its columns in the order rows are bound (parameters 1...n) and
// read (result columns 0...n-1), and its ready-made SQL.
struct TableLayout {
    std::string table;
    std::vector<std::string_view> columns;
    std::string columnList;  // "id, subject, ..." for SELECT
    // INSERT of every column that updates the row in place when the key is
    // taken (never a delete and insert, which would cascade to children).
    std::string upsert;
    // UPDATE of the columns no index covers, matching only a row whose key and
    // indexed columns equal the bound ones (so it changes nothing otherwise).
    // A row that keeps its indexed columns, as a growing segment or a session
    // at each save does, then rewrites only its table page, where the upsert
    // would also rewrite its entry in every index over an assigned column:
    // fewer bytes written per save, the same result. Bound like the upsert.
    std::string updateUnindexed;
};

const TableLayout& sessionLayout();
const TableLayout& segmentLayout();
const TableLayout& confirmedIntervalLayout();
const TableLayout& pdfIdentityLayout();
const TableLayout& appClassificationLayout();
const TableLayout& websiteClassificationLayout();
const TableLayout& localPDFPreferencesLayout();

// "SELECT <every column> FROM <table> " followed by `tail`.
std::string selectSql(const TableLayout& layout, std::string_view tail);

// The session's own columns; its children are written separately.
void bindRow(SqliteStatement& statement, const recording::StudySession& session);
// The owning session is bound as the last column: NULL when `session` is
// empty, which the table refuses for segments and confirmations.
void bindRow(SqliteStatement& statement, const recording::ActivitySegment& segment);
void bindRow(SqliteStatement& statement, const recording::ConfirmedNoInputInterval& interval);
void bindRow(SqliteStatement& statement, const classification::LocalPDFIdentity& identity);
void bindRow(SqliteStatement& statement, const classification::AppClassification& rule);
void bindRow(SqliteStatement& statement, const classification::WebsiteClassification& rule);
void bindRow(SqliteStatement& statement, const classification::LocalPDFPreferences& preferences);

// Readers of a row selected with the layout's column list. A session is read
// without its children.
recording::StudySession readSession(const SqliteStatement& row);
recording::ActivitySegment readSegment(const SqliteStatement& row);
recording::ConfirmedNoInputInterval readConfirmedInterval(const SqliteStatement& row);
classification::LocalPDFIdentity readPDFIdentity(const SqliteStatement& row);
classification::AppClassification readAppClassification(const SqliteStatement& row);
classification::WebsiteClassification readWebsiteClassification(const SqliteStatement& row);
classification::LocalPDFPreferences readLocalPDFPreferences(const SqliteStatement& row);

}  // namespace lumenote::store
