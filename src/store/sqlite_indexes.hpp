// The secondary indexes of a store file, dropped before a bulk load and
// built again after it: one sort of every key at the end is far cheaper than
// keeping each index in order row by row.
#pragma once

#include <string>
#include <vector>

#include "store/sqlite_connection.hpp"

namespace lumenote::store {

// Drops every index written in the schema (not those SQLite keeps for a
// table's key, which have no statement of their own) and returns the
// statements that create them again, in schema order.
Result<std::vector<std::string>, StoreError> dropSecondaryIndexes(SqliteConnection& connection);

}  // namespace lumenote::store
