// The SQLite store's bulk import: one write transaction over the store's
// connection, with the connection tuned for a large write while it lasts.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "recording/history_import.hpp"
#include "store/sqlite_connection.hpp"

namespace lumenote::store {

// While an import is open its connection runs with:
// - foreign keys off, so that removing the whole history clears each table
//   at once instead of deleting its rows one by one through the cascades
//   (SQLite skips that only when no foreign key involves the table); the
//   import writes every child after its session and removes children
//   itself, so the links stay whole;
// - a page cache of kImportCacheKiB, so that the random keys of millions of
//   rows are found in memory rather than read back from the write-ahead
//   log. Restoring two million segments (bench/backup_history_main.cpp)
//   took 33.3 s of CPU with 128 MiB, 31.7 s with 160 MiB and 30.2 s with
//   200 MiB, at a peak of 207, 244 and 289 MiB: 160 keeps a margin below
//   the 300 MiB a restore may use;
// - synchronous=FULL, so that the commit is synced before it returns.
// All three are set back to the store's own settings when the import ends,
// committed or not.
class SqliteHistoryImport final : public recording::HistoryImport {
  public:
    static constexpr long long kImportCacheKiB = 160 * 1024;
    static constexpr long long kIndexBuildCacheKiB = 32 * 1024;

    // Tunes the connection and begins the transaction (BEGIN IMMEDIATE).
    static Result<std::unique_ptr<SqliteHistoryImport>, StoreError> begin(
        SqliteConnection& connection);
    ~SqliteHistoryImport() override;

    Result<void, StoreError> removeHistoryAndRules() override;
    Result<bool, StoreError> containsSession(const Uuid& id) override;
    Result<void, StoreError> insertSession(
        const recording::StudySession& session,
        const std::vector<classification::LocalPDFIdentity>& pdfIdentities) override;
    Result<void, StoreError> saveAppClassification(
        const classification::AppClassification& rule) override;
    Result<void, StoreError> saveWebsiteClassification(
        const classification::WebsiteClassification& rule) override;
    Result<void, StoreError> commit() override;

  private:
    SqliteHistoryImport(SqliteConnection& connection, SqliteTransaction transaction,
                        long long storeCacheSize)
        : connection_(connection),
          transaction_(std::move(transaction)),
          storeCacheSize_(storeCacheSize) {}

    SqliteConnection& connection_;
    std::optional<SqliteTransaction> transaction_;  // empty once committed
    long long storeCacheSize_;                      // the connection's own, put back at the end
    std::vector<std::string> deferredIndexes_;      // built again at the commit
};

}  // namespace lumenote::store
