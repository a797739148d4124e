// BackupRecordDecoder: the JSON text of one member or element of a backup
// (as JsonRootScanner hands it out) decoded into its value with simdjson
// On-Demand, one value at a time.
//
// Members may come in any order; members this release does not know are
// skipped, and a member given twice makes the record invalid. An optional
// member may be absent or null. Dates are numbers of seconds since
// 2001-01-01T00:00:00Z or ISO 8601 text; identifiers are UUID text in either
// letter case; integers must be written without a fraction or exponent.
// Decoding checks types and the presence of required members only; the
// bounds are checked afterwards (backup_record_checks.hpp).
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "foundation/result.hpp"
#include "portability/backup_error.hpp"
#include "portability/backup_records.hpp"
#include "portability/json_root_scanner.hpp"

namespace lumenote::portability {

class BackupRecordDecoder {
  public:
    BackupRecordDecoder();
    ~BackupRecordDecoder();
    BackupRecordDecoder(const BackupRecordDecoder&) = delete;
    BackupRecordDecoder& operator=(const BackupRecordDecoder&) = delete;

    // A member key as the scanner found it (escapes unresolved), resolved;
    // nullopt when it is not valid JSON string content.
    std::optional<std::string> key(std::string_view rawKey);

    // Decodes into `session`, which may hold the previous session: its
    // texts and lists are reused (a walk over millions of records then
    // allocates little). `position` counts the sessions from 1, for the
    // error of one whose id cannot be read. Fails with invalidRecord naming
    // the session or the child that could not be decoded; `session` is then
    // left partly decoded.
    Result<void, TallywiseBackupError> session(const ScannedText& text, std::size_t position,
                                               BackupSession& session);
    // Whole lists of rules; fail with invalidRecord "invalid application
    // rule" / "invalid website rule".
    Result<std::vector<BackupApplicationRule>, TallywiseBackupError> applicationRules(
        const ScannedText& text);
    Result<std::vector<BackupWebsiteRule>, TallywiseBackupError> websiteRules(
        const ScannedText& text);
    // The document's own members; fail with "backup metadata or preferences".
    Result<BackupPreferences, TallywiseBackupError> preferences(const ScannedText& text);
    Result<long long, TallywiseBackupError> integer(const ScannedText& text);
    Result<std::string, TallywiseBackupError> text(const ScannedText& text);
    Result<Date, TallywiseBackupError> date(const ScannedText& text);

  private:
    struct Parser;
    std::unique_ptr<Parser> parser_;
};

}  // namespace lumenote::portability
