#include "foundation/atomic_file_writer.hpp"

#include "foundation/private_file.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <utility>

namespace lumenote {
inline namespace foundation {

namespace {

// Ends the name of the temporary sibling, so that anything listing the
// folder can skip a half-written file by its name.
constexpr std::string_view kTemporarySuffix = ".temporary";

bool writeAll(FileWriteOperations& operations, int descriptor, std::string_view contents) {
    std::size_t written = 0;
    while (written < contents.size()) {
        const long count =
            operations.write(descriptor, contents.data() + written, contents.size() - written);
        if (count < 0) {
            if (errno == EINTR) {
                continue;
            }
            return false;
        }
        if (count == 0) {
            // No progress and no error: stop rather than spin.
            return false;
        }
        written += static_cast<std::size_t>(count);
    }
    return true;
}

// Makes the rename durable: a new directory entry survives a power loss only
// once the folder itself is synced.
bool syncFolder(const std::filesystem::path& folder, FileWriteOperations& operations) {
    const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) {
        return false;
    }
    // Some file systems cannot sync a folder at all; there is nothing more to do.
    const bool synced = operations.fsync(descriptor) == 0 || errno == EINVAL;
    ::close(descriptor);
    return synced;
}

std::filesystem::path folderOf(const std::filesystem::path& path) {
    // A bare file name is written in the current folder.
    return path.has_parent_path() ? path.parent_path() : ".";
}

// Creates `folder` and its missing parents (new ones private, mode 0700)
// and leaves a folder that exists as it is.
Result<void, PrivateFileError> createMissingFolder(const std::filesystem::path& folder) {
    std::error_code error;
    if (std::filesystem::is_directory(folder, error)) {
        return {};
    }
    if (std::filesystem::exists(folder, error)) {
        return fail(PrivateFileError::folderUnusable);
    }
    return private_file::ensureFolder(folder);
}

}  // namespace

Result<AtomicFileWriter, PrivateFileError> AtomicFileWriter::create(
    const std::filesystem::path& path, FileWriteOperations& operations,
    private_file::Durability durability, FolderPolicy folders) {
    if (!path.has_filename()) {
        return fail(PrivateFileError::writeFailed);
    }
    // The current folder of a bare file name is not narrowed.
    if (path.has_parent_path()) {
        if (folders == FolderPolicy::ensurePrivate) {
            if (auto ensured = private_file::ensureFolder(path.parent_path()); !ensured) {
                return fail(ensured.error());
            }
        } else if (auto made = createMissingFolder(path.parent_path()); !made) {
            return fail(made.error());
        }
    }
    std::string temporary = (folderOf(path) / ("." + path.filename().string() + ".XXXXXX" +
                                               std::string(kTemporarySuffix)))
                                .string();
    const int descriptor =
        ::mkostemps(temporary.data(), static_cast<int>(kTemporarySuffix.size()), O_CLOEXEC);
    if (descriptor < 0) {
        return fail(PrivateFileError::writeFailed);
    }
    if (::fchmod(descriptor, private_file::kPrivateFileMode) != 0) {
        ::close(descriptor);
        ::unlink(temporary.c_str());
        return fail(PrivateFileError::writeFailed);
    }
    return AtomicFileWriter(path, std::move(temporary), descriptor, operations, durability);
}

AtomicFileWriter::AtomicFileWriter(std::filesystem::path target, std::filesystem::path temporary,
                                   int descriptor, FileWriteOperations& operations,
                                   private_file::Durability durability)
    : target_(std::move(target)),
      temporary_(std::move(temporary)),
      descriptor_(descriptor),
      operations_(&operations),
      durability_(durability) {}

AtomicFileWriter::AtomicFileWriter(AtomicFileWriter&& other) noexcept
    : target_(std::move(other.target_)),
      temporary_(std::move(other.temporary_)),
      descriptor_(std::exchange(other.descriptor_, -1)),
      operations_(other.operations_),
      durability_(other.durability_),
      buffer_(std::move(other.buffer_)),
      state_(std::exchange(other.state_, State::committed)) {}

AtomicFileWriter::~AtomicFileWriter() {
    if (descriptor_ >= 0) {
        ::close(descriptor_);
    }
    if (state_ != State::committed) {
        ::unlink(temporary_.c_str());
    }
}

Result<void, PrivateFileError> AtomicFileWriter::abandon() {
    if (descriptor_ >= 0) {
        ::close(descriptor_);
        descriptor_ = -1;
    }
    ::unlink(temporary_.c_str());
    state_ = State::failed;
    buffer_ = std::string();
    return fail(PrivateFileError::writeFailed);
}

Result<void, PrivateFileError> AtomicFileWriter::flush() {
    if (!buffer_.empty()) {
        if (!writeAll(*operations_, descriptor_, buffer_)) {
            return abandon();
        }
        buffer_.clear();
    }
    return {};
}

Result<void, PrivateFileError> AtomicFileWriter::append(std::string_view bytes) {
    if (state_ != State::writing) {
        return fail(PrivateFileError::writeFailed);
    }
    if (buffer_.size() + bytes.size() <= kBufferBytes) {
        if (buffer_.capacity() < kBufferBytes) {
            buffer_.reserve(kBufferBytes);
        }
        buffer_.append(bytes);
        return {};
    }
    if (auto flushed = flush(); !flushed) {
        return flushed;
    }
    if (bytes.size() >= kBufferBytes) {
        // Too large to gather: written as it is, without a copy.
        return writeAll(*operations_, descriptor_, bytes) ? Result<void, PrivateFileError>()
                                                          : abandon();
    }
    buffer_.append(bytes);
    return {};
}

Result<void, PrivateFileError> AtomicFileWriter::finish() {
    if (state_ == State::finished) {
        return {};
    }
    if (state_ != State::writing) {
        return fail(PrivateFileError::writeFailed);
    }
    if (auto flushed = flush(); !flushed) {
        return flushed;
    }
    buffer_ = std::string();
    if (durability_ == private_file::Durability::synced && operations_->fsync(descriptor_) != 0) {
        return abandon();
    }
    // On some file systems close(2) is where a failed write first shows.
    const int descriptor = std::exchange(descriptor_, -1);
    if (::close(descriptor) != 0) {
        return abandon();
    }
    state_ = State::finished;
    return {};
}

Result<void, PrivateFileError> AtomicFileWriter::commit() {
    if (auto finished = finish(); !finished) {
        return finished;
    }
    if (operations_->rename(temporary_.c_str(), target_.c_str()) != 0) {
        return abandon();
    }
    state_ = State::committed;
    if (durability_ == private_file::Durability::synced &&
        !syncFolder(folderOf(target_), *operations_)) {
        return fail(PrivateFileError::writeFailed);
    }
    return {};
}

}  // namespace foundation
}  // namespace lumenote
