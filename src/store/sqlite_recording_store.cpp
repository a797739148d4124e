#include "store/sqlite_recording_store.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cassert>
#include <cerrno>
#include <cstring>
#include <utility>

#include "foundation/private_file.hpp"
#include "store/sqlite_history_import.hpp"
#include "store/store_rows.hpp"
#include "store/store_schema.hpp"

namespace lumenote::store {

namespace {

// Creates the database file owner-only before SQLite opens it: SQLite gives
// its WAL and shared-memory files the mode of the database file.
Result<void, StoreError> ensurePrivateFile(const std::filesystem::path& path) {
    if (auto folder = private_file::ensureFolder(path.parent_path()); !folder) {
        return fail(StoreError{"the folder " + path.parent_path().string() +
                               " could not be created or made private"});
    }
    const int descriptor = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (descriptor < 0) {
        const int error = errno;
        return fail(StoreError{path.string() + ": " + std::strerror(error),
                               storeErrorKindOfSystemError(error)});
    }
    const bool narrowed = ::fchmod(descriptor, 0600) == 0;
    const int error = errno;
    ::close(descriptor);
    if (!narrowed) {
        return fail(StoreError{path.string() + ": " + std::strerror(error),
                               storeErrorKindOfSystemError(error)});
    }
    return {};
}

// Restores synchronous=NORMAL after a durable commit, whatever its outcome.
class DurableCommit {
  public:
    explicit DurableCommit(SqliteConnection& connection) : connection_(connection) {}
    ~DurableCommit() {
        if (active_) {
            (void)connection_.execute("PRAGMA synchronous = NORMAL");
        }
    }
    DurableCommit(const DurableCommit&) = delete;
    DurableCommit& operator=(const DurableCommit&) = delete;

    Result<void, StoreError> begin() {
        auto set = connection_.execute("PRAGMA synchronous = FULL");
        active_ = set.ok();
        return set;
    }

