// The dismissal file on disk: $XDG_DATA_HOME/Lumenote/Insights/
// insight-dismissals-v1.json, read and written through the private file rules
// (size cap, no symbolic links, atomic replacement, folders 0700, files 0600).
//
// Loading reads `formatVersion` first on its own: a version above 1 is
// `unsupportedVersion` and the file is left byte-for-byte as it is. A file
// that is not JSON, has no positive integer version, or holds a record that
// cannot be decoded is moved aside as
// "insight-dismissals-v1.corrupt-<seconds>.json" (never deleted) and gives
// `invalidRecord`. A symbolic link, a non-regular, unreadable or oversized
// file is `refused` and left in place.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include "foundation/dates.hpp"
#include "foundation/private_file.hpp"
#include "foundation/result.hpp"
#include "foundation/user_paths.hpp"
#include "insights/insight_dismissal_document.hpp"

namespace lumenote::insights {

// 1000 records take about 150 KB; the cap leaves room and stops a huge file
// from being read at all.
inline constexpr std::size_t kMaximumInsightDismissalFileBytes = 1048576;
inline constexpr std::string_view kInsightDismissalFileName = "insight-dismissals-v1.json";

enum class InsightDismissalLoadStatus {
    loaded,
    missing,
    unsupportedVersion,
    invalidRecord,
    refused
};

struct InsightDismissalLoad {
    InsightDismissalLoadStatus status = InsightDismissalLoadStatus::missing;
    InsightDismissalDocument document;       // when `loaded`
    std::optional<long long> formatVersion;  // when `unsupportedVersion`
    std::optional<PrivateFileError> error;   // when `refused`
};

// What the dismissal store reads and writes through.
class InsightDismissalPersisting {
  public:
    virtual ~InsightDismissalPersisting() = default;
    virtual InsightDismissalLoad load() = 0;
    // Replaces the whole document; fails with the file error.
    virtual Result<void, PrivateFileError> save(const InsightDismissalDocument& document) = 0;
};

class FileInsightDismissalRepository final : public InsightDismissalPersisting {
  public:
    using Clock = std::function<Date()>;

    // $XDG_DATA_HOME/Lumenote/Insights/insight-dismissals-v1.json.
    static std::filesystem::path pathFor(const UserPaths& paths);

    // `now` dates the name of a file moved aside.
    FileInsightDismissalRepository(std::filesystem::path path, Clock now,
                                   FileWriteOperations& operations = systemFileWriteOperations());

    InsightDismissalLoad load() override;
    Result<void, PrivateFileError> save(const InsightDismissalDocument& document) override;

    const std::filesystem::path& path() const { return path_; }

  private:
    std::filesystem::path path_;
    Clock now_;
    FileWriteOperations& operations_;
};

}  // namespace lumenote::insights
