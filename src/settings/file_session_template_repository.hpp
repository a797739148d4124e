// Session templates on disk: "session-templates-v1.json" in the application's
// data folder ($XDG_DATA_HOME/Lumenote), read and written through the private
// file rules.
//
// Loading: a missing file is `missing`. A symbolic link, a non-regular or an
// unreadable file is `invalidFile` and a file above 524,288 bytes `oversized`;
// such files are left where they are. A newer `formatVersion` is
// `unsupportedVersion` and the file is left byte-for-byte untouched. A file
// that cannot be decoded is moved aside as
// "session-templates-v1.corrupt-<seconds>.json" and gives `corruptQuarantined`.
//
// Saving replaces the file atomically through a hidden temporary sibling
// (".session-templates-v1.json.<random>.temporary"), so a failed write leaves
// the previous file whole. It refuses to replace a file that loading would
// refuse (a link, a non-regular file, an oversized file), and refuses a
// document whose text would be larger than the cap, since it could never be
// read back.
#pragma once

#include <filesystem>
#include <functional>

#include "foundation/dates.hpp"
#include "foundation/private_file.hpp"
#include "foundation/user_paths.hpp"
#include "settings/session_template_repository.hpp"

namespace lumenote::settings {

inline constexpr std::size_t kMaximumSessionTemplateFileBytes = 524288;
inline constexpr std::string_view kSessionTemplateFileName = "session-templates-v1.json";

class FileSessionTemplateRepository final : public SessionTemplatePersisting {
  public:
    using Clock = std::function<Date()>;

    // $XDG_DATA_HOME/Lumenote/session-templates-v1.json for these folders.
    static std::filesystem::path pathFor(const UserPaths& paths);

    // `now` dates the name of a quarantined file.
    FileSessionTemplateRepository(std::filesystem::path path, Clock now,
                                  FileWriteOperations& operations = systemFileWriteOperations());

    Result<SessionTemplateRepositoryLoadResult, SessionTemplateRepositoryError> load() override;
    Result<void, SessionTemplateRepositoryError> save(
        const SessionTemplateDocument& document) override;

    const std::filesystem::path& path() const { return path_; }

  private:
    std::filesystem::path path_;
    Clock now_;
    FileWriteOperations& operations_;
};

}  // namespace lumenote::settings
