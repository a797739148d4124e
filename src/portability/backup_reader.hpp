// Reading a backup document in two passes over its bytes: a validation that
// checks every record and keeps only counts, metadata, preferences and rules,
// and a walk that hands the sessions out one at a time for a restore.
//
// Checks, in this order (the first failure is reported):
// 1. The text is one JSON object (else "malformed JSON at byte {N}") with
//    each of `formatVersion`, `appVersion`, `createdAt`, `preferences`,
//    `applicationRules`, `websiteRules` and `sessions` exactly once (else
//    "backup metadata or preferences"); members in any order, others
//    ignored. `formatVersion` must be an integer and equal to
//    kBackupFormatVersion (unsupportedVersion) before anything else of the
//    document is decoded.
// 2. The metadata, the preferences and the rules decode and keep their
//    bounds; no two rules share a key (else "invalid ... rule").
// 3. The sessions, in document order: their number and the numbers of their
//    records in total, each session decoded and checked (backup_record_checks.hpp).
// 4. Session, segment, confirmation and PDF identities are unique, each kind
//    on its own (duplicateIdentifier names the lowest repeated one).
// 5. No two confirmations in force overlap within a session (the first
//    session in document order that has such a pair is reported).
//
// Memory: one block of the source, the text and the decoded value of one
// session, and 16 bytes per identity for the uniqueness check. When the
// metadata members come before `sessions` (as this release writes them),
// the validation reads the bytes once; otherwise the sessions are read in a
// second scan.
#pragma once

#include <functional>
#include <memory>

#include "foundation/result.hpp"
#include "portability/backup_error.hpp"
#include "portability/backup_records.hpp"
#include "portability/backup_validation_limits.hpp"
#include "portability/json_root_scanner.hpp"

namespace lumenote::portability {

// Told the number of sessions read so far, every kProgressInterval sessions.
using BackupProgress = std::function<void(std::size_t sessionsRead)>;
inline constexpr std::size_t kProgressInterval = 500;

// The warnings of a report, each when it applies:
//   "The backup contains no sessions."
//   "{N} records hold values this version of Lumenote does not know; they
//    are restored as they are."
//   "{N} of the supported preferences are missing from the backup; those
//    settings stay as they are."
Result<BackupValidationReport, TallywiseBackupError> validateBackupDocument(
    const std::function<std::unique_ptr<ByteSource>()>& openBytes,
    const BackupValidationLimits& limits, const BackupProgress& progress = {});

// Hands each session of a validated document to `visitor` in document
// order, decoded and checked again; stops at the first failure (the
// visitor's own included) and returns it. The visitor may take the
// session's contents; whatever storage it leaves (or gives back) is reused
// for the next session.
using BackupSessionVisitor = std::function<Result<void, TallywiseBackupError>(BackupSession&)>;
Result<void, TallywiseBackupError> forEachBackupSession(ByteSource& bytes,
                                                        const BackupValidationLimits& limits,
                                                        const BackupSessionVisitor& visitor);

}  // namespace lumenote::portability
