// The classification of local PDFs: the effective class of one PDF, the first
// class of a PDF seen for the first time, and how far a class the user chooses
// for a PDF reaches. Pure functions over the records; the caller saves what
// they return.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "classification/classification_records.hpp"

namespace lumenote::classification {

// The class a local PDF is recorded with: its identity record's own class, or,
// for a PDF that has no identity record yet, the preferences' default.
ActivityClassification localPDFClassification(const LocalPDFIdentity* identity,
                                              const LocalPDFPreferences& preferences);

// What the browser reported about a PDF seen for the first time.
struct NewLocalPDF {
    Uuid id;
    std::string browserBundleIdentifier;
    std::optional<std::string> displayLabel;
    std::optional<BrowserPDFLabelSource> labelSource;
    Date createdAt;
    std::optional<Uuid> session;  // the running session, if any
};

// The identity record for a PDF seen for the first time. It takes its first
// class from `LocalPDFPreferences.defaultClassificationRawValue`, copied as
// text so that a class written by a later version survives unchanged; later
// changes of the default do not reach identities that already exist. A label
// derived from the filename is left out while filename labels are disabled.
LocalPDFIdentity makeLocalPDFIdentity(NewLocalPDF pdf, const LocalPDFPreferences& preferences);

// The records a PDF choice changes; the caller saves exactly these.
struct LocalPDFScopeChanges {
    std::vector<LocalPDFIdentity> identities;        // with their new class
    std::optional<LocalPDFPreferences> preferences;  // with the new default

    bool empty() const { return identities.empty() && !preferences; }
};

// Applies `chosen` with `scope`:
// - thisPDFInSession: `identity` alone takes the class;
// - allPDFsInSession: `identity` and every identity in `sessionIdentities`
//   (the identities created in the running session) take the class;
// - futureDefault: only the preferences' default changes, so PDFs first seen
//   in later sessions start with it; existing identities keep their class.
// Records that already hold `chosen` are not returned, nor is an identity
// listed twice.
LocalPDFScopeChanges applyPDFScope(ActivityClassification chosen, LocalPDFClassificationScope scope,
                                   const LocalPDFIdentity& identity,
                                   std::span<const LocalPDFIdentity> sessionIdentities,
                                   const LocalPDFPreferences& preferences);

// The identities among `identities` whose label came from the filename, with
// that label and its source removed; the others need no change.
std::vector<LocalPDFIdentity> withoutFilenameLabels(std::span<const LocalPDFIdentity> identities);

}  // namespace lumenote::classification
