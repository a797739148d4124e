// ClassificationRules: the user's application, website and local PDF rules,
// the session-only overrides and the lookup caches kept in step with the
// store. One instance is shared by the session manager (which asks it what a
// sample is) and by every front end that changes rules (the command line, the
// settings and replay screens), so the command line never needs a recorder.
//
// Rules chosen while a session records apply from that moment: observers are
// told after every change, and the recorder samples again at once.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "classification/classification_lookup.hpp"
#include "classification/classification_messages.hpp"
#include "classification/classification_rule_store.hpp"
#include "classification/local_pdf_classification.hpp"
#include "foundation/observer_list.hpp"

namespace lumenote::classification {

// A refused or failed rule change, with what its sentence names.
struct ClassificationError {
    ClassificationFailure failure;
    std::string name;    // the application, hostname or PDF label, where the sentence has one
    std::string detail;  // the store error's description, where the sentence has one

    std::string message() const { return classificationFailureMessage(failure, name, detail); }
};

class ClassificationRules {
  public:
    // `now` gives the wall-clock date stamped on saved rules and identities.
    ClassificationRules(ClassificationRuleStore& store, std::function<Date()> now,
                        std::string ownBundleIdentifier);

    // Loads the rules into the caches, the PDF preferences and identities.
    // Returns what could not be loaded (the caches of those stay empty).
    std::vector<ClassificationError> load();

    const ClassificationLookup& lookup() const { return lookup_; }
    bool localPDFFilenameLabelsEnabled() const;

    // ---- stored rules ----
    Result<void, ClassificationError> saveApplicationClassification(
        const std::string& bundleIdentifier, const std::string& applicationName,
        ActivityClassification classification);
    // The hostname is normalised; one that normalises to nothing is refused.
    Result<void, ClassificationError> saveWebsiteClassification(
        const std::string& hostname, ActivityClassification classification);
    // Remove the one rule for exactly this identifier, or for the normalised
    // hostname; true when there was one, false (and nothing changed, no
    // observer told) when there was none.
    Result<bool, ClassificationError> removeApplicationClassification(
        const std::string& bundleIdentifier);
    Result<bool, ClassificationError> removeWebsiteClassification(const std::string& hostname);
    Result<void, ClassificationError> clearApplicationClassifications();
    Result<void, ClassificationError> clearWebsiteClassifications();
    // Removes every rule, PDF identity and the PDF preferences (a reset).
    // Stops at the first failure; what was cleared before it stays cleared.
    Result<void, ClassificationError> clearAll();

    // ---- local PDFs ----
    // Applies a class chosen for a known PDF as far as `scope` reaches. A
    // class chosen for every PDF of the running session also reaches PDFs
    // first met later in it, once: a class chosen for one PDF afterwards wins.
    Result<void, ClassificationError> classifyLocalPDF(const Uuid& pdfIdentifier,
                                                       ActivityClassification classification,
                                                       LocalPDFClassificationScope scope);
    // Removes every PDF label that came from a file name.
    Result<void, ClassificationError> clearFilenameDerivedPDFLabels();

    // The class a sampled local PDF is recorded with, and the identity records
    // that must be saved with the sample (a PDF met for the first time, or one
    // that took the session's class). A PDF without an identifier takes the
    // default class and saves nothing.
    struct PDFSample {
        ActivityClassification classification = ActivityClassification::unclassified;
        std::vector<LocalPDFIdentity> identitiesToSave;
    };
    PDFSample classifyPDFSample(const std::optional<NewLocalPDF>& pdf);

    // ---- the running session ----
    // Session-only choices (overrides, the class for every PDF of the
    // session) last from beginSession to endSession.
    void beginSession(const Uuid& sessionID);
    void endSession();
    void setSessionApplicationOverride(const std::string& bundleIdentifier,
                                       ActivityClassification classification);
    void setTabOverride(const Uuid& tabSessionIdentifier, ActivityClassification classification);

    // Told after every change of a rule, an override or a PDF class.
    ObserverList<>& changed() { return changed_; }

  private:
    void forgetSessionChoices();
    LocalPDFPreferences effectivePDFPreferences() const;

    ClassificationRuleStore& store_;
    std::function<Date()> now_;
    ClassificationLookup lookup_;
    std::optional<LocalPDFPreferences> localPDFPreferences_;
    std::unordered_map<Uuid, LocalPDFIdentity> pdfIdentities_;
    std::optional<Uuid> runningSession_;
    // The class chosen for every local PDF of the running session, and the
    // PDFs that already took it or were given a class of their own since.
    std::optional<ActivityClassification> sessionPDFClassification_;
    std::unordered_set<Uuid> pdfsGivenSessionClass_;
    ObserverList<> changed_;
};

}  // namespace lumenote::classification
