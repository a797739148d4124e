// AtomicFileWriter: a file written piece by piece into a temporary sibling
// and put in place whole, for documents too large to build in memory first.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

#include "foundation/private_file.hpp"
#include "foundation/result.hpp"

namespace lumenote {
inline namespace foundation {

// The temporary sibling is named "." + file name + a random part +
// ".temporary" and created with mode 0600, as private_file::writeAtomically
// does (which is this writer with a single append). Appended bytes are
// gathered in a buffer of kBufferBytes and written in large pieces.
//
// Nothing is in place before commit(): a writer that ends without a
// successful commit (a failure, an early return, an exception) removes its
// temporary file, so that no half-written document is ever left behind.
// After any failure every later call fails with `writeFailed` too.
class AtomicFileWriter {
  public:
    static constexpr std::size_t kBufferBytes = 1 << 20;

    // What happens to the folder the file goes into. Lumenote's own folders
    // are created and kept private (mode 0700). A folder the user chose for
    // a file (a backup in ~/Documents) is used as it is, so that saving a
    // file there never narrows who may open the folder; only a folder that
    // does not exist yet is created, private like any new one.
    enum class FolderPolicy { ensurePrivate, useAsItIs };

    // Prepares the parent folder of `path` (when it names one) as `folders`
    // says and creates the temporary sibling. Fails with `folderUnusable`
    // (the folder cannot be created or made private, or is not a folder) or
    // `writeFailed`. `operations` must outlive the writer.
    static Result<AtomicFileWriter, PrivateFileError> create(
        const std::filesystem::path& path,
        FileWriteOperations& operations = systemFileWriteOperations(),
        private_file::Durability durability = private_file::Durability::synced,
        FolderPolicy folders = FolderPolicy::ensurePrivate);

    AtomicFileWriter(AtomicFileWriter&& other) noexcept;
    AtomicFileWriter(const AtomicFileWriter&) = delete;
    AtomicFileWriter& operator=(const AtomicFileWriter&) = delete;
    AtomicFileWriter& operator=(AtomicFileWriter&&) = delete;
    // Removes the temporary file unless the writer was committed.
    ~AtomicFileWriter();

    Result<void, PrivateFileError> append(std::string_view bytes);
    // Writes what is buffered, syncs (unless unsynced) and closes the
    // temporary file, whose complete bytes may then be read back at
    // temporaryPath() before they are put in place.
    Result<void, PrivateFileError> finish();
    // Finishes when not finished yet, renames the temporary file over the
    // target (replacing a symbolic link itself, never its target) and syncs
    // the folder. A failed folder sync is `writeFailed` although the new
    // file is then already in place.
    Result<void, PrivateFileError> commit();

    const std::filesystem::path& temporaryPath() const { return temporary_; }

  private:
    AtomicFileWriter(std::filesystem::path target, std::filesystem::path temporary, int descriptor,
                     FileWriteOperations& operations, private_file::Durability durability);
    Result<void, PrivateFileError> flush();
    Result<void, PrivateFileError> abandon();

    std::filesystem::path target_;
    std::filesystem::path temporary_;
    int descriptor_;
    FileWriteOperations* operations_;
    private_file::Durability durability_;
    std::string buffer_;
    enum class State { writing, finished, committed, failed } state_ = State::writing;
};

}  // namespace foundation
}  // namespace lumenote
