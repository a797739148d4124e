#include "classification/classification_rules.hpp"

#include "classification/rule_keys.hpp"

namespace lumenote::classification {

namespace {

ClassificationError storeFailure(ClassificationFailure failure, const StoreError& error,
                                 std::string name = {}) {
    return ClassificationError{failure, std::move(name), error.description};
}

}  // namespace

ClassificationRules::ClassificationRules(ClassificationRuleStore& store, std::function<Date()> now,
                                         std::string ownBundleIdentifier)
    : store_(store), now_(std::move(now)), lookup_(std::move(ownBundleIdentifier)) {}

std::vector<ClassificationError> ClassificationRules::load() {
    std::vector<ClassificationError> problems;
    if (auto apps = store_.appClassifications(); apps.ok()) {
        lookup_.loadApplicationRules(*apps);
    } else {
        problems.push_back(
            storeFailure(ClassificationFailure::applicationRulesNotLoaded, apps.error()));
    }
    if (auto sites = store_.websiteClassifications(); sites.ok()) {
        lookup_.loadWebsiteRules(*sites);
    } else {
        problems.push_back(
            storeFailure(ClassificationFailure::websiteRulesNotLoaded, sites.error()));
    }
    if (auto pdf = store_.localPDFPreferences(); pdf.ok()) {
        localPDFPreferences_ = *pdf;
    } else {
        problems.push_back(
            storeFailure(ClassificationFailure::pdfPreferencesNotLoaded, pdf.error()));
    }
    // Identities that cannot be read are met again as new PDFs: they take the
    // default class, and their stored record is replaced when saved.
    if (auto identities = store_.pdfIdentities(std::nullopt); identities.ok()) {
        pdfIdentities_.clear();
        for (LocalPDFIdentity& identity : *identities) {
            pdfIdentities_.emplace(identity.id, std::move(identity));
        }
    }
    return problems;
}

bool ClassificationRules::localPDFFilenameLabelsEnabled() const {
    return effectivePDFPreferences().filenameLabelsEnabled;
}

LocalPDFPreferences ClassificationRules::effectivePDFPreferences() const {
    return localPDFPreferences_.value_or(LocalPDFPreferences{});
}

Result<void, ClassificationError> ClassificationRules::saveApplicationClassification(
    const std::string& bundleIdentifier, const std::string& applicationName,
    ActivityClassification classification) {
    const AppClassification rule{bundleIdentifier, applicationName,
                                 std::string(rawValue(classification)), now_()};
    if (auto saved = store_.saveAppClassification(rule); !saved.ok()) {
        return fail(storeFailure(ClassificationFailure::classificationNotSaved, saved.error(),
                                 applicationName.empty() ? bundleIdentifier : applicationName));
    }
    lookup_.setApplicationRule(bundleIdentifier, classification);
    changed_.notify();
    return {};
}

Result<void, ClassificationError> ClassificationRules::saveWebsiteClassification(
    const std::string& hostname, ActivityClassification classification) {
    const std::string normalized = normalizedHostname(hostname);
    if (normalized.empty()) {
        return fail(
            ClassificationError{ClassificationFailure::classificationNotSaved, hostname, {}});
    }
    const WebsiteClassification rule{normalized, std::string(rawValue(classification)), now_()};
    if (auto saved = store_.saveWebsiteClassification(rule); !saved.ok()) {
        return fail(
            storeFailure(ClassificationFailure::classificationNotSaved, saved.error(), hostname));
    }
    lookup_.setWebsiteRule(normalized, classification);
    changed_.notify();
    return {};
}

Result<bool, ClassificationError> ClassificationRules::removeApplicationClassification(
    const std::string& bundleIdentifier) {
    auto removed = store_.deleteAppClassification(bundleIdentifier);
    if (!removed.ok()) {
        return fail(storeFailure(ClassificationFailure::classificationNotRemoved, removed.error(),
                                 bundleIdentifier));
    }
    if (*removed) {
        lookup_.removeApplicationRule(bundleIdentifier);
        changed_.notify();
    }
    return *removed;
}

Result<bool, ClassificationError> ClassificationRules::removeWebsiteClassification(
    const std::string& hostname) {
    const std::string normalized = normalizedHostname(hostname);
    if (normalized.empty()) {
        return false;
    }
    auto removed = store_.deleteWebsiteClassification(normalized);
    if (!removed.ok()) {
        return fail(storeFailure(ClassificationFailure::classificationNotRemoved, removed.error(),
                                 normalized));
    }
    if (*removed) {
        lookup_.removeWebsiteRule(normalized);
        changed_.notify();
    }
    return *removed;
}

Result<void, ClassificationError> ClassificationRules::clearApplicationClassifications() {
    if (auto cleared = store_.deleteAllAppClassifications(); !cleared.ok()) {
        return fail(
            storeFailure(ClassificationFailure::applicationRulesNotCleared, cleared.error()));
    }
    lookup_.clearApplicationRules();
    changed_.notify();
    return {};
}

Result<void, ClassificationError> ClassificationRules::clearWebsiteClassifications() {
    if (auto cleared = store_.deleteAllWebsiteClassifications(); !cleared.ok()) {
        return fail(storeFailure(ClassificationFailure::websiteRulesNotCleared, cleared.error()));
    }
    lookup_.clearWebsiteRules();
    changed_.notify();
    return {};
}

Result<void, ClassificationError> ClassificationRules::clearAll() {
    if (auto cleared = clearApplicationClassifications(); !cleared.ok()) {
        return cleared;
    }
    if (auto cleared = clearWebsiteClassifications(); !cleared.ok()) {
        return cleared;
    }
    for (auto cleared : {store_.deleteAllPDFIdentities(), store_.deleteLocalPDFPreferences()}) {
        if (!cleared.ok()) {
            return fail(storeFailure(ClassificationFailure::pdfRecordsNotCleared, cleared.error()));
        }
    }
    localPDFPreferences_.reset();
    pdfIdentities_.clear();
    forgetSessionChoices();
    changed_.notify();
    return {};
}

Result<void, ClassificationError> ClassificationRules::classifyLocalPDF(
    const Uuid& pdfIdentifier, ActivityClassification classification,
    LocalPDFClassificationScope scope) {
    const auto known = pdfIdentities_.find(pdfIdentifier);
    if (known == pdfIdentities_.end()) {
        return fail(
            ClassificationError{ClassificationFailure::classificationNotSaved, "this PDF", {}});
    }
    std::vector<LocalPDFIdentity> sessionIdentities;
    for (const auto& [id, identity] : pdfIdentities_) {
        if (runningSession_ && identity.session == runningSession_) {
            sessionIdentities.push_back(identity);
        }
    }
    // A default chosen before any was stored gets a record of its own.
    const LocalPDFPreferences preferences = localPDFPreferences_.value_or(LocalPDFPreferences{
        Uuid::generate(), true, std::string(rawValue(ActivityClassification::unclassified))});
    const LocalPDFScopeChanges changes =
        applyPDFScope(classification, scope, known->second, sessionIdentities, preferences);
    const std::string label = known->second.displayLabelStorage.value_or("this PDF");
    for (const LocalPDFIdentity& identity : changes.identities) {
        if (auto saved = store_.savePDFIdentity(identity); !saved.ok()) {
            return fail(
                storeFailure(ClassificationFailure::classificationNotSaved, saved.error(), label));
        }
        pdfIdentities_[identity.id] = identity;
    }
    if (changes.preferences) {
        if (auto saved = store_.saveLocalPDFPreferences(*changes.preferences); !saved.ok()) {
            return fail(
                storeFailure(ClassificationFailure::classificationNotSaved, saved.error(), label));
        }
        localPDFPreferences_ = changes.preferences;
    }
    if (runningSession_ && scope == LocalPDFClassificationScope::allPDFsInSession) {
        sessionPDFClassification_ = classification;
        pdfsGivenSessionClass_.clear();
        for (const LocalPDFIdentity& identity : sessionIdentities) {
            pdfsGivenSessionClass_.insert(identity.id);
        }
    }
    pdfsGivenSessionClass_.insert(pdfIdentifier);
    changed_.notify();
    return {};
}

Result<void, ClassificationError> ClassificationRules::clearFilenameDerivedPDFLabels() {
    if (auto cleared = store_.clearFilenameDerivedPDFLabels(); !cleared.ok()) {
        return fail(storeFailure(ClassificationFailure::filenameLabelsNotCleared, cleared.error()));
    }
    std::vector<LocalPDFIdentity> identities;
    for (const auto& [id, identity] : pdfIdentities_) {
        identities.push_back(identity);
    }
    for (LocalPDFIdentity& cleared : withoutFilenameLabels(identities)) {
        pdfIdentities_[cleared.id] = std::move(cleared);
    }
    changed_.notify();
    return {};
}

ClassificationRules::PDFSample ClassificationRules::classifyPDFSample(
    const std::optional<NewLocalPDF>& pdf) {
    const LocalPDFPreferences preferences = effectivePDFPreferences();
    PDFSample sample;
    if (!pdf) {
        sample.classification = localPDFClassification(nullptr, preferences);
        return sample;
    }
    auto known = pdfIdentities_.find(pdf->id);
    if (known == pdfIdentities_.end()) {
        NewLocalPDF first = *pdf;
        first.createdAt = now_();
        first.session = runningSession_;
        LocalPDFIdentity identity = makeLocalPDFIdentity(std::move(first), preferences);
        sample.identitiesToSave.push_back(identity);
        known = pdfIdentities_.emplace(identity.id, std::move(identity)).first;
    }
    if (sessionPDFClassification_ && pdfsGivenSessionClass_.insert(known->first).second) {
        const std::string chosen(rawValue(*sessionPDFClassification_));
        if (known->second.classificationRawValue != chosen) {
            known->second.classificationRawValue = chosen;
            sample.identitiesToSave.push_back(known->second);
        }
    }
    sample.classification = localPDFClassification(&known->second, preferences);
    return sample;
}

void ClassificationRules::beginSession(const Uuid& sessionID) {
    forgetSessionChoices();
    runningSession_ = sessionID;
}

void ClassificationRules::endSession() {
    forgetSessionChoices();
    runningSession_.reset();
}

void ClassificationRules::forgetSessionChoices() {
    lookup_.clearSessionOverrides();
    sessionPDFClassification_.reset();
    pdfsGivenSessionClass_.clear();
}

void ClassificationRules::setSessionApplicationOverride(const std::string& bundleIdentifier,
                                                        ActivityClassification classification) {
    lookup_.setSessionApplicationOverride(bundleIdentifier, classification);
    changed_.notify();
}

void ClassificationRules::setTabOverride(const Uuid& tabSessionIdentifier,
                                         ActivityClassification classification) {
    lookup_.setTabOverride(tabSessionIdentifier, classification);
    changed_.notify();
}

}  // namespace lumenote::classification
