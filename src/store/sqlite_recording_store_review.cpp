// The store's side of the review of unclassified activity: the unclassified
// segments summed per activity and session by SQLite itself.
#include "store/sqlite_recording_store.hpp"
#include "store/store_rows.hpp"

namespace lumenote::store {

namespace {

using Kind = recording::UnclassifiedActivityTally::Kind;

// Kinds as the query numbers them: 0 application (every other source,
// including a browser recorded by its own name), 1 website, 2 local PDF.
constexpr const char* kTallySql = R"(
SELECT kind, s.bundleIdentifier, max(s.applicationName), max(s.browserBundleIdentifier),
       s.hostname, s.pdfIdentifier, max(s.pdfDisplayLabelStorage),
       max(p.classificationRawValue), s.session, count(*), total(s.duration)
FROM (SELECT *, CASE activitySourceRawValue WHEN 'website' THEN 1 WHEN 'localPDF' THEN 2
                ELSE 0 END AS kind
      FROM segments
      WHERE classificationRawValue = 'unclassified' AND isInactive = 0
        AND coalesce(activitySourceRawValue, '') <> 'system') AS s
LEFT JOIN pdf_identities AS p ON p.id = s.pdfIdentifier
GROUP BY kind,
         CASE kind WHEN 1 THEN s.hostname WHEN 2 THEN s.pdfIdentifier ELSE s.bundleIdentifier END,
         s.session)";

Kind kindAt(long long number) {
    return number == 1 ? Kind::website : number == 2 ? Kind::localPDF : Kind::application;
}

template <typename T, typename Read>
std::optional<T> optionalAt(const SqliteStatement& row, int column, Read read) {
    return row.isNull(column) ? std::nullopt : std::optional<T>(read(column));
}

}  // namespace

Result<void, StoreError> SqliteRecordingStore::forEachUnclassifiedActivityTally(
    const TallyVisitor& visitor) {
    auto statement = connection_->prepare(kTallySql);
    if (!statement) {
        return fail(statement.error());
    }
    SqliteStatement& row = **statement;
    const auto text = [&row](int column) { return row.textAt(column); };
    recording::UnclassifiedActivityTally tally;
    while (true) {
        auto stepped = row.step();
        if (!stepped) {
            return fail(stepped.error());
        }
        if (!*stepped) {
            return {};
        }
        tally.kind = kindAt(row.integerAt(0));
        tally.bundleIdentifier = row.textAt(1);
        tally.applicationName = row.textAt(2);
        tally.browserBundleIdentifier = optionalAt<std::string>(row, 3, text);
        tally.hostname = optionalAt<std::string>(row, 4, text);
        tally.pdfIdentifier = optionalAt<Uuid>(row, 5, [&row](int c) { return row.uuidAt(c); });
        tally.pdfDisplayLabel = optionalAt<std::string>(row, 6, text);
        tally.currentPDFClassification = optionalAt<std::string>(row, 7, text);
        tally.session = row.uuidAt(8);
        tally.segmentCount = static_cast<std::size_t>(row.integerAt(9));
        tally.totalDuration = row.doubleAt(10);
        if (!visitor(tally)) {
            return {};
        }
    }
}

}  // namespace lumenote::store
