// The advisory lock that lets only one process record at a time: a file
// beside the store, locked with flock and holding the owner's process id.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "foundation/result.hpp"

namespace lumenote::store {

enum class RecorderLockFailure {
    heldByAnotherProcess,  // another open of the lock file holds it
    unusable               // the lock file or its folder could not be opened or locked
};

struct RecorderLockError {
    RecorderLockFailure failure = RecorderLockFailure::unusable;
    // The holder's process id as it wrote it; empty when the file held none
    // (the holder may be between locking and writing it).
    std::optional<long long> holderProcessId;
    std::string detail;  // the system's reason, for `unusable`
};

// The user-facing sentence of a lock failure.
std::string recorderLockMessage(const RecorderLockError& error);

// Held from acquire() until destruction. The lock belongs to the open file
// description, so it is released when the process ends in any way, including
// a crash: a lock file left behind by a dead process never blocks. The
// descriptor is close-on-exec, so programs started by the recorder never
// inherit the lock.
class RecorderLock {
  public:
    // Takes the lock at `path` without waiting, creating the file (mode 0600)
    // and its folder (mode 0700) when absent, and writes this process's id
    // into it. Two RecorderLock objects in one process exclude each other
    // as two processes do.
    static Result<RecorderLock, RecorderLockError> acquire(const std::filesystem::path& path);
    // The process id of a running holder of the lock at `path`, found without
    // touching the lock (so that a recorder starting meanwhile is never
    // refused): the id the holder wrote, when that process is alive. A lock
    // released in order has an empty file; one left by a crash names a dead
    // process. Should that id have been reused by an unrelated process, the
    // lock reads as held.
    static std::optional<long long> runningHolder(const std::filesystem::path& path);

    RecorderLock(RecorderLock&& other) noexcept : descriptor_(other.descriptor_) {
        other.descriptor_ = -1;
    }
    RecorderLock(const RecorderLock&) = delete;
    RecorderLock& operator=(const RecorderLock&) = delete;
    RecorderLock& operator=(RecorderLock&&) = delete;
    // Empties the file (so that no stale id remains) and releases the lock;
    // the file itself stays, as removing it could split two later lockers
    // across two files of the same name.
    ~RecorderLock();

  private:
    explicit RecorderLock(int descriptor) : descriptor_(descriptor) {}

    int descriptor_;
};

}  // namespace lumenote::store
