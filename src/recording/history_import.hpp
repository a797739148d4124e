// The bulk-writing role of the store: whole sessions and rules written in
// one transaction, one session at a time, so that restoring years of
// history never holds more than one session in memory and lands entirely or
// not at all. The SQLite store implements it; a restore depends on this
// interface alone.
#pragma once

#include <memory>
#include <vector>

#include "classification/classification_records.hpp"
#include "foundation/result.hpp"
#include "foundation/store_error.hpp"
#include "foundation/uuid.hpp"
#include "recording/session_records.hpp"

namespace lumenote::recording {

// One open import. Nothing it writes is visible to other connections before
// commit(); an import that ends without a successful commit() is rolled back
// and leaves the store as it was. After a failed call the import can only be
// abandoned.
class HistoryImport {
  public:
    virtual ~HistoryImport() = default;

    // Removes every session with its segments and confirmations, every PDF
    // identity (also those no longer linked to a session) and every
    // application and website rule. The PDF preferences stay.
    virtual Result<void, StoreError> removeHistoryAndRules() = 0;
    // Whether a session with this id is stored (including those inserted by
    // this import).
    virtual Result<bool, StoreError> containsSession(const Uuid& id) = 0;
    // Inserts `session` with its segments and confirmations (their `session`
    // link is set to the session's id, whatever they carry) and the PDF
    // identities seen in it (linked to it likewise). Never replaces a stored
    // record: an id that is taken fails the call.
    virtual Result<void, StoreError> insertSession(
        const StudySession& session,
        const std::vector<classification::LocalPDFIdentity>& pdfIdentities) = 0;
    // Inserts the rule, or replaces the one stored for its key.
    virtual Result<void, StoreError> saveAppClassification(
        const classification::AppClassification& rule) = 0;
    virtual Result<void, StoreError> saveWebsiteClassification(
        const classification::WebsiteClassification& rule) = 0;
    // Commits, synced to disk before returning.
    virtual Result<void, StoreError> commit() = 0;
};

class HistoryImporter {
  public:
    virtual ~HistoryImporter() = default;

    // Begins an import, taking the store's write lock (waiting as long as a
    // write would). While it is open, the store's other calls run inside the
    // import's transaction: reads see what it wrote so far.
    virtual Result<std::unique_ptr<HistoryImport>, StoreError> beginImport() = 0;
};

}  // namespace lumenote::recording
