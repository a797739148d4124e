#include "store/sqlite_indexes.hpp"

#include <utility>

namespace lumenote::store {

Result<std::vector<std::string>, StoreError> dropSecondaryIndexes(SqliteConnection& connection) {
    std::vector<std::pair<std::string, std::string>> indexes;
    {
        auto statement = connection.cached(
            "SELECT name, sql FROM sqlite_schema WHERE type = 'index' AND sql IS NOT NULL");
        if (!statement) {
            return fail(statement.error());
        }
        while (true) {
            auto row = (*statement)->step();
            if (!row) {
                return fail(row.error());
            }
            if (!*row) {
                break;
            }
            indexes.emplace_back((*statement)->textAt(0), (*statement)->textAt(1));
        }
    }
    std::vector<std::string> creates;
    creates.reserve(indexes.size());
    for (auto& [name, sql] : indexes) {
        if (auto dropped = connection.execute("DROP INDEX \"" + name + "\""); !dropped) {
            return fail(dropped.error());
        }
        creates.push_back(std::move(sql));
    }
    return creates;
}

}  // namespace lumenote::store
