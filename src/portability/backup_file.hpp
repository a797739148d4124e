// BackupFile: a backup file opened for reading after the checks made before
// any of its bytes is read, kept open so that every pass over it reads the
// same file.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <filesystem>
#include <memory>

#include "foundation/result.hpp"
#include "portability/backup_error.hpp"
#include "portability/json_root_scanner.hpp"

namespace lumenote::portability {

// The extension every backup file name ends with.
inline constexpr std::string_view kBackupExtension = ".tallywisebackup";
// A megabyte of the size limit.
inline constexpr std::size_t kBytesPerMegabyte = 1'000'000;

class BackupFile {
  public:
    // The checks, in this order: the name ends in ".tallywisebackup"
    // (invalidFileType); the path itself (not followed) is a regular file
    // (unsafeFile: a folder, a symbolic link or anything else); it is not
    // empty (emptyFile); it holds at most `maximumMegabytes` MB
    // (fileTooLarge, measured before reading). Opened without following a
    // link, the descriptor must show the same regular file. A path that
    // does not exist or cannot be opened is unreadableFile.
    static Result<BackupFile, TallywiseBackupError> open(const std::filesystem::path& path,
                                                         std::size_t maximumMegabytes);
    // The same without the name check, for a file about to be given its
    // name (a backup verified before it is put in place).
    static Result<BackupFile, TallywiseBackupError> openUnnamed(const std::filesystem::path& path,
                                                                std::size_t maximumMegabytes);

    BackupFile(BackupFile&& other) noexcept;
    BackupFile(const BackupFile&) = delete;
    BackupFile& operator=(const BackupFile&) = delete;
    BackupFile& operator=(BackupFile&&) = delete;
    ~BackupFile();

    // The file's bytes from its start, read in blocks; each call starts over.
    std::unique_ptr<ByteSource> bytes() const;
    // Whether the file still has the size and modification time it had when
    // it was opened (nothing was written to it since).
    bool unchanged() const;
    std::size_t size() const { return static_cast<std::size_t>(size_); }

  private:
    BackupFile(int descriptor, off_t size, timespec modified)
        : descriptor_(descriptor), size_(size), modified_(modified) {}

    int descriptor_;
    off_t size_;
    timespec modified_;
};

}  // namespace lumenote::portability
