#include "portability/backup_error.hpp"

#include <fmt/format.h>

namespace lumenote::portability {

namespace invalid_record {

std::string overlappingActiveConfirmation(const Uuid& interval) {
    return "overlapping active confirmation " + interval.upperString();
}

std::string invalidSession(const Uuid& session) {
    return "invalid session " + session.upperString();
}

std::string invalidSessionAt(std::size_t position) {
    return fmt::format("invalid session at position {}", position);
}

std::string invalidSegment(const Uuid& segment) {
    return "invalid activity segment " + segment.upperString();
}

std::string invalidConfirmation(const Uuid& interval) {
    return "invalid confirmed interval " + interval.upperString();
}

std::string invalidPDFIdentity(const Uuid& identity) {
    return "invalid PDF identity " + identity.upperString();
}

std::string malformedJson(std::size_t byteOffset) {
    return fmt::format("malformed JSON at byte {}", byteOffset);
}

}  // namespace invalid_record

std::string TallywiseBackupError::message() const {
    switch (failure) {
        case TallywiseBackupFailure::unsupportedVersion:
            return fmt::format(
                "Backup format version {} is not supported by this version of Lumenote.", detail);
        case TallywiseBackupFailure::invalidRecord:
            return "The backup contains an invalid record: " + detail;
        case TallywiseBackupFailure::duplicateIdentifier:
            return "The backup contains a duplicate identifier: " + detail;
        case TallywiseBackupFailure::fileTooLarge:
            return fmt::format("The selected backup exceeds the {} MB safety limit.", detail);
        case TallywiseBackupFailure::invalidFileType:
            return "Choose a .tallywisebackup file.";
        case TallywiseBackupFailure::unsafeFile:
            return "The selected backup must be a regular file, not a folder or symbolic link.";
        case TallywiseBackupFailure::emptyFile:
            return "The selected backup file is empty.";
        case TallywiseBackupFailure::activeSession:
            return "Finish the active session before creating or restoring a backup.";
        case TallywiseBackupFailure::preRestoreBackupFailed:
            return "Lumenote could not create and verify the required pre-restore backup.";
        case TallywiseBackupFailure::unreadableFile:
            return "The selected backup could not be read.";
        case TallywiseBackupFailure::fileChanged:
            return "The selected backup changed while it was being restored. Nothing was "
                   "changed.";
        case TallywiseBackupFailure::writeFailed:
            return "The history backup could not be written.";
        case TallywiseBackupFailure::historyUnavailable:
            return "The current history could not be read or changed: " + detail;
        case TallywiseBackupFailure::replaceNotConfirmed:
            return "Replace requires a verified automatic pre-restore backup. Type RESTORE to "
                   "continue.";
    }
    return {};
}

}  // namespace lumenote::portability
