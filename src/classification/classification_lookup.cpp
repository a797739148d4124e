#include "classification/classification_lookup.hpp"

#include <array>
#include <utility>

#include "classification/rule_keys.hpp"
#include "classification/starter_suggestions.hpp"

namespace lumenote::classification {
namespace {

// The names the recorder has appeared under; its own windows are never
// classified as study or distraction.
constexpr std::array<std::string_view, 2> kRecorderNames{"Tallywise", "Lumenote"};

std::optional<ActivityClassification> valueIn(const ClassificationLookup::RuleCache& cache,
                                              std::string_view key) {
    const auto found = cache.find(key);
    if (found == cache.end()) {
        return std::nullopt;
    }
    return found->second;
}

// Fills `cache` from `records`; `keyOf` gives a record's key.
template <typename Record, typename KeyOf>
void loadRules(ClassificationLookup::RuleCache& cache, std::span<const Record> records,
               KeyOf keyOf) {
    cache.clear();
    std::map<std::string_view, Date, std::less<>> updatedAt;
    for (const Record& record : records) {
        const auto classification =
            fromRawValue<ActivityClassification>(record.classificationRawValue);
        if (!classification) {
            continue;
        }
        const std::string& key = keyOf(record);
        const auto [seen, inserted] = updatedAt.emplace(key, record.updatedAt);
        if (!inserted && record.updatedAt < seen->second) {
            continue;
        }
        seen->second = record.updatedAt;
        cache.insert_or_assign(key, *classification);
    }
}

}  // namespace

ClassificationLookup::ClassificationLookup(std::string ownBundleIdentifier)
    : ownBundleIdentifier_(std::move(ownBundleIdentifier)) {}

ActivityClassification ClassificationLookup::websiteClassification(
    std::string_view hostname, std::optional<Uuid> tabSessionIdentifier) const {
    if (tabSessionIdentifier) {
        const auto found = tabClassificationOverrides_.find(*tabSessionIdentifier);
        if (found != tabClassificationOverrides_.end()) {
            return found->second;
        }
    }
    const std::string normalized = normalizedHostname(hostname);
    if (normalized.empty()) {
        return ActivityClassification::unclassified;
    }
    if (const auto stored = valueIn(websiteClassificationCache_, normalized)) {
        return *stored;
    }
    return starterWebsiteMatch(normalized).value_or(ActivityClassification::unclassified);
}

ActivityClassification ClassificationLookup::applicationClassification(
    std::string_view bundleIdentifier, std::string_view applicationName) const {
    if (isRecorderOrSleep(bundleIdentifier, applicationName)) {
        return ActivityClassification::ignored;
    }
    if (const auto chosen = valueIn(sessionApplicationClassificationOverrides_, bundleIdentifier)) {
        return *chosen;
    }
    if (const auto stored = valueIn(classificationCache_, bundleIdentifier)) {
        return *stored;
    }
    return starterApplicationClassification(bundleIdentifier)
        .value_or(ActivityClassification::unclassified);
}

bool ClassificationLookup::isRecorderOrSleep(std::string_view bundleIdentifier,
                                             std::string_view applicationName) const {
    // An unknown own identifier (empty) must not make every application
    // without an identifier look like the recorder.
    if (!ownBundleIdentifier_.empty() && bundleIdentifier == ownBundleIdentifier_) {
        return true;
    }
    if (bundleIdentifier == kSystemSleepBundleIdentifier) {
        return true;
    }
    for (const std::string_view name : kRecorderNames) {
        if (applicationName == name) {
            return true;
        }
    }
    return false;
}

void ClassificationLookup::loadApplicationRules(std::span<const AppClassification> records) {
    loadRules(classificationCache_, records,
              [](const AppClassification& record) -> const std::string& {
                  return record.bundleIdentifier;
              });
}

void ClassificationLookup::loadWebsiteRules(std::span<const WebsiteClassification> records) {
    loadRules(
        websiteClassificationCache_, records,
        [](const WebsiteClassification& record) -> const std::string& { return record.hostname; });
}

void ClassificationLookup::setApplicationRule(std::string bundleIdentifier,
                                              ActivityClassification classification) {
    classificationCache_.insert_or_assign(std::move(bundleIdentifier), classification);
}

void ClassificationLookup::setWebsiteRule(std::string normalizedHostname,
                                          ActivityClassification classification) {
    if (normalizedHostname.empty()) {
        return;
    }
    websiteClassificationCache_.insert_or_assign(std::move(normalizedHostname), classification);
}

void ClassificationLookup::removeApplicationRule(std::string_view bundleIdentifier) {
    if (const auto found = classificationCache_.find(bundleIdentifier);
        found != classificationCache_.end()) {
        classificationCache_.erase(found);
    }
}

void ClassificationLookup::removeWebsiteRule(std::string_view normalizedHostname) {
    if (const auto found = websiteClassificationCache_.find(normalizedHostname);
        found != websiteClassificationCache_.end()) {
        websiteClassificationCache_.erase(found);
    }
}

void ClassificationLookup::setSessionApplicationOverride(std::string bundleIdentifier,
                                                         ActivityClassification classification) {
    sessionApplicationClassificationOverrides_.insert_or_assign(std::move(bundleIdentifier),
                                                                classification);
}

void ClassificationLookup::setTabOverride(Uuid tabSessionIdentifier,
                                          ActivityClassification classification) {
    tabClassificationOverrides_.insert_or_assign(tabSessionIdentifier, classification);
}

void ClassificationLookup::clearSessionOverrides() {
    sessionApplicationClassificationOverrides_.clear();
    tabClassificationOverrides_.clear();
}

}  // namespace lumenote::classification
