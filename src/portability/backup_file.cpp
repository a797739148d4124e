#include "portability/backup_file.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <utility>

namespace lumenote::portability {

namespace {

// Reads the file with pread from its start, so that passes never share a
// file position.
class FileByteSource final : public ByteSource {
  public:
    explicit FileByteSource(int descriptor) : descriptor_(descriptor) {}

    std::optional<std::size_t> read(char* into, std::size_t capacity) override {
        while (true) {
            const ssize_t count = ::pread(descriptor_, into, capacity, offset_);
            if (count >= 0) {
                offset_ += count;
                return static_cast<std::size_t>(count);
            }
            if (errno != EINTR) {
                return std::nullopt;
            }
        }
    }

  private:
    int descriptor_;
    off_t offset_ = 0;
};

bool sameTime(const timespec& a, const timespec& b) {
    return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

}  // namespace

Result<BackupFile, TallywiseBackupError> BackupFile::open(const std::filesystem::path& path,
                                                          std::size_t maximumMegabytes) {
    if (!path.filename().string().ends_with(kBackupExtension)) {
        return fail(backupError(TallywiseBackupFailure::invalidFileType));
    }
    return openUnnamed(path, maximumMegabytes);
}

Result<BackupFile, TallywiseBackupError> BackupFile::openUnnamed(const std::filesystem::path& path,
                                                                 std::size_t maximumMegabytes) {
    struct stat info {};
    if (::lstat(path.c_str(), &info) != 0) {
        return fail(backupError(TallywiseBackupFailure::unreadableFile));
    }
    if (!S_ISREG(info.st_mode)) {
        return fail(backupError(TallywiseBackupFailure::unsafeFile));
    }
    if (info.st_size == 0) {
        return fail(backupError(TallywiseBackupFailure::emptyFile));
    }
    const auto limit = static_cast<std::uintmax_t>(maximumMegabytes) * kBytesPerMegabyte;
    if (static_cast<std::uintmax_t>(info.st_size) > limit) {
        return fail(
            backupError(TallywiseBackupFailure::fileTooLarge, std::to_string(maximumMegabytes)));
    }
    // O_NONBLOCK keeps a FIFO put in the file's place meanwhile from
    // blocking the open; the descriptor is checked again below.
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) {
        return fail(backupError(errno == ELOOP ? TallywiseBackupFailure::unsafeFile
                                               : TallywiseBackupFailure::unreadableFile));
    }
    BackupFile file(descriptor, 0, {});
    struct stat opened {};
    if (::fstat(descriptor, &opened) != 0) {
        return fail(backupError(TallywiseBackupFailure::unreadableFile));
    }
    if (!S_ISREG(opened.st_mode) || opened.st_dev != info.st_dev || opened.st_ino != info.st_ino) {
        return fail(backupError(TallywiseBackupFailure::unsafeFile));
    }
    if (opened.st_size == 0) {
        return fail(backupError(TallywiseBackupFailure::emptyFile));
    }
    if (static_cast<std::uintmax_t>(opened.st_size) > limit) {
        return fail(
            backupError(TallywiseBackupFailure::fileTooLarge, std::to_string(maximumMegabytes)));
    }
    ::posix_fadvise(descriptor, 0, 0, POSIX_FADV_SEQUENTIAL);
    file.size_ = opened.st_size;
    file.modified_ = opened.st_mtim;
    return file;
}

BackupFile::BackupFile(BackupFile&& other) noexcept
    : descriptor_(std::exchange(other.descriptor_, -1)),
      size_(other.size_),
      modified_(other.modified_) {}

BackupFile::~BackupFile() {
    if (descriptor_ >= 0) {
        ::close(descriptor_);
    }
}

std::unique_ptr<ByteSource> BackupFile::bytes() const {
    return std::make_unique<FileByteSource>(descriptor_);
}

bool BackupFile::unchanged() const {
    struct stat info {};
    return ::fstat(descriptor_, &info) == 0 && info.st_size == size_ &&
           sameTime(info.st_mtim, modified_);
}

}  // namespace lumenote::portability
