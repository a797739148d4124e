#include "portability/export_file.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace lumenote::portability {

namespace {

// Ends the name of the temporary sibling, as for every atomic write of the
// system, so that anything listing the folder can skip it by name.
constexpr std::string_view kTemporarySuffix = ".temporary";

std::filesystem::path folderOf(const std::filesystem::path& destination) {
    return destination.has_parent_path() ? destination.parent_path() : std::filesystem::path(".");
}

ExportError failureFor(const std::filesystem::path& destination, int systemError) {
    return ExportError{ExportFailure::writeFailed,
                       destination.string() + ": " + std::strerror(systemError)};
}

}  // namespace

Result<std::unique_ptr<AtomicExportFile>, ExportError> AtomicExportFile::create(
    const std::filesystem::path& destination, FileWriteOperations& operations) {
    if (!destination.has_filename()) {
        return fail(failureFor(destination, EISDIR));
    }
    std::string temporary = (folderOf(destination) / ("." + destination.filename().string() +
                                                      ".XXXXXX" + std::string(kTemporarySuffix)))
                                .string();
    const int descriptor =
        ::mkostemps(temporary.data(), static_cast<int>(kTemporarySuffix.size()), O_CLOEXEC);
    if (descriptor < 0) {
        return fail(failureFor(destination, errno));
    }
    auto file = std::unique_ptr<AtomicExportFile>(
        new AtomicExportFile(destination, std::move(temporary), descriptor, operations));
    if (::fchmod(descriptor, 0600) != 0) {
        return fail(file->failure(errno));
    }
    return file;
}

AtomicExportFile::~AtomicExportFile() {
    if (!committed_) {
        discard();
    }
}

ExportError AtomicExportFile::failure(int systemError) const {
    return failureFor(destination_, systemError);
}

void AtomicExportFile::discard() {
    if (descriptor_ >= 0) {
        ::close(descriptor_);
        descriptor_ = -1;
    }
    ::unlink(temporary_.c_str());
}

Result<void, ExportError> AtomicExportFile::write(std::string_view bytes) {
    while (!bytes.empty()) {
        const long written = operations_.write(descriptor_, bytes.data(), bytes.size());
        if (written < 0) {
            if (errno == EINTR) {
                continue;
            }
            return fail(failure(errno));
        }
        if (written == 0) {
            // No progress and no error: stop rather than spin.
            return fail(failure(EIO));
        }
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return {};
}

Result<void, ExportError> AtomicExportFile::commit() {
    if (operations_.fsync(descriptor_) != 0) {
        const int error = errno;
        discard();
        return fail(failure(error));
    }
    const int descriptor = descriptor_;
    descriptor_ = -1;
    if (::close(descriptor) != 0) {
        const int error = errno;
        discard();
        return fail(failure(error));
    }
    if (operations_.rename(temporary_.c_str(), destination_.c_str()) != 0) {
        const int error = errno;
        discard();
        return fail(failure(error));
    }
    committed_ = true;
    const int folder = ::open(folderOf(destination_).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0) {
        return fail(failure(errno));
    }
    const bool synced = operations_.fsync(folder) == 0;
    const int error = errno;
    ::close(folder);
    if (!synced) {
        return fail(failure(error));
    }
    return {};
}

}  // namespace lumenote::portability
