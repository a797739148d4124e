// The text of a history backup, written piece by piece: the document's
// head, one session at a time, and its tail.
//
// The document is compact JSON (no white space) with its members in a fixed
// order, `formatVersion` first and the sessions last, so that everything but
// the sessions is read before the first session:
//   {"formatVersion":1,"appVersion":...,"createdAt":...,"preferences":{...},
//    "applicationRules":[...],"websiteRules":[...],"sessions":[...]}
// Each record lists its members in the order of its definition in
// backup_records.hpp; optional members that are empty are left out, never
// written as null (the list of confirmations is always written, empty or
// not).
// Dates are numbers: seconds since 2001-01-01T00:00:00Z, the stored form,
// written so that they read back exactly (readers also accept ISO 8601
// text). Identifiers are upper-case UUIDs. The children's raw members are
// named as in the backup format: `classification`, `activitySource`,
// `pdfDisplayLabel`, `pdfLabelSource`, `browserFallbackReason`, `state`,
// `source`, `displayLabel`, `labelSource`.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "portability/backup_records.hpp"

namespace lumenote::portability {

struct BackupDocumentHead {
    std::string appVersion;
    Date createdAt;
    BackupPreferences preferences;
    std::vector<BackupApplicationRule> applicationRules;
    std::vector<BackupWebsiteRule> websiteRules;
};

// Appends everything up to and including the opening of the sessions list.
void appendDocumentHead(std::string& out, const BackupDocumentHead& head);
// Appends one stored session with its segments and confirmations (as a walk
// with children gives it) and the PDF identities seen in it, as the backup
// session it makes (notes that are absent are ""; the stored totals and the
// originating template are not part of it). `first` leaves out the
// separating comma.
void appendSession(std::string& out, const recording::StudySession& session,
                   const std::vector<BackupPDFIdentity>& pdfIdentities, bool first);
// Closes the sessions list and the document.
void appendDocumentTail(std::string& out);

}  // namespace lumenote::portability