  private:
    SqliteConnection& connection_;
    bool active_ = false;
};

std::optional<StoreError> missingOwner(const recording::StoreChangeSet& changes) {
    for (const recording::ActivitySegment& segment : changes.segments) {
        if (!segment.session) {
            return StoreError{"activity segment " + segment.id.upperString() + " names no session"};
        }
    }
    for (const recording::ConfirmedNoInputInterval& interval : changes.confirmedIntervals) {
        if (!interval.session) {
            return StoreError{"confirmed interval " + interval.id.upperString() +
                              " names no session"};
        }
    }
    return std::nullopt;
}

// Writes each record through the in-place update when its row exists with
// the same indexed columns, else through the upsert.
template <typename Record>
Result<void, StoreError> upsertAll(SqliteConnection& connection, const TableLayout& layout,
                                   const std::vector<Record>& records) {
    if (records.empty()) {
        return {};
    }
    assert(!layout.updateUnindexed.empty());
    auto upsert = connection.cached(layout.upsert);
    if (!upsert) {
        return fail(upsert.error());
    }
    auto update = connection.cached(layout.updateUnindexed);
    if (!update) {
        return fail(update.error());
    }
    for (const Record& record : records) {
        bindRow(**update, record);
        auto updated = (*update)->run();
        (*update)->reset();
        if (!updated) {
            return updated;
        }
        if (connection.changes() > 0) {
            continue;
        }
        bindRow(**upsert, record);
        auto written = (*upsert)->run();
        (*upsert)->reset();
        if (!written) {
            return written;
        }
    }
    return {};
}

Result<void, StoreError> upsertOne(SqliteConnection& connection, const TableLayout& layout,
                                   const auto& record) {
    auto statement = connection.cached(layout.upsert);
    if (!statement) {
        return fail(statement.error());
    }
    bindRow(**statement, record);
    return (*statement)->run();
}

// Steps `statement` to its end, reading each row with `read`. `expected`
// reserves room for that many rows up front, sparing the re-allocations of a
// growing vector where the usual count is known.
template <typename Read>
auto collect(StatementLoan& statement, Read read, std::size_t expected = 0)
    -> Result<std::vector<decltype(read(*statement))>, StoreError> {
    std::vector<decltype(read(*statement))> records;
    records.reserve(expected);
    while (true) {
        auto row = statement->step();
        if (!row) {
            return fail(row.error());
        }
        if (!*row) {
            return records;
        }
        records.push_back(read(*statement));
    }
}

// Puts each run of segments with equal start dates in id order. The
// (session, startDate) index gives the start order for free; asking SQLite
// for the id order as well passes every row through a sorter, which took a
// third of a walk over every session with its children.
void orderEqualStartsById(std::vector<recording::ActivitySegment>& segments) {
    auto run = segments.begin();
    while (run != segments.end()) {
        const Date start = run->startDate;
        const auto next = std::find_if(run, segments.end(), [start](const auto& segment) {
            return segment.startDate != start;
        });
        if (next - run > 1) {
            std::sort(run, next, [](const auto& a, const auto& b) { return a.id < b.id; });
        }
        run = next;
    }
}

// A LIKE pattern that matches `text` anywhere, its own % and _ (and the
// escape character) taken literally.
std::string likePatternContaining(std::string_view text) {
    std::string pattern = "%";
    for (const char character : text) {
        if (character == '%' || character == '_' || character == '\\') {
            pattern += '\\';
        }
        pattern += character;
    }
    pattern += '%';
    return pattern;
}

// A long session holds a few hundred segments; most hold fewer than a
// hundred. Reserving this many spares most sessions every re-allocation while
// a whole-history walk reads them one after another.
constexpr std::size_t kUsualSegmentsPerSession = 128;

template <typename Read>
auto queryAll(SqliteConnection& connection, const std::string& sql, Read read)
    -> Result<std::vector<decltype(read(std::declval<const SqliteStatement&>()))>, StoreError> {
    auto statement = connection.cached(sql);
    if (!statement) {
        return fail(statement.error());
    }
    return collect(*statement, read);
}

}  // namespace

Result<std::unique_ptr<SqliteRecordingStore>, StoreError> SqliteRecordingStore::open(
    const std::filesystem::path& path, const SqliteStoreOptions& options) {
    if (options.readOnly) {
        auto connection = SqliteConnection::open(path.string(), SqliteOpenMode::readOnly);
        if (!connection) {
            return fail(connection.error());
        }
        (*connection)->setBusyTimeout(static_cast<int>(options.busyTimeout.count()));
        if (auto current = requireCurrentLayout(**connection, storeMigrations()); !current) {
            return fail(current.error());
        }
        return std::unique_ptr<SqliteRecordingStore>(
            new SqliteRecordingStore(std::move(*connection)));
    }
    if (auto file = ensurePrivateFile(path); !file) {
        return fail(file.error());
    }
    auto connection = SqliteConnection::open(path.string());
    if (!connection) {
        return fail(connection.error());
    }
    return prepare(std::move(*connection), options);
}

Result<std::unique_ptr<SqliteRecordingStore>, StoreError> SqliteRecordingStore::openInMemory() {
    auto connection = SqliteConnection::open(":memory:");
    if (!connection) {
        return fail(connection.error());
    }
    return prepare(std::move(*connection), SqliteStoreOptions{});
}

Result<std::unique_ptr<SqliteRecordingStore>, StoreError> SqliteRecordingStore::prepare(
    std::unique_ptr<SqliteConnection> connection, const SqliteStoreOptions& options) {
    connection->setBusyTimeout(static_cast<int>(options.busyTimeout.count()));
    // page_size takes effect only in a new file, before its first table. Small
    // pages keep each save small: a save rewrites whole pages (the session's,
    // the segment's and, for a new segment, its index entries), and reads at
    // the size of years of history stay far inside their budget (measured in
    // bench/store_bench.cpp: 1 KiB pages write a quarter of the bytes of the
    // default 4 KiB per save, with no slower listing or start-up).
    // journal_mode is stored in the file (an in-memory database keeps its own
    // mode); foreign_keys and synchronous are settings of this connection.
    if (auto configured = connection->execute(
            "PRAGMA page_size = 1024; PRAGMA foreign_keys = ON; PRAGMA journal_mode = WAL; "
            "PRAGMA synchronous = NORMAL");
        !configured) {
        return fail(configured.error());
    }
    if (auto migrated = migrate(*connection, storeMigrations()); !migrated) {
        return fail(migrated.error());
    }
    return std::unique_ptr<SqliteRecordingStore>(new SqliteRecordingStore(std::move(connection)));
}

Result<void, StoreError> SqliteRecordingStore::execute(const std::string& sql) {
    auto statement = connection_->cached(sql);
    if (!statement) {
        return fail(statement.error());
    }
    return (*statement)->run();
}

Result<void, StoreError> SqliteRecordingStore::apply(const recording::StoreChangeSet& changes) {
    if (auto missing = missingOwner(changes)) {
        return fail(std::move(*missing));
    }
    if (changes.empty()) {
        return {};
    }
    DurableCommit durable(*connection_);
    if (changes.durable) {
        if (auto set = durable.begin(); !set) {
            return set;
        }
    }
    return applyInTransaction(changes);
}

Result<void, StoreError> SqliteRecordingStore::applyInTransaction(
    const recording::StoreChangeSet& changes) {
    auto transaction = SqliteTransaction::beginImmediate(*connection_);
    if (!transaction) {
        return fail(transaction.error());
    }
    if (auto written = upsertAll(*connection_, sessionLayout(), changes.sessions); !written) {
        return written;
    }
    if (auto written = upsertAll(*connection_, segmentLayout(), changes.segments); !written) {
        return written;
    }
    if (auto written =
            upsertAll(*connection_, confirmedIntervalLayout(), changes.confirmedIntervals);
        !written) {
        return written;
    }
    if (auto written = upsertAll(*connection_, pdfIdentityLayout(), changes.pdfIdentities);
        !written) {
        return written;
    }
    if (auto deleted = deleteByIds("DELETE FROM segments WHERE id = ?1", changes.deletedSegments);
        !deleted) {
        return deleted;
    }
    if (auto deleted = deleteByIds("DELETE FROM sessions WHERE id = ?1", changes.deletedSessions);
        !deleted) {
        return deleted;
    }
    return transaction->commit();
}

Result<void, StoreError> SqliteRecordingStore::deleteByIds(const char* sql,
                                                           const std::vector<Uuid>& ids) {
    if (ids.empty()) {
        return {};
    }
    auto statement = connection_->cached(sql);
    if (!statement) {
        return fail(statement.error());
    }
    for (const Uuid& id : ids) {
        (*statement)->bind(1, id);
        if (auto deleted = (*statement)->run(); !deleted) {
            return deleted;
        }
        (*statement)->reset();
    }
    return {};
}

Result<void, StoreError> SqliteRecordingStore::loadChildren(recording::StudySession& session) {
    {
        auto statement = connection_->cached(
            selectSql(segmentLayout(), "WHERE session = ?1 ORDER BY startDate"));
        if (!statement) {
            return fail(statement.error());
        }
        (*statement)->bind(1, session.id);
        auto segments = collect(*statement, readSegment, kUsualSegmentsPerSession);
        if (!segments) {
            return fail(segments.error());
        }
        orderEqualStartsById(*segments);
        session.segments = std::move(*segments);
    }
    {
        auto statement = connection_->cached(selectSql(
            confirmedIntervalLayout(), "WHERE session = ?1 ORDER BY startDate, createdAt, id"));
        if (!statement) {
            return fail(statement.error());
        }
        (*statement)->bind(1, session.id);
        auto intervals = collect(*statement, readConfirmedInterval);
        if (!intervals) {
            return fail(intervals.error());
        }
        session.confirmedNoInputIntervals = std::move(*intervals);
    }
    auto statement = connection_->cached(
        "SELECT id FROM pdf_identities WHERE session = ?1 ORDER BY createdAt, id");
    if (!statement) {
        return fail(statement.error());
    }
    (*statement)->bind(1, session.id);
    auto identities = collect(*statement, [](const SqliteStatement& row) { return row.uuidAt(0); });
    if (!identities) {
        return fail(identities.error());
    }
    session.localPDFIdentities = std::move(*identities);
    return {};
}

Result<std::vector<recording::StudySession>, StoreError> SqliteRecordingStore::readSessions(
    StatementLoan& statement, bool includeChildren) {
    auto sessions = collect(statement, readSession);
    if (!sessions || !includeChildren) {
        return sessions;
    }
    for (recording::StudySession& session : *sessions) {
        if (auto loaded = loadChildren(session); !loaded) {
            return fail(loaded.error());
        }
    }
    return sessions;
}

Result<std::optional<recording::StudySession>, StoreError> SqliteRecordingStore::loadSession(
    const Uuid& id) {
    auto statement = connection_->cached(selectSql(sessionLayout(), "WHERE id = ?1"));
    if (!statement) {
        return fail(statement.error());
    }
    (*statement)->bind(1, id);
    auto sessions = readSessions(*statement, true);
    if (!sessions) {
        return fail(sessions.error());
    }
    if (sessions->empty()) {
        return std::optional<recording::StudySession>();
    }
    return std::optional<recording::StudySession>(std::move(sessions->front()));
}

Result<std::vector<recording::StudySession>, StoreError> SqliteRecordingStore::listSessions(
    const recording::SessionQuery& query) {
    // The text varies only with the query's shape, so each shape is prepared
    // once; the bounds are always parameters.
    std::string tail = "WHERE 1";
    if (query.startingAtOrAfter) {
        tail += " AND startDate >= ?1";
    }
    if (query.startingBefore) {
        tail += " AND startDate < ?2";
    }
    if (!query.subjectOrGoalContains.empty()) {
        tail += " AND (subject LIKE ?5 ESCAPE '\\' OR goal LIKE ?5 ESCAPE '\\')";
    }
    if (query.status) {
        tail += " AND statusRawValue = ?6";
    }
    tail += query.newestFirst ? " ORDER BY startDate DESC, id DESC" : " ORDER BY startDate, id";
    tail += " LIMIT ?3 OFFSET ?4";
    auto statement = connection_->cached(selectSql(sessionLayout(), tail));
    if (!statement) {
        return fail(statement.error());
    }
    if (query.startingAtOrAfter) {
        (*statement)->bind(1, *query.startingAtOrAfter);
    }
    if (query.startingBefore) {
        (*statement)->bind(2, *query.startingBefore);
    }
    // A negative limit is SQLite's "no limit".
    (*statement)->bind(3, query.limit ? static_cast<long long>(*query.limit) : -1LL);
    (*statement)->bind(4, static_cast<long long>(query.offset));
    if (!query.subjectOrGoalContains.empty()) {
        (*statement)->bind(5, likePatternContaining(query.subjectOrGoalContains));
    }
    if (query.status) {
        (*statement)->bind(6, std::string_view(rawValue(*query.status)));
    }
    return readSessions(*statement, query.includeChildren);
}

Result<std::vector<recording::StudySession>, StoreError> SqliteRecordingStore::liveSessions() {
    auto statement = connection_->cached(selectSql(
        sessionLayout(), "WHERE statusRawValue IN ('running', 'paused') ORDER BY startDate, id"));
    if (!statement) {
        return fail(statement.error());
    }
    return readSessions(*statement, true);
}

Result<std::size_t, StoreError> SqliteRecordingStore::rowCount(const char* sql) {
    auto count = connection_->queryInteger(sql);
    if (!count) {
        return fail(count.error());
    }
    return static_cast<std::size_t>(*count);
}

Result<std::size_t, StoreError> SqliteRecordingStore::sessionCount() {
    return rowCount("SELECT count(*) FROM sessions");
}

Result<std::size_t, StoreError> SqliteRecordingStore::segmentCount() {
    return rowCount("SELECT count(*) FROM segments");
}

Result<void, StoreError> SqliteRecordingStore::deleteAllSessions() {
    return execute("DELETE FROM sessions");
}

Result<std::unique_ptr<recording::HistoryImport>, StoreError> SqliteRecordingStore::beginImport() {
    auto import = SqliteHistoryImport::begin(*connection_);
    if (!import) {
        return fail(import.error());
    }
    return std::unique_ptr<recording::HistoryImport>(std::move(*import));
}

Result<std::vector<classification::AppClassification>, StoreError>
SqliteRecordingStore::appClassifications() {
    return queryAll(*connection_, selectSql(appClassificationLayout(), "ORDER BY bundleIdentifier"),
                    readAppClassification);
}

Result<void, StoreError> SqliteRecordingStore::saveAppClassification(
    const classification::AppClassification& rule) {
    return upsertOne(*connection_, appClassificationLayout(), rule);
}

Result<void, StoreError> SqliteRecordingStore::deleteAllAppClassifications() {
    return execute("DELETE FROM app_classifications");
}

Result<bool, StoreError> SqliteRecordingStore::deleteAppClassification(
    const std::string& bundleIdentifier) {
    return deleteOne("DELETE FROM app_classifications WHERE bundleIdentifier = ?1",
                     bundleIdentifier);
}

Result<std::vector<classification::WebsiteClassification>, StoreError>
SqliteRecordingStore::websiteClassifications() {
    return queryAll(*connection_, selectSql(websiteClassificationLayout(), "ORDER BY hostname"),
                    readWebsiteClassification);
}

Result<void, StoreError> SqliteRecordingStore::saveWebsiteClassification(
    const classification::WebsiteClassification& rule) {
    return upsertOne(*connection_, websiteClassificationLayout(), rule);
}

Result<void, StoreError> SqliteRecordingStore::deleteAllWebsiteClassifications() {
    return execute("DELETE FROM website_classifications");
}

Result<bool, StoreError> SqliteRecordingStore::deleteWebsiteClassification(
    const std::string& hostname) {
    return deleteOne("DELETE FROM website_classifications WHERE hostname = ?1", hostname);
}

Result<bool, StoreError> SqliteRecordingStore::deleteOne(const char* sql, std::string_view key) {
    auto statement = connection_->cached(sql);
    if (!statement) {
        return fail(statement.error());
    }
    (*statement)->bind(1, key);
    if (auto deleted = (*statement)->run(); !deleted) {
        return fail(deleted.error());
    }
    return connection_->changes() > 0;
}

Result<std::vector<classification::LocalPDFIdentity>, StoreError>
SqliteRecordingStore::pdfIdentities(const std::optional<Uuid>& session) {
    if (!session) {
        return queryAll(*connection_, selectSql(pdfIdentityLayout(), "ORDER BY createdAt, id"),
                        readPDFIdentity);
    }
    auto statement = connection_->cached(
        selectSql(pdfIdentityLayout(), "WHERE session = ?1 ORDER BY createdAt, id"));
    if (!statement) {
        return fail(statement.error());
    }
    (*statement)->bind(1, *session);
    return collect(*statement, readPDFIdentity);
}

Result<void, StoreError> SqliteRecordingStore::savePDFIdentity(
    const classification::LocalPDFIdentity& identity) {
    return upsertOne(*connection_, pdfIdentityLayout(), identity);
}

Result<std::size_t, StoreError> SqliteRecordingStore::clearFilenameDerivedPDFLabels() {
    const std::string_view filename = rawValue(classification::BrowserPDFLabelSource::filename);
    auto transaction = SqliteTransaction::beginImmediate(*connection_);
    if (!transaction) {
        return fail(transaction.error());
    }
    long long identitiesChanged = 0;
    {
        auto statement = connection_->cached(
            "UPDATE pdf_identities SET displayLabelStorage = NULL, labelSourceRawValue = NULL "
            "WHERE labelSourceRawValue = ?1");
        if (!statement) {
            return fail(statement.error());
        }
        (*statement)->bind(1, filename);
        if (auto cleared = (*statement)->run(); !cleared) {
            return fail(cleared.error());
        }
        identitiesChanged = connection_->changes();
    }
    auto statement = connection_->cached(
        "UPDATE segments SET pdfDisplayLabelStorage = NULL, pdfLabelSourceRawValue = NULL "
        "WHERE pdfLabelSourceRawValue = ?1");
    if (!statement) {
        return fail(statement.error());
    }
    (*statement)->bind(1, filename);
    if (auto cleared = (*statement)->run(); !cleared) {
        return fail(cleared.error());
    }
    if (auto committed = transaction->commit(); !committed) {
        return fail(committed.error());
    }
    return static_cast<std::size_t>(identitiesChanged);
}

Result<void, StoreError> SqliteRecordingStore::deleteAllPDFIdentities() {
    return execute("DELETE FROM pdf_identities");
}

Result<std::optional<classification::LocalPDFPreferences>, StoreError>
SqliteRecordingStore::localPDFPreferences() {
    auto preferences =
        queryAll(*connection_, selectSql(localPDFPreferencesLayout(), "ORDER BY rowid LIMIT 1"),
                 readLocalPDFPreferences);
    if (!preferences) {
        return fail(preferences.error());
    }
    if (preferences->empty()) {
        return std::optional<classification::LocalPDFPreferences>();
    }
    return std::optional<classification::LocalPDFPreferences>(preferences->front());
}

Result<void, StoreError> SqliteRecordingStore::saveLocalPDFPreferences(
    const classification::LocalPDFPreferences& preferences) {
    auto transaction = SqliteTransaction::beginImmediate(*connection_);
    if (!transaction) {
        return fail(transaction.error());
    }
    {
        auto statement = connection_->cached("DELETE FROM local_pdf_preferences WHERE id <> ?1");
        if (!statement) {
            return fail(statement.error());
        }
        (*statement)->bind(1, preferences.id);
        if (auto deleted = (*statement)->run(); !deleted) {
            return deleted;
        }
    }
    if (auto written = upsertOne(*connection_, localPDFPreferencesLayout(), preferences);
        !written) {
        return written;
    }
    return transaction->commit();
}

Result<void, StoreError> SqliteRecordingStore::deleteLocalPDFPreferences() {
    return execute("DELETE FROM local_pdf_preferences");
}

}  // namespace lumenote::store
