// Where the object store and the recorder lock live, and what the user is told
// when the store cannot be opened.
#pragma once

#include <filesystem>
#include <string>

#include "foundation/user_paths.hpp"
#include "recording/recording_store.hpp"

namespace lumenote::store {

// $XDG_DATA_HOME/Lumenote/lumenote.sqlite
std::filesystem::path storePath(const UserPaths& paths);

// $XDG_DATA_HOME/Lumenote/lumenote.lock, beside the store.
std::filesystem::path recorderLockPath(const UserPaths& paths);

// Whether the store at `path` can be read: opened read-only, its schema
// listed. Creates and changes nothing; a store not yet created is readable
// (the first recording creates it).
bool storeIsReadable(const std::filesystem::path& path);

// The shell's sentence for a store that could not be opened, naming the reason.
std::string storageOpenFailureMessage(const StoreError& error);

}  // namespace lumenote::store
