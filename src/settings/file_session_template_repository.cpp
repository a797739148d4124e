#include "settings/file_session_template_repository.hpp"

#include <sys/stat.h>

namespace lumenote::settings {

namespace {

using LoadResult = SessionTemplateRepositoryLoadResult;
using Error = SessionTemplateRepositoryError;

Error repositoryError(std::optional<PrivateFileError> error) {
    return error == PrivateFileError::tooLarge ? Error::oversized : Error::invalidFile;
}

// Whether the file now at `path` may be replaced: nothing there, or a regular
// file that loading would have read.
Result<void, Error> replaceable(const std::filesystem::path& path) {
    struct stat info {};
    if (::lstat(path.c_str(), &info) != 0) {
        return {};
    }
    if (!S_ISREG(info.st_mode)) {
        return fail(Error::invalidFile);
    }
    if (static_cast<std::size_t>(info.st_size) > kMaximumSessionTemplateFileBytes) {
        return fail(Error::oversized);
    }
    return {};
}

}  // namespace

std::filesystem::path FileSessionTemplateRepository::pathFor(const UserPaths& paths) {
    return paths.applicationData() / kSessionTemplateFileName;
}

FileSessionTemplateRepository::FileSessionTemplateRepository(std::filesystem::path path, Clock now,
                                                             FileWriteOperations& operations)
    : path_(std::move(path)), now_(std::move(now)), operations_(operations) {}

Result<LoadResult, Error> FileSessionTemplateRepository::load() {
    const VersionedJsonLoad loaded =
        loadVersionedJson(path_, kMaximumSessionTemplateFileBytes,
                          kCurrentSessionTemplateFormatVersion, "formatVersion", now_());
    switch (loaded.status) {
        case VersionedJsonStatus::missing:
            return LoadResult::missingFile();
        case VersionedJsonStatus::newerVersion:
            return LoadResult::unsupported(loaded.formatVersion.value_or(0));
        case VersionedJsonStatus::quarantined:
            return LoadResult::quarantined();
        case VersionedJsonStatus::refused:
            return fail(repositoryError(loaded.error));
        case VersionedJsonStatus::loaded:
            break;
    }
    if (auto document = decodeSessionTemplateDocument(loaded.text)) {
        return LoadResult::of(std::move(*document));
    }
    if (!private_file::quarantine(path_, now_())) {
        return fail(Error::invalidFile);
    }
    return LoadResult::quarantined();
}

Result<void, Error> FileSessionTemplateRepository::save(const SessionTemplateDocument& document) {
    if (auto allowed = replaceable(path_); !allowed) {
        return allowed;
    }
    const std::string text = encodeSessionTemplateDocument(document);
    if (text.size() > kMaximumSessionTemplateFileBytes) {
        return fail(Error::oversized);
    }
    if (!private_file::writeAtomically(path_, text, operations_)) {
        return fail(Error::writeFailed);
    }
    return {};
}

}  // namespace lumenote::settings
