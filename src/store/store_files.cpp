#include "store/store_files.hpp"

namespace lumenote::store {

std::filesystem::path storePath(const UserPaths& paths) {
    return paths.applicationData() / "lumenote.sqlite";
}

std::filesystem::path recorderLockPath(const UserPaths& paths) {
    return paths.applicationData() / "lumenote.lock";
}

std::string storageOpenFailureMessage(const StoreError& error) {
    return "Local storage could not be opened (" + error.description +
           "). No study activity was recorded.";
}

}  // namespace lumenote::store
