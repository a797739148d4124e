// Classification rules: saving and clearing the stored rules and the
// session-only overrides, keeping the lookup caches in step with the store.
// A rule or override chosen while a session runs applies from that moment: the
// manager samples again at once rather than at the next tick.
#include "classification/classification_messages.hpp"
#include "classification/local_pdf_classification.hpp"
#include "classification/rule_keys.hpp"
#include "recording/session_manager.hpp"

namespace lumenote {

bool SessionManager::saveApplicationClassification(const std::string& bundleIdentifier,
                                                   const std::string& applicationName,
                                                   ActivityClassification classification) {
    const AppClassification rule{bundleIdentifier, applicationName,
                                 std::string(rawValue(classification)), wallClock_.now()};
    if (!store_.saveAppClassification(rule).ok()) {
        const std::string& name = applicationName.empty() ? bundleIdentifier : applicationName;
        report(classificationFailureMessage(ClassificationFailure::classificationNotSaved, name));
        return false;
    }
    lookup_.setApplicationRule(bundleIdentifier, classification);
    applicationActivated();
    return true;
}

bool SessionManager::saveWebsiteClassification(const std::string& hostname,
                                               ActivityClassification classification) {
    const std::string normalized = normalizedHostname(hostname);
    const WebsiteClassification rule{normalized, std::string(rawValue(classification)),
                                     wallClock_.now()};
    if (normalized.empty() || !store_.saveWebsiteClassification(rule).ok()) {
        report(
            classificationFailureMessage(ClassificationFailure::classificationNotSaved, hostname));
        return false;
    }
    lookup_.setWebsiteRule(normalized, classification);
    applicationActivated();
    return true;
}

bool SessionManager::clearApplicationClassifications() {
    if (auto cleared = store_.deleteAllAppClassifications(); !cleared.ok()) {
        report(classificationFailureMessage(ClassificationFailure::applicationRulesNotCleared, {},
                                            cleared.error().description));
        return false;
    }
    lookup_.clearApplicationRules();
    return true;
}

bool SessionManager::clearWebsiteClassifications() {
    if (auto cleared = store_.deleteAllWebsiteClassifications(); !cleared.ok()) {
        report(classificationFailureMessage(ClassificationFailure::websiteRulesNotCleared, {},
                                            cleared.error().description));
        return false;
    }
    lookup_.clearWebsiteRules();
    return true;
}

bool SessionManager::classifyLocalPDF(const Uuid& pdfIdentifier,
                                      ActivityClassification classification,
                                      LocalPDFClassificationScope scope) {
    const auto known = pdfIdentities_.find(pdfIdentifier);
    if (known == pdfIdentities_.end()) {
        report(classificationFailureMessage(ClassificationFailure::classificationNotSaved,
                                            "this PDF"));
        return false;
    }
    std::vector<LocalPDFIdentity> sessionIdentities;
    for (const auto& [id, identity] : pdfIdentities_) {
        if (activeSession_ && identity.session == activeSession_->id) {
            sessionIdentities.push_back(identity);
        }
    }
    const LocalPDFPreferences preferences = localPDFPreferences_.value_or(LocalPDFPreferences{
        Uuid::generate(), true, std::string(rawValue(ActivityClassification::unclassified))});
    const LocalPDFScopeChanges changes =
        applyPDFScope(classification, scope, known->second, sessionIdentities, preferences);
    const std::string label = known->second.displayLabelStorage.value_or("this PDF");
    for (const LocalPDFIdentity& identity : changes.identities) {
        if (!store_.savePdfIdentity(identity).ok()) {
            report(
                classificationFailureMessage(ClassificationFailure::classificationNotSaved, label));
            return false;
        }
        pdfIdentities_[identity.id] = identity;
    }
    if (changes.preferences) {
        if (!store_.saveLocalPDFPreferences(*changes.preferences).ok()) {
            report(
                classificationFailureMessage(ClassificationFailure::classificationNotSaved, label));
            return false;
        }
        localPDFPreferences_ = changes.preferences;
    }
    if (activeSession_ && scope == LocalPDFClassificationScope::allPDFsInSession) {
        // The rest of the session: PDFs met from now on take the class too.
        sessionPDFClassification_ = classification;
        pdfsGivenSessionClass_.clear();
        for (const LocalPDFIdentity& identity : sessionIdentities) {
            pdfsGivenSessionClass_.insert(identity.id);
        }
    }
    // A PDF given a class of its own keeps it for the rest of the session.
    pdfsGivenSessionClass_.insert(pdfIdentifier);
    applicationActivated();
    return true;
}

bool SessionManager::clearFilenameDerivedPDFLabels() {
    if (!store_.clearFilenameDerivedPdfLabels().ok()) {
        report(classificationFailureMessage(ClassificationFailure::filenameLabelsNotCleared));
        return false;
    }
    std::vector<LocalPDFIdentity> identities;
    for (const auto& [id, identity] : pdfIdentities_) {
        identities.push_back(identity);
    }
    for (LocalPDFIdentity& cleared : withoutFilenameLabels(identities)) {
        pdfIdentities_[cleared.id] = std::move(cleared);
    }
    return true;
}

void SessionManager::setSessionApplicationOverride(const std::string& bundleIdentifier,
                                                   ActivityClassification classification) {
    lookup_.setSessionApplicationOverride(bundleIdentifier, classification);
    applicationActivated();
}

void SessionManager::setTabOverride(const Uuid& tabSessionIdentifier,
                                    ActivityClassification classification) {
    lookup_.setTabOverride(tabSessionIdentifier, classification);
    applicationActivated();
}

}  // namespace lumenote
