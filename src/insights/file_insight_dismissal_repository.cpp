#include "insights/file_insight_dismissal_repository.hpp"

namespace lumenote::insights {

std::filesystem::path FileInsightDismissalRepository::pathFor(const UserPaths& paths) {
    return paths.applicationData() / "Insights" / kInsightDismissalFileName;
}

FileInsightDismissalRepository::FileInsightDismissalRepository(std::filesystem::path path,
                                                               Clock now,
                                                               FileWriteOperations& operations)
    : path_(std::move(path)), now_(std::move(now)), operations_(operations) {}

InsightDismissalLoad FileInsightDismissalRepository::load() {
    const VersionedJsonLoad loaded =
        loadVersionedJson(path_, kMaximumInsightDismissalFileBytes, kInsightDismissalFormatVersion,
                          "formatVersion", now_());
    InsightDismissalLoad result;
    switch (loaded.status) {
        case VersionedJsonStatus::missing:
            result.status = InsightDismissalLoadStatus::missing;
            return result;
        case VersionedJsonStatus::newerVersion:
            result.status = InsightDismissalLoadStatus::unsupportedVersion;
            result.formatVersion = loaded.formatVersion;
            return result;
        case VersionedJsonStatus::quarantined:
            result.status = InsightDismissalLoadStatus::invalidRecord;
            return result;
        case VersionedJsonStatus::refused:
            result.status = InsightDismissalLoadStatus::refused;
            result.error = loaded.error;
            return result;
        case VersionedJsonStatus::loaded:
            break;
    }
    if (auto document = decodeInsightDismissalDocument(loaded.text)) {
        result.status = InsightDismissalLoadStatus::loaded;
        result.document = std::move(*document);
        return result;
    }
    if (!private_file::quarantine(path_, now_())) {
        result.status = InsightDismissalLoadStatus::refused;
        result.error = PrivateFileError::quarantineFailed;
        return result;
    }
    result.status = InsightDismissalLoadStatus::invalidRecord;
    return result;
}

Result<void, PrivateFileError> FileInsightDismissalRepository::save(
    const InsightDismissalDocument& document) {
    return private_file::writeAtomically(path_, encodeInsightDismissalDocument(document),
                                         operations_);
}

}  // namespace lumenote::insights
