#include "store/store_files.hpp"

#include <sqlite3.h>

#include <system_error>

namespace lumenote::store {

std::filesystem::path storePath(const UserPaths& paths) {
    return paths.applicationData() / "lumenote.sqlite";
}

std::filesystem::path recorderLockPath(const UserPaths& paths) {
    return paths.applicationData() / "lumenote.lock";
}

bool storeIsReadable(const std::filesystem::path& path) {
    std::error_code error;
    if (!std::filesystem::exists(path, error)) {
        return !error;
    }
    sqlite3* database = nullptr;
    bool readable =
        sqlite3_open_v2(path.c_str(), &database, SQLITE_OPEN_READONLY, nullptr) == SQLITE_OK;
    if (readable) {
        readable = sqlite3_exec(database, "SELECT count(*) FROM sqlite_master", nullptr, nullptr,
                                nullptr) == SQLITE_OK;
    }
    sqlite3_close_v2(database);
    return readable;
}

std::string storageOpenFailureMessage(const StoreError& error) {
    return "Local storage could not be opened (" + error.description +
           "). No study activity was recorded.";
}

}  // namespace lumenote::store
