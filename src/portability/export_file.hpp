// An export file written in one piece: the bytes go to a temporary sibling
// of the destination, which replaces the destination only once it is whole
// and synced, so that a failed or interrupted export never leaves a
// half-written file under the chosen name.
#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "foundation/private_file.hpp"
#include "foundation/result.hpp"
#include "portability/export_output.hpp"

namespace lumenote::portability {

// The temporary sibling is "." + the file's name + a random part +
// ".temporary", created with mode 0600 in the destination's folder (which
// must exist; it is neither created nor changed), so that the rename
// stays within one file system. The export is private to the user like the
// rest of the history: the finished file keeps mode 0600. An existing
// destination is replaced; a symbolic link there is replaced by the file,
// its target untouched. Failures name the destination and the system's
// reason. Until commit() succeeds, ending the object removes the
// temporary file and leaves any previous destination file as it was.
class AtomicExportFile final : public ByteSink {
  public:
    // Creates the temporary sibling of `destination`. `operations` (which
    // must outlive the file) lets tests make a write, sync or rename fail.
    static Result<std::unique_ptr<AtomicExportFile>, ExportError> create(
        const std::filesystem::path& destination,
        FileWriteOperations& operations = systemFileWriteOperations());
    ~AtomicExportFile() override;
    AtomicExportFile(const AtomicExportFile&) = delete;
    AtomicExportFile& operator=(const AtomicExportFile&) = delete;

    Result<void, ExportError> write(std::string_view bytes) override;
    // Syncs the file, renames it over the destination and syncs the folder
    // so that the rename survives a power cut. After a failure before the
    // rename nothing remains of the temporary file; a failure to sync the
    // folder is still a failure, though the whole file is then in place.
    Result<void, ExportError> commit();

  private:
    AtomicExportFile(std::filesystem::path destination, std::string temporary, int descriptor,
                     FileWriteOperations& operations)
        : destination_(std::move(destination)),
          temporary_(std::move(temporary)),
          descriptor_(descriptor),
          operations_(operations) {}
    // The failure with the destination and `systemError`'s text as reason.
    ExportError failure(int systemError) const;
    void discard();

    std::filesystem::path destination_;
    std::string temporary_;
    int descriptor_;  // -1 once closed
    FileWriteOperations& operations_;
    bool committed_ = false;
};

}  // namespace lumenote::portability
