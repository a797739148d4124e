// The failures of loading, saving and clearing classification rules, and the
// sentence the user is shown for each.
#pragma once

#include <string>
#include <string_view>

namespace lumenote::classification {

enum class ClassificationFailure {
    applicationRulesNotLoaded,
    websiteRulesNotLoaded,
    pdfPreferencesNotLoaded,
    classificationNotSaved,    // names the application or hostname
    classificationNotRemoved,  // names the application or hostname
    filenameLabelsNotCleared,
    applicationRulesNotCleared,  // carries the store error's description
    websiteRulesNotCleared,      // carries the store error's description
    pdfRecordsNotCleared,        // carries the store error's description
};

// The user-facing sentence for `failure`: `name` (the application name or
// hostname) and `error` (the store error's description) fill the places of the
// sentences that have one and are ignored by the others.
std::string classificationFailureMessage(ClassificationFailure failure, std::string_view name = {},
                                         std::string_view error = {});

}  // namespace lumenote::classification
