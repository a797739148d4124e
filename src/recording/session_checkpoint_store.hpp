// Where the recovery checkpoint is kept: the store interface, the file store
// in the data folder and the in-memory store for checks without a disk.
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string_view>
#include <utility>

#include "foundation/private_file.hpp"
#include "foundation/result.hpp"
#include "recording/active_session_checkpoint.hpp"
#include "recording/time_providers.hpp"

namespace lumenote::recording {

inline constexpr std::string_view kActiveSessionCheckpointFileName = "active-session-v1.json";
// The largest checkpoint file read, in bytes; a larger one is never opened for reading.
inline constexpr std::size_t kActiveSessionCheckpointByteLimit = 32768;

// What a load found when the file could be looked at.
struct SessionCheckpointLoadResult {
    enum class Kind { checkpoint, missing, corruptQuarantined };

    Kind kind = Kind::missing;
    std::optional<ActiveSessionCheckpoint> checkpoint;  // present exactly for Kind::checkpoint

    static SessionCheckpointLoadResult found(ActiveSessionCheckpoint value) {
        return {Kind::checkpoint, std::move(value)};
    }
    static SessionCheckpointLoadResult missing() { return {Kind::missing, std::nullopt}; }
    static SessionCheckpointLoadResult corruptQuarantined() {
        return {Kind::corruptQuarantined, std::nullopt};
    }

    friend bool operator==(const SessionCheckpointLoadResult&,
                           const SessionCheckpointLoadResult&) = default;
};

enum class SessionCheckpointStoreError {
    oversized,    // the file is larger than kActiveSessionCheckpointByteLimit; left in place
    invalidFile,  // a symbolic link, not a regular file, unreadable, impossible to move
                  // aside, or (when saving) a checkpoint that fails validation
    writeFailed   // the file could not be written or removed; a previous file stays whole
};

// A short English description, the {error} of the recovery failure message.
std::string_view describe(SessionCheckpointStoreError error);

// The three load outcomes are the value of a successful load. A file that
// cannot be looked at safely (oversized, a symbolic link, not a regular file)
// is an error instead: it is neither a checkpoint nor known to be damaged, so
// it is left exactly where it is and the caller reports that recovery failed.
class SessionCheckpointStore {
  public:
    virtual ~SessionCheckpointStore() = default;

    // Reads and validates the checkpoint; a damaged one is moved aside.
    virtual Result<SessionCheckpointLoadResult, SessionCheckpointStoreError> load() = 0;
    // Validates, then replaces the stored checkpoint; an invalid checkpoint is
    // refused with invalidFile and nothing is written.
    virtual Result<void, SessionCheckpointStoreError> save(
        const ActiveSessionCheckpoint& checkpoint) = 0;
    // Removes the stored checkpoint; removing none is a success.
    virtual Result<void, SessionCheckpointStoreError> remove() = 0;
};

// The checkpoint as "active-session-v1.json" in `rootURL`, the data folder.
// The file is private: written atomically with mode 0600 into a folder
// narrowed to 0700. Loading refuses symbolic links and non-regular files
// (invalidFile) and files over 32,768 bytes (oversized) without reading or
// moving them; a file that does not decode or validate, including one of
// another format version, is quarantined as
// "active-session-v1.corrupt-<seconds since 1970>.json" (mode 0600), the
// seconds read from `clock`. Removing a symbolic link removes the link only.
class FileSessionCheckpointStore final : public SessionCheckpointStore {
  public:
    // Keeps references to `clock` and `operations`, which must outlive the store.
    FileSessionCheckpointStore(std::filesystem::path rootURL, WallClock& clock,
                               FileWriteOperations& operations = systemFileWriteOperations());

    const std::filesystem::path& rootURL() const { return rootURL_; }
    std::filesystem::path fileURL() const { return rootURL_ / kActiveSessionCheckpointFileName; }

    Result<SessionCheckpointLoadResult, SessionCheckpointStoreError> load() override;
    Result<void, SessionCheckpointStoreError> save(
        const ActiveSessionCheckpoint& checkpoint) override;
    Result<void, SessionCheckpointStoreError> remove() override;

  private:
    std::filesystem::path rootURL_;
    WallClock& clock_;
    FileWriteOperations& operations_;
};

// The checkpoint in memory, with switches for tests and previews. The members
// are public on purpose: a test arranges and inspects them directly.
class InMemorySessionCheckpointStore final : public SessionCheckpointStore {
  public:
    std::optional<ActiveSessionCheckpoint> checkpoint;
    // Load answers corruptQuarantined and drops the checkpoint, as the file
    // store moves a damaged file aside. A stored checkpoint that fails
    // validation is treated the same way.
    bool returnsCorrupt = false;
    // Save fails with writeFailed and keeps the previous checkpoint.
    bool failWrites = false;
    // Remove fails with writeFailed and keeps the checkpoint.
    bool failRemoves = false;
    int saveCount = 0;    // calls of save, failed ones included
    int removeCount = 0;  // calls of remove, failed ones included

    Result<SessionCheckpointLoadResult, SessionCheckpointStoreError> load() override;
    Result<void, SessionCheckpointStoreError> save(const ActiveSessionCheckpoint& value) override;
    Result<void, SessionCheckpointStoreError> remove() override;
};

}  // namespace lumenote::recording
