#include "store/sqlite_history_import.hpp"

#include <cassert>
#include <string>

#include "store/sqlite_indexes.hpp"
#include "store/store_rows.hpp"

namespace lumenote::store {

namespace {

// A plain INSERT of every column: unlike the layout's upsert it never
// replaces a stored row, so a taken id fails the import.
std::string insertSql(const TableLayout& layout) {
    std::string placeholders;
    for (std::size_t index = 1; index <= layout.columns.size(); ++index) {
        placeholders += (index > 1 ? ", ?" : "?") + std::to_string(index);
    }
    return "INSERT INTO " + layout.table + " (" + layout.columnList + ") VALUES (" + placeholders +
           ")";
}

// Inserts each record, linked to `owner` through the layout's last column
// (the owning session of a segment, a confirmation or a PDF identity).
template <typename Record>
Result<void, StoreError> insertOwned(SqliteConnection& connection, const TableLayout& layout,
                                     const std::vector<Record>& records, const Uuid& owner) {
    if (records.empty()) {
        return {};
    }
    auto statement = connection.cached(insertSql(layout));
    if (!statement) {
        return fail(statement.error());
    }
    const int ownerParameter = static_cast<int>(layout.columns.size());
    for (const Record& record : records) {
        bindRow(**statement, record);
        (*statement)->bind(ownerParameter, owner);
        auto inserted = (*statement)->run();
        (*statement)->reset();
        if (!inserted) {
            return inserted;
        }
    }
    return {};
}

std::string importSettings(long long cacheSize) {
    return "PRAGMA foreign_keys = OFF; PRAGMA synchronous = FULL; PRAGMA cache_size = " +
           std::to_string(cacheSize);
}

std::string storeSettings(long long cacheSize) {
    return "PRAGMA foreign_keys = ON; PRAGMA synchronous = NORMAL; PRAGMA cache_size = " +
           std::to_string(cacheSize);
}

}  // namespace

Result<std::unique_ptr<SqliteHistoryImport>, StoreError> SqliteHistoryImport::begin(
    SqliteConnection& connection) {
    auto cacheSize = connection.queryInteger("PRAGMA cache_size");
    if (!cacheSize) {
        return fail(cacheSize.error());
    }
    // The pragmas are ignored inside a transaction, so they come first.
    if (auto tuned = connection.execute(importSettings(-kImportCacheKiB)); !tuned) {
        (void)connection.execute(storeSettings(*cacheSize));
        return fail(tuned.error());
    }
    auto transaction = SqliteTransaction::beginImmediate(connection);
    if (!transaction) {
        (void)connection.execute(storeSettings(*cacheSize));
        return fail(transaction.error());
    }
    return std::unique_ptr<SqliteHistoryImport>(
        new SqliteHistoryImport(connection, std::move(*transaction), *cacheSize));
}

SqliteHistoryImport::~SqliteHistoryImport() {
    // Rolled back (when not committed) before the settings return, since
    // they cannot change inside the transaction.
    transaction_.reset();
    (void)connection_.execute(storeSettings(storeCacheSize_));
}

Result<void, StoreError> SqliteHistoryImport::removeHistoryAndRules() {
    if (auto removed = connection_.execute(
            "DELETE FROM segments; DELETE FROM confirmed_intervals; DELETE FROM pdf_identities; "
            "DELETE FROM sessions; DELETE FROM app_classifications; "
            "DELETE FROM website_classifications");
        !removed) {
        return removed;
    }
    // The tables are empty now: their secondary indexes are built once at
    // the commit, from sorted keys, instead of row by row.
    auto dropped = dropSecondaryIndexes(connection_);
    if (!dropped) {
        return fail(dropped.error());
    }
    deferredIndexes_ = std::move(*dropped);
    return {};
}

Result<bool, StoreError> SqliteHistoryImport::containsSession(const Uuid& id) {
    auto statement = connection_.cached("SELECT count(*) FROM sessions WHERE id = ?1");
    if (!statement) {
        return fail(statement.error());
    }
    (*statement)->bind(1, id);
    auto row = (*statement)->step();
    if (!row) {
        return fail(row.error());
    }
    return *row && (*statement)->integerAt(0) > 0;
}

Result<void, StoreError> SqliteHistoryImport::insertSession(
    const recording::StudySession& session,
    const std::vector<classification::LocalPDFIdentity>& pdfIdentities) {
    {
        auto statement = connection_.cached(insertSql(sessionLayout()));
        if (!statement) {
            return fail(statement.error());
        }
        bindRow(**statement, session);
        if (auto inserted = (*statement)->run(); !inserted) {
            return inserted;
        }
    }
    if (auto inserted = insertOwned(connection_, segmentLayout(), session.segments, session.id);
        !inserted) {
        return inserted;
    }
    if (auto inserted = insertOwned(connection_, confirmedIntervalLayout(),
                                    session.confirmedNoInputIntervals, session.id);
        !inserted) {
        return inserted;
    }
    return insertOwned(connection_, pdfIdentityLayout(), pdfIdentities, session.id);
}

Result<void, StoreError> SqliteHistoryImport::saveAppClassification(
    const classification::AppClassification& rule) {
    auto statement = connection_.cached(appClassificationLayout().upsert);
    if (!statement) {
        return fail(statement.error());
    }
    bindRow(**statement, rule);
    return (*statement)->run();
}

Result<void, StoreError> SqliteHistoryImport::saveWebsiteClassification(
    const classification::WebsiteClassification& rule) {
    auto statement = connection_.cached(websiteClassificationLayout().upsert);
    if (!statement) {
        return fail(statement.error());
    }
    bindRow(**statement, rule);
    return (*statement)->run();
}

Result<void, StoreError> SqliteHistoryImport::commit() {
    assert(transaction_);
    if (!deferredIndexes_.empty()) {
        // Building an index sorts in memory up to the page cache's size, on
        // top of the cache itself: the cache shrinks first.
        if (auto shrunk =
                connection_.execute("PRAGMA cache_size = -" + std::to_string(kIndexBuildCacheKiB));
            !shrunk) {
            return shrunk;
        }
    }
    for (const std::string& create : deferredIndexes_) {
        if (auto created = connection_.execute(create); !created) {
            return created;
        }
    }
    deferredIndexes_.clear();
    auto committed = transaction_->commit();
    if (committed) {
        transaction_.reset();
    }
    return committed;
}

}  // namespace lumenote::store
