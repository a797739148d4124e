// TallywiseBackupError: why a backup could not be created, validated or
// restored, with its fixed user-facing sentence.
#pragma once

#include <string>
#include <string_view>

#include "foundation/store_error.hpp"
#include "foundation/uuid.hpp"

namespace lumenote::portability {

enum class TallywiseBackupFailure {
    unsupportedVersion,   // detail: the format version as written
    invalidRecord,        // detail: see the details below
    duplicateIdentifier,  // detail: the identifier, upper case
    fileTooLarge,         // detail: the limit in MB
    invalidFileType,
    unsafeFile,
    emptyFile,
    activeSession,
    preRestoreBackupFailed,
    // Failures of this implementation's own that the cases above do not name:
    unreadableFile,       // the file is missing or cannot be opened or read
    fileChanged,          // the file changed between its validation and its restore
    writeFailed,          // the backup file could not be written
    historyUnavailable,   // detail: the store's error
    replaceNotConfirmed,  // the typed confirmation was not RESTORE
};

// The details of `invalidRecord`: the fixed ones, and those of this
// implementation for what they do not name, each followed by the identity
// of the record when one could be read:
//   "invalid session {ID}" (or "invalid session at position {N}", counting
//   from 1, when its id is unreadable), "invalid activity segment {ID}",
//   "invalid confirmed interval {ID}", "invalid PDF identity {ID}": a record
//   that cannot be decoded (a missing or mistyped member, text that is not
//   UTF-8 or holds control characters) or breaks a bound of its own;
//   "malformed JSON at byte {N}" (counting from 0): the file is not one
//   well-formed JSON object (it ends early, or has something after it).
namespace invalid_record {
inline constexpr std::string_view tooManySessions = "too many sessions";
inline constexpr std::string_view tooManySegments = "too many activity segments";
inline constexpr std::string_view tooManyConfirmations = "too many confirmed intervals";
inline constexpr std::string_view tooManyPDFIdentities = "too many PDF identities";
inline constexpr std::string_view tooManyApplicationRules = "too many application rules";
inline constexpr std::string_view tooManyWebsiteRules = "too many website rules";
inline constexpr std::string_view tooManyRecords = "too many records";
inline constexpr std::string_view invalidApplicationRule = "invalid application rule";
inline constexpr std::string_view invalidWebsiteRule = "invalid website rule";
inline constexpr std::string_view metadataOrPreferences = "backup metadata or preferences";

std::string overlappingActiveConfirmation(const Uuid& interval);
std::string invalidSession(const Uuid& session);
std::string invalidSessionAt(std::size_t position);
std::string invalidSegment(const Uuid& segment);
std::string invalidConfirmation(const Uuid& interval);
std::string invalidPDFIdentity(const Uuid& identity);
std::string malformedJson(std::size_t byteOffset);
}  // namespace invalid_record

struct TallywiseBackupError {
    TallywiseBackupFailure failure = TallywiseBackupFailure::invalidRecord;
    std::string detail;

    // The fixed sentence with the detail in its place.
    std::string message() const;

    friend bool operator==(const TallywiseBackupError&, const TallywiseBackupError&) = default;
};

// Shorthands for the errors made most often.
inline TallywiseBackupError backupError(TallywiseBackupFailure failure, std::string detail = {}) {
    return {failure, std::move(detail)};
}
inline TallywiseBackupError invalidRecord(std::string_view detail) {
    return {TallywiseBackupFailure::invalidRecord, std::string(detail)};
}
inline TallywiseBackupError historyUnavailable(const StoreError& error) {
    return {TallywiseBackupFailure::historyUnavailable, error.description};
}

}  // namespace lumenote::portability
