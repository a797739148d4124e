#include "foundation/private_file.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cassert>
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <vector>

#include <nlohmann/json.hpp>

#include "foundation/atomic_file_writer.hpp"

namespace lumenote {
inline namespace foundation {

namespace {

constexpr mode_t kPrivateFolderMode = 0700;
constexpr mode_t kPermissionBits = 07777;

// A quarantine name is taken again only when another process creates it
// between the look-up and the move; a few retries cover that.
constexpr int kQuarantineAttempts = 8;

// Closes a descriptor when it goes out of scope.
class Descriptor {
  public:
    explicit Descriptor(int descriptor) : descriptor_(descriptor) {}
    ~Descriptor() {
        if (descriptor_ >= 0) {
            ::close(descriptor_);
        }
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int get() const { return descriptor_; }

  private:
    int descriptor_;
};

PrivateFileError openFailure(int error) {
    switch (error) {
        case ENOENT:
            return PrivateFileError::missing;
        case ELOOP:
            return PrivateFileError::symbolicLink;
        case ENXIO:  // a socket
            return PrivateFileError::notRegularFile;
        default:
            return PrivateFileError::unreadable;
    }
}

bool exceedsCap(off_t size, std::size_t maximumBytes) {
    return static_cast<std::uintmax_t>(size) > static_cast<std::uintmax_t>(maximumBytes);
}

// Reads to the end of `descriptor`, starting with room for `expectedSize`
// bytes. Fails with `tooLarge` as soon as more than `maximumBytes` arrive:
// the size seen before reading may be stale, or wrong (files under /proc).
Result<std::string, PrivateFileError> readAll(int descriptor, std::size_t expectedSize,
                                              std::size_t maximumBytes) {
    // One byte beyond the cap is room enough to see that the file grew.
    const std::size_t ceiling =
        maximumBytes < std::numeric_limits<std::size_t>::max() ? maximumBytes + 1 : maximumBytes;
    std::string contents(std::min(expectedSize + 1, ceiling), '\0');
    std::size_t filled = 0;
    for (;;) {
        if (filled == contents.size()) {
            if (filled > maximumBytes) {
                return fail(PrivateFileError::tooLarge);
            }
            contents.resize(std::min(ceiling, std::max<std::size_t>(filled * 2, 4096)));
        }
        const ssize_t count =
            ::read(descriptor, contents.data() + filled, contents.size() - filled);
        if (count < 0) {
            if (errno == EINTR) {
                continue;
            }
            return fail(PrivateFileError::unreadable);
        }
        if (count == 0) {
            break;
        }
        filled += static_cast<std::size_t>(count);
    }
    if (filled > maximumBytes) {
        return fail(PrivateFileError::tooLarge);
    }
    contents.resize(filled);
    return contents;
}

std::filesystem::path quarantineCandidate(const std::filesystem::path& path, long long seconds,
                                          int counter) {
    std::string name = path.stem().string() + ".corrupt-" + std::to_string(seconds);
    if (counter > 1) {
        name += "-" + std::to_string(counter);
    }
    name += path.extension().string();
    return path.parent_path() / name;
}

// Moves `from` to `to` unless `to` exists. Returns 0 or -1 with errno set
// (EEXIST when `to` was taken).
int renameWithoutReplacing(const std::filesystem::path& from, const std::filesystem::path& to) {
    if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) {
        return 0;
    }
    if (errno != EINVAL && errno != ENOSYS) {
        return -1;
    }
    // A file system (or kernel) without no-replace renames: the name was free
    // when quarantinePath looked, which is as good as it gets there.
    return ::rename(from.c_str(), to.c_str());
}

}  // namespace

std::string_view describe(PrivateFileError error) {
    switch (error) {
        case PrivateFileError::missing:
            return "The file does not exist.";
        case PrivateFileError::symbolicLink:
            return "The file is a symbolic link, which is never followed.";
        case PrivateFileError::notRegularFile:
            return "The path is not a regular file.";
        case PrivateFileError::tooLarge:
            return "The file is larger than allowed and was not read.";
        case PrivateFileError::unreadable:
            return "The file could not be read.";
        case PrivateFileError::folderUnusable:
            return "The folder could not be created or made private.";
        case PrivateFileError::writeFailed:
            return "The file could not be written safely.";
        case PrivateFileError::quarantineFailed:
            return "The damaged file could not be moved aside.";
    }
    return "The file could not be used.";
}

long FileWriteOperations::write(int descriptor, const char* data, std::size_t size) {
    return ::write(descriptor, data, size);
}

int FileWriteOperations::fsync(int descriptor) {
    return ::fsync(descriptor);
}

int FileWriteOperations::rename(const char* from, const char* to) {
    return ::rename(from, to);
}

FileWriteOperations& systemFileWriteOperations() {
    static FileWriteOperations operations;
    return operations;
}

namespace private_file {

Result<void, PrivateFileError> ensureFolder(const std::filesystem::path& folder) {
    // "a/b/" names the folder "a/b".
    const std::filesystem::path target = folder.has_filename() ? folder : folder.parent_path();
    if (target.empty()) {
        return fail(PrivateFileError::folderUnusable);
    }
    std::vector<std::filesystem::path> missing;
    struct stat info {};
    for (std::filesystem::path current = target; !current.empty();
         current = current.parent_path()) {
        if (::stat(current.c_str(), &info) == 0) {
            break;
        }
        if (errno != ENOENT) {
            return fail(PrivateFileError::folderUnusable);
        }
        missing.push_back(current);
        if (current == current.parent_path()) {
            break;
        }
    }
    for (auto it = missing.rbegin(); it != missing.rend(); ++it) {
        if (::mkdir(it->c_str(), kPrivateFolderMode) == 0) {
            // The umask may have taken bits away from the owner.
            if (::chmod(it->c_str(), kPrivateFolderMode) != 0) {
                return fail(PrivateFileError::folderUnusable);
            }
        } else if (errno != EEXIST) {
            return fail(PrivateFileError::folderUnusable);
        }
    }
    if (::stat(target.c_str(), &info) != 0 || !S_ISDIR(info.st_mode)) {
        return fail(PrivateFileError::folderUnusable);
    }
    if ((info.st_mode & kPermissionBits) != kPrivateFolderMode &&
        ::chmod(target.c_str(), kPrivateFolderMode) != 0) {
        return fail(PrivateFileError::folderUnusable);
    }
    return {};
}

Result<std::string, PrivateFileError> read(const std::filesystem::path& path,
                                           std::size_t maximumBytes) {
    // Looking first keeps a device or socket from being opened at all; the
    // checks on the opened descriptor below are the ones that cannot race.
    struct stat info {};
    if (::lstat(path.c_str(), &info) != 0) {
        return fail(openFailure(errno));
    }
    if (S_ISLNK(info.st_mode)) {
        return fail(PrivateFileError::symbolicLink);
    }
    if (!S_ISREG(info.st_mode)) {
        return fail(PrivateFileError::notRegularFile);
    }
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) {
        return fail(openFailure(errno));
    }
    Descriptor file(descriptor);
    if (::fstat(file.get(), &info) != 0) {
        return fail(PrivateFileError::unreadable);
    }
    if (!S_ISREG(info.st_mode)) {
        return fail(PrivateFileError::notRegularFile);
    }
    if (exceedsCap(info.st_size, maximumBytes)) {
        return fail(PrivateFileError::tooLarge);
    }
    return readAll(file.get(), static_cast<std::size_t>(info.st_size), maximumBytes);
}

Result<void, PrivateFileError> writeAtomically(const std::filesystem::path& path,
                                               std::string_view contents,
                                               FileWriteOperations& operations,
                                               Durability durability) {
    auto writer = AtomicFileWriter::create(path, operations, durability);
    if (!writer) {
        return fail(writer.error());
    }
    if (auto appended = writer->append(contents); !appended) {
        return appended;
    }
    return writer->commit();
}

std::filesystem::path quarantinePath(const std::filesystem::path& path, Date now) {
    assert(std::isfinite(now.unixSeconds()));
    const auto seconds = static_cast<long long>(std::floor(now.unixSeconds()));
    for (int counter = 1;; ++counter) {
        std::filesystem::path candidate = quarantineCandidate(path, seconds, counter);
        struct stat info {};
        // A name that cannot even be looked at is returned too: the move
        // then reports the problem instead of this loop running forever.
        if (::lstat(candidate.c_str(), &info) != 0) {
            return candidate;
        }
    }
}

Result<std::filesystem::path, PrivateFileError> quarantine(const std::filesystem::path& path,
                                                           Date now) {
    struct stat info {};
    if (::lstat(path.c_str(), &info) != 0) {
        return fail(PrivateFileError::quarantineFailed);
    }
    if (S_ISREG(info.st_mode) && ::fchmodat(AT_FDCWD, path.c_str(), private_file::kPrivateFileMode,
                                            AT_SYMLINK_NOFOLLOW) != 0) {
        return fail(PrivateFileError::quarantineFailed);
    }
    for (int attempt = 0; attempt < kQuarantineAttempts; ++attempt) {
        std::filesystem::path target = quarantinePath(path, now);
        if (renameWithoutReplacing(path, target) == 0) {
            return target;
        }
        if (errno != EEXIST) {
            break;
        }
    }
    return fail(PrivateFileError::quarantineFailed);
}

}  // namespace private_file

std::optional<long long> formatVersionOf(std::string_view text, std::string_view versionKey) {
    const nlohmann::json document = nlohmann::json::parse(text, nullptr, false);
    if (!document.is_object()) {
        return std::nullopt;
    }
    const auto member = document.find(std::string(versionKey));
    if (member == document.end() || !member->is_number_integer()) {
        return std::nullopt;
    }
    if (member->is_number_unsigned()) {
        const auto value = member->get<std::uint64_t>();
        if (value > static_cast<std::uint64_t>(std::numeric_limits<long long>::max())) {
            return std::nullopt;
        }
        return static_cast<long long>(value);
    }
    return member->get<long long>();
}

VersionedJsonLoad loadVersionedJson(const std::filesystem::path& path, std::size_t maximumBytes,
                                    long long supportedVersion, std::string_view versionKey,
                                    Date now) {
    VersionedJsonLoad load;
    auto contents = private_file::read(path, maximumBytes);
    if (!contents) {
        if (contents.error() == PrivateFileError::missing) {
            load.status = VersionedJsonStatus::missing;
        } else {
            load.status = VersionedJsonStatus::refused;
            load.error = contents.error();
        }
        return load;
    }

    load.formatVersion = formatVersionOf(*contents, versionKey);
    if (!load.formatVersion || *load.formatVersion < 1) {
        auto moved = private_file::quarantine(path, now);
        if (!moved) {
            load.status = VersionedJsonStatus::refused;
            load.error = moved.error();
            return load;
        }
        load.status = VersionedJsonStatus::quarantined;
        load.movedTo = std::move(*moved);
        return load;
    }
    if (*load.formatVersion > supportedVersion) {
        load.status = VersionedJsonStatus::newerVersion;
        return load;
    }
    load.status = VersionedJsonStatus::loaded;
    load.text = std::move(*contents);
    return load;
}

}  // namespace foundation
}  // namespace lumenote
