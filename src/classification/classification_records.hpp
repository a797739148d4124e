// The stored classification rules: one per application, one per website
// hostname, the identities of local PDFs, and the PDF preferences.
#pragma once

#include <optional>
#include <string>

#include "classification/classification_enumerations.hpp"
#include "foundation/dates.hpp"
#include "foundation/raw_enum.hpp"
#include "foundation/uuid.hpp"

namespace lumenote::classification {

// The user's rule for one application; one record per bundle identifier
// (compared exactly, letter case included).
struct AppClassification {
    std::string bundleIdentifier;
    std::string applicationName;  // display name when the rule was made
    std::string classificationRawValue;
    Date updatedAt;

    ActivityClassification classification() const {
        return classificationFromRawValue(classificationRawValue);
    }
    friend bool operator==(const AppClassification&, const AppClassification&) = default;
};

// The user's rule for one website; `hostname` is always normalised.
struct WebsiteClassification {
    std::string hostname;
    std::string classificationRawValue;
    Date updatedAt;

    ActivityClassification classification() const {
        return classificationFromRawValue(classificationRawValue);
    }
    friend bool operator==(const WebsiteClassification&, const WebsiteClassification&) = default;
};

// The private identity of one local PDF as seen in one browser.
struct LocalPDFIdentity {
    Uuid id;
    std::string browserBundleIdentifier;
    std::optional<std::string> displayLabelStorage;
    std::optional<std::string> labelSourceRawValue;
    std::string classificationRawValue;
    Date createdAt;
    std::optional<Uuid> session;  // the session in which it was created

    ActivityClassification classification() const {
        return classificationFromRawValue(classificationRawValue);
    }
    std::optional<BrowserPDFLabelSource> labelSource() const {
        return labelSourceRawValue ? fromRawValue<BrowserPDFLabelSource>(*labelSourceRawValue)
                                   : std::nullopt;
    }
    friend bool operator==(const LocalPDFIdentity&, const LocalPDFIdentity&) = default;
};

// The single preferences record for local PDFs.
struct LocalPDFPreferences {
    Uuid id;
    bool filenameLabelsEnabled = true;
    std::string defaultClassificationRawValue{rawValue(ActivityClassification::unclassified)};

    ActivityClassification defaultClassification() const {
        return classificationFromRawValue(defaultClassificationRawValue);
    }
    friend bool operator==(const LocalPDFPreferences&, const LocalPDFPreferences&) = default;
};

// How far a classification chosen for a PDF reaches.
enum class LocalPDFClassificationScope { thisPDFInSession, allPDFsInSession, futureDefault };

}  // namespace lumenote::classification

// Raw values are specialised where the template lives.
namespace lumenote {

template <>
struct RawValues<classification::LocalPDFClassificationScope> {
    using E = classification::LocalPDFClassificationScope;
    static constexpr std::array<std::pair<E, std::string_view>, 3> entries{{
        {E::thisPDFInSession, "thisPDFInSession"},
        {E::allPDFsInSession, "allPDFsInSession"},
        {E::futureDefault, "futureDefault"},
    }};
};

}  // namespace lumenote

namespace lumenote::classification {}  // namespace lumenote::classification
