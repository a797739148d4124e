#include "classification/local_pdf_classification.hpp"

#include <algorithm>
#include <utility>

namespace lumenote::classification {

ActivityClassification localPDFClassification(const LocalPDFIdentity* identity,
                                              const LocalPDFPreferences& preferences) {
    return identity ? identity->classification() : preferences.defaultClassification();
}

LocalPDFIdentity makeLocalPDFIdentity(NewLocalPDF pdf, const LocalPDFPreferences& preferences) {
    LocalPDFIdentity identity;
    identity.id = pdf.id;
    identity.browserBundleIdentifier = std::move(pdf.browserBundleIdentifier);
    const bool labelAllowed =
        pdf.labelSource != BrowserPDFLabelSource::filename || preferences.filenameLabelsEnabled;
    if (pdf.displayLabel && labelAllowed) {
        identity.displayLabelStorage = std::move(pdf.displayLabel);
        if (pdf.labelSource) {
            identity.labelSourceRawValue = std::string(rawValue(*pdf.labelSource));
        }
    }
    identity.classificationRawValue = preferences.defaultClassificationRawValue;
    identity.createdAt = pdf.createdAt;
    identity.session = pdf.session;
    return identity;
}

LocalPDFScopeChanges applyPDFScope(ActivityClassification chosen, LocalPDFClassificationScope scope,
                                   const LocalPDFIdentity& identity,
                                   std::span<const LocalPDFIdentity> sessionIdentities,
                                   const LocalPDFPreferences& preferences) {
    const std::string chosenRaw(rawValue(chosen));
    LocalPDFScopeChanges changes;
    const auto reclassify = [&](const LocalPDFIdentity& candidate) {
        if (candidate.classificationRawValue == chosenRaw) {
            return;
        }
        const bool listed = std::any_of(
            changes.identities.begin(), changes.identities.end(),
            [&](const LocalPDFIdentity& changed) { return changed.id == candidate.id; });
        if (listed) {
            return;
        }
        LocalPDFIdentity changed = candidate;
        changed.classificationRawValue = chosenRaw;
        changes.identities.push_back(std::move(changed));
    };
    switch (scope) {
        case LocalPDFClassificationScope::thisPDFInSession:
            reclassify(identity);
            break;
        case LocalPDFClassificationScope::allPDFsInSession:
            reclassify(identity);
            for (const LocalPDFIdentity& candidate : sessionIdentities) {
                reclassify(candidate);
            }
            break;
        case LocalPDFClassificationScope::futureDefault:
            if (preferences.defaultClassificationRawValue != chosenRaw) {
                changes.preferences = preferences;
                changes.preferences->defaultClassificationRawValue = chosenRaw;
            }
            break;
    }
    return changes;
}

std::vector<LocalPDFIdentity> withoutFilenameLabels(std::span<const LocalPDFIdentity> identities) {
    std::vector<LocalPDFIdentity> changed;
    for (const LocalPDFIdentity& identity : identities) {
        if (identity.labelSource() == BrowserPDFLabelSource::filename) {
            LocalPDFIdentity cleared = identity;
            cleared.displayLabelStorage.reset();
            cleared.labelSourceRawValue.reset();
            changed.push_back(std::move(cleared));
        }
    }
    return changed;
}

}  // namespace lumenote::classification
