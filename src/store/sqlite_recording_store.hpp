// The object store on SQLite: sessions with their segments, confirmations and
// PDF identities, the classification rules and the PDF preferences, in one
// database file.
#pragma once

#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "recording/history_import.hpp"
#include "recording/recording_store.hpp"
#include "recording/session_history_reader.hpp"
#include "store/sqlite_connection.hpp"

namespace lumenote::store {

// How a store's connection behaves; the defaults are the recorder's.
struct SqliteStoreOptions {
    // How long a write, or the first open of a new file, waits for another
    // connection's write lock before failing with StoreErrorKind::busy.
    std::chrono::milliseconds busyTimeout{5000};
    // Opens an existing file for reading only: nothing is created, migrated
    // or written, and every write through the store fails. For readers that
    // must leave the history exactly as it is (export) while a recorder may
    // be writing it.
    bool readOnly = false;
};

// One connection, used from one thread (the recorder's). Other processes may
// read the same file at the same time: the file is in WAL mode, so readers and
// the one writer do not block each other, and a writer waits for another
// writer's lock (five seconds unless the options say otherwise) before failing.
//
// Durability: commits use synchronous=NORMAL, which in WAL mode survives a
// crash of the process but may lose the last commits on a power cut. A change
// set marked `durable` is committed with synchronous=FULL (set just before
// the transaction and restored just after), so that the WAL is synced before
// apply() returns; no checkpoint is forced, as a synced WAL is already
// durable.
class SqliteRecordingStore final : public recording::RecordingStore,
                                   public recording::SessionHistoryReader,
                                   public recording::HistoryImporter {
  public:
    // Opens the store at `path`, creating its folder (mode 0700) and the file
    // (mode 0600) when absent, and brings its layout up to date. Fails when
    // the folder or file cannot be made, the file is not a SQLite database,
    // or it was written by a later release (its layout is then untouched).
    // The error's kind tells these apart. Opened `readOnly`, it fails as well
    // when the file is missing or has an older layout.
    static Result<std::unique_ptr<SqliteRecordingStore>, StoreError> open(
        const std::filesystem::path& path, const SqliteStoreOptions& options = {});
    // A private store in memory, gone when the object ends.
    static Result<std::unique_ptr<SqliteRecordingStore>, StoreError> openInMemory();

    // In one transaction: session upserts, then segments, confirmations and
    // PDF identities, then session deletions. Every segment and confirmation
    // must name its session (an existing one, or one upserted by the same
    // set); otherwise, or on any other failure, nothing is applied.
    Result<void, StoreError> apply(const recording::StoreChangeSet& changes) override;

    Result<std::optional<recording::StudySession>, StoreError> loadSession(const Uuid& id) override;
    // Ordered by start date, then id; the start-date bounds are inclusive
    // (`startingAtOrAfter`) and exclusive (`startingBefore`).
    Result<std::vector<recording::StudySession>, StoreError> listSessions(
        const recording::SessionQuery& query) override;
    // With their children, oldest first.
    Result<std::vector<recording::StudySession>, StoreError> liveSessions() override;
    Result<std::size_t, StoreError> sessionCount() override;
    Result<std::size_t, StoreError> segmentCount() override;
    Result<void, StoreError> deleteAllSessions() override;

    // Walks hold one read transaction from their first row to their end, so
    // they see one consistent history even while another process records;
    // until a walk ends, that process's write-ahead log cannot be folded back
    // past the walk's snapshot and keeps growing. A visitor may call this
    // store's reads; a write from inside a walk may fail as busy and may or
    // may not be visited. Each walk prepares its own statements, parsed once
    // per walk.
    Result<void, StoreError> forEachSession(const recording::SessionWalkQuery& query,
                                            const SessionVisitor& visitor) override;
    // Reads one session row per selected session and one segment row per
    // visit; sessions outside `query.sessions` are skipped by id before their
    // row is decoded.
    Result<void, StoreError> forEachSegment(const recording::SegmentWalkQuery& query,
                                            const SegmentVisitor& visitor) override;
    // One grouped scan of the segments table, joined to each PDF identity's
    // current class.
    Result<void, StoreError> forEachUnclassifiedActivityTally(const TallyVisitor& visitor) override;

    // See SqliteHistoryImport for how the connection is tuned meanwhile. The
    // import must end before this store does.
    Result<std::unique_ptr<recording::HistoryImport>, StoreError> beginImport() override;

    // Rules come ordered by their key.
    Result<std::vector<classification::AppClassification>, StoreError> appClassifications()
        override;
    Result<void, StoreError> saveAppClassification(
        const classification::AppClassification& rule) override;
    Result<void, StoreError> deleteAllAppClassifications() override;
    Result<bool, StoreError> deleteAppClassification(const std::string& bundleIdentifier) override;
    Result<std::vector<classification::WebsiteClassification>, StoreError> websiteClassifications()
        override;
    Result<void, StoreError> saveWebsiteClassification(
        const classification::WebsiteClassification& rule) override;
    Result<void, StoreError> deleteAllWebsiteClassifications() override;
    Result<bool, StoreError> deleteWebsiteClassification(const std::string& hostname) override;

    // Ordered by creation date, then id.
    Result<std::vector<classification::LocalPDFIdentity>, StoreError> pdfIdentities(
        const std::optional<Uuid>& session) override;
    Result<void, StoreError> savePDFIdentity(
        const classification::LocalPDFIdentity& identity) override;
    // Clears the label and its source on every PDF identity whose label came
    // from the filename, and the copies of such labels on segments, so that no
    // file name stays in the history. Returns the number of identities changed.
    Result<std::size_t, StoreError> clearFilenameDerivedPDFLabels() override;
    Result<void, StoreError> deleteAllPDFIdentities() override;
    Result<std::optional<classification::LocalPDFPreferences>, StoreError> localPDFPreferences()
        override;
    // Keeps a single record: one saved under another id replaces it.
    Result<void, StoreError> saveLocalPDFPreferences(
        const classification::LocalPDFPreferences& preferences) override;
    Result<void, StoreError> deleteLocalPDFPreferences() override;

  private:
    explicit SqliteRecordingStore(std::unique_ptr<SqliteConnection> connection)
        : connection_(std::move(connection)) {}
    static Result<std::unique_ptr<SqliteRecordingStore>, StoreError> prepare(
        std::unique_ptr<SqliteConnection> connection, const SqliteStoreOptions& options);

    Result<void, StoreError> applyInTransaction(const recording::StoreChangeSet& changes);
    Result<void, StoreError> deleteByIds(const char* sql, const std::vector<Uuid>& ids);
    // Runs a DELETE whose one parameter is `key`; whether it removed a row.
    Result<bool, StoreError> deleteOne(const char* sql, std::string_view key);
    Result<void, StoreError> loadChildren(recording::StudySession& session);
    Result<std::vector<recording::StudySession>, StoreError> readSessions(StatementLoan& statement,
                                                                          bool includeChildren);
    Result<void, StoreError> execute(const std::string& sql);
    // The one integer a count query gives.
    Result<std::size_t, StoreError> rowCount(const char* sql);
    // The sessions of `range` in walk order, ready to step.
    Result<std::unique_ptr<SqliteStatement>, StoreError> prepareSessionWalk(
        const recording::SessionRange& range);

    std::unique_ptr<SqliteConnection> connection_;
};

}  // namespace lumenote::store
