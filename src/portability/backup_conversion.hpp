// A backup session as the store keeps it again.
#pragma once

#include <vector>

#include "classification/classification_records.hpp"
#include "portability/backup_records.hpp"
#include "recording/session_records.hpp"

namespace lumenote::portability {

struct RestoredSession {
    recording::StudySession session;  // with its segments and confirmations
    std::vector<classification::LocalPDFIdentity> pdfIdentities;
};

// The records a backup session stands for: every child linked to it, notes
// "" stored as none. Fields a backup does not carry (the stored totals and
// score, the originating template) stay empty.
RestoredSession storedRecords(BackupSession&& session);

// storedRecords(), with the totals, score and confirmed durations computed
// from the segments and confirmations under the session's own calculation
// version (v1 when it has none or one this release does not know), up to
// its end date. The stored version stays as the backup gave it.
RestoredSession restoredSession(BackupSession&& session);

}  // namespace lumenote::portability
