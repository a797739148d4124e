// The storage role of the classification rules: application and website
// rules, local PDF identities and the PDF preferences. The object store
// implements it; a rules service depends on this role alone.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "classification/classification_records.hpp"
#include "foundation/result.hpp"
#include "foundation/store_error.hpp"
#include "foundation/uuid.hpp"

namespace lumenote::classification {

class ClassificationRuleStore {
  public:
    virtual ~ClassificationRuleStore() = default;

    virtual Result<std::vector<AppClassification>, StoreError> appClassifications() = 0;
    virtual Result<void, StoreError> saveAppClassification(const AppClassification& rule) = 0;
    virtual Result<void, StoreError> deleteAllAppClassifications() = 0;
    // Removes the rule for exactly this identifier (letter case included);
    // returns whether there was one.
    virtual Result<bool, StoreError> deleteAppClassification(
        const std::string& bundleIdentifier) = 0;
    virtual Result<std::vector<WebsiteClassification>, StoreError> websiteClassifications() = 0;
    virtual Result<void, StoreError> saveWebsiteClassification(
        const WebsiteClassification& rule) = 0;
    virtual Result<void, StoreError> deleteAllWebsiteClassifications() = 0;
    // Removes the rule for exactly this (normalised) hostname; returns whether
    // there was one.
    virtual Result<bool, StoreError> deleteWebsiteClassification(const std::string& hostname) = 0;

    virtual Result<std::vector<LocalPDFIdentity>, StoreError> pdfIdentities(
        const std::optional<Uuid>& session) = 0;  // all when no session is given
    virtual Result<void, StoreError> savePDFIdentity(const LocalPDFIdentity& identity) = 0;
    // Removes every label whose source is the filename; returns how many changed.
    virtual Result<std::size_t, StoreError> clearFilenameDerivedPDFLabels() = 0;
    virtual Result<void, StoreError> deleteAllPDFIdentities() = 0;
    virtual Result<std::optional<LocalPDFPreferences>, StoreError> localPDFPreferences() = 0;
    virtual Result<void, StoreError> saveLocalPDFPreferences(
        const LocalPDFPreferences& preferences) = 0;
    virtual Result<void, StoreError> deleteLocalPDFPreferences() = 0;
};

}  // namespace lumenote::classification
