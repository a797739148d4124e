// Classification rules: saving and clearing the stored rules and the
// session-only overrides, keeping the lookup caches in step with the store.
// A rule or override chosen while a session runs applies from that moment: the
// manager samples again at once rather than at the next tick.
#include "classification/classification_messages.hpp"
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
        lastError_ =
            classificationFailureMessage(ClassificationFailure::classificationNotSaved, name);
        publish(ObservedField::lastError);
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
        lastError_ =
            classificationFailureMessage(ClassificationFailure::classificationNotSaved, hostname);
        publish(ObservedField::lastError);
        return false;
    }
    lookup_.setWebsiteRule(normalized, classification);
    applicationActivated();
    return true;
}

bool SessionManager::clearApplicationClassifications() {
    if (auto cleared = store_.deleteAllAppClassifications(); !cleared.ok()) {
        lastError_ = classificationFailureMessage(ClassificationFailure::applicationRulesNotCleared,
                                                  {}, cleared.error().description);
        publish(ObservedField::lastError);
        return false;
    }
    lookup_.clearApplicationRules();
    return true;
}

bool SessionManager::clearWebsiteClassifications() {
    if (auto cleared = store_.deleteAllWebsiteClassifications(); !cleared.ok()) {
        lastError_ = classificationFailureMessage(ClassificationFailure::websiteRulesNotCleared, {},
                                                  cleared.error().description);
        publish(ObservedField::lastError);
        return false;
    }
    lookup_.clearWebsiteRules();
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
