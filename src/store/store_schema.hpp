// The numbered schema migrations of the object store, and the runner that
// brings a database file up to the layout this release writes.
#pragma once

#include <span>
#include <string_view>

#include "foundation/result.hpp"
#include "recording/recording_store.hpp"
#include "store/sqlite_connection.hpp"

namespace lumenote::store {

// One step of the layout. A released migration is never edited: a change of
// layout is a new migration with the next number.
struct SchemaMigration {
    long long version;  // 1, 2, 3 ... without gaps
    std::string_view description;
    std::string_view sql;  // one or more statements
};

// The migrations of this release, in order.
std::span<const SchemaMigration> storeMigrations();

// The highest migration recorded in the file; 0 for a file that has none.
Result<long long, StoreError> recordedSchemaVersion(SqliteConnection& connection);

// Applies the migrations the file has not recorded yet, all of them in one
// transaction that also records each one in `schema_migrations`; a failing
// migration leaves the file as it was. A file recording a version above the
// last of `migrations` (written by a later release) is refused untouched,
// with the kind newerSchema.
// The transaction is taken with BEGIN IMMEDIATE and the version read again
// inside it, so that two processes opening a new file never migrate it twice.
Result<void, StoreError> migrate(SqliteConnection& connection,
                                 std::span<const SchemaMigration> migrations);

// Succeeds when the file records exactly the last of `migrations`, and
// changes nothing either way: for a connection that may not write. A file of
// a later release fails with the kind newerSchema; an older or empty one
// (which only migrate() can bring up to date) with the kind other.
Result<void, StoreError> requireCurrentLayout(SqliteConnection& connection,
                                              std::span<const SchemaMigration> migrations);

}  // namespace lumenote::store
