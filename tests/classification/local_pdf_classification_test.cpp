#include "classification/local_pdf_classification.hpp"

#include <gtest/gtest.h>

#include <vector>

namespace lumenote::classification {
namespace {

using C = ActivityClassification;
using Scope = LocalPDFClassificationScope;

LocalPDFIdentity pdf(C classification) {
    LocalPDFIdentity identity;
    identity.id = Uuid::generate();
    identity.browserBundleIdentifier = "org.chromium.Chromium";
    identity.classificationRawValue = std::string(rawValue(classification));
    return identity;
}

LocalPDFPreferences preferences(C defaultClassification) {
    LocalPDFPreferences result;
    result.defaultClassificationRawValue = std::string(rawValue(defaultClassification));
    return result;
}

std::vector<Uuid> idsOf(const std::vector<LocalPDFIdentity>& identities) {
    std::vector<Uuid> ids;
    for (const auto& identity : identities) {
        ids.push_back(identity.id);
    }
    return ids;
}

TEST(LocalPDFClassificationTest, IdentityRecordBeatsTheDefault) {
    const LocalPDFPreferences prefs = preferences(C::focused);
    const LocalPDFIdentity identity = pdf(C::distracting);
    EXPECT_EQ(localPDFClassification(&identity, prefs), C::distracting);
    EXPECT_EQ(localPDFClassification(nullptr, prefs), C::focused);
}

TEST(LocalPDFClassificationTest, NewIdentityStartsWithTheDefaultAndKeepsIt) {
    LocalPDFPreferences prefs = preferences(C::neutral);
    const NewLocalPDF seen{Uuid::generate(), "org.mozilla.firefox",
                           "notes.pdf",      BrowserPDFLabelSource::filename,
                           Date{50},         Uuid::generate()};
    const LocalPDFIdentity identity = makeLocalPDFIdentity(seen, prefs);
    EXPECT_EQ(identity.id, seen.id);
    EXPECT_EQ(identity.classificationRawValue, "neutral");
    EXPECT_EQ(identity.displayLabelStorage, "notes.pdf");
    EXPECT_EQ(identity.labelSourceRawValue, "filename");
    EXPECT_EQ(identity.session, seen.session);

    prefs.defaultClassificationRawValue = "distracting";
    EXPECT_EQ(localPDFClassification(&identity, prefs), C::neutral);
}

TEST(LocalPDFClassificationTest, FilenameLabelIsDroppedWhileFilenameLabelsAreOff) {
    LocalPDFPreferences prefs = preferences(C::unclassified);
    prefs.filenameLabelsEnabled = false;
    const NewLocalPDF fromFilename{
        Uuid::generate(), "b", "notes.pdf", BrowserPDFLabelSource::filename, Date{}, std::nullopt};
    const NewLocalPDF manual{
        Uuid::generate(), "b", "Chapter 3", BrowserPDFLabelSource::manual, Date{}, std::nullopt};
    EXPECT_FALSE(makeLocalPDFIdentity(fromFilename, prefs).displayLabelStorage);
    EXPECT_FALSE(makeLocalPDFIdentity(fromFilename, prefs).labelSourceRawValue);
    EXPECT_EQ(makeLocalPDFIdentity(manual, prefs).displayLabelStorage, "Chapter 3");
}

TEST(LocalPDFClassificationTest, UnknownDefaultTextIsCopiedUnchanged) {
    LocalPDFPreferences prefs;
    prefs.defaultClassificationRawValue = "laterCase";
    const LocalPDFIdentity identity = makeLocalPDFIdentity(
        {Uuid::generate(), "b", std::nullopt, std::nullopt, Date{}, {}}, prefs);
    EXPECT_EQ(identity.classificationRawValue, "laterCase");
    EXPECT_EQ(localPDFClassification(&identity, prefs), C::unclassified);
}

TEST(ApplyPDFScopeTest, EachScopeChangesOnlyWhatItReaches) {
    const LocalPDFIdentity chosen = pdf(C::unclassified);
    const LocalPDFIdentity sibling = pdf(C::distracting);
    const LocalPDFIdentity alreadyFocused = pdf(C::focused);
    const std::vector<LocalPDFIdentity> session{sibling, chosen, alreadyFocused};
    const LocalPDFPreferences prefs = preferences(C::neutral);

    struct Case {
        Scope scope;
        std::vector<Uuid> changedIds;
        std::optional<std::string> newDefault;
    };
    const Case cases[] = {
        {Scope::thisPDFInSession, {chosen.id}, std::nullopt},
        // `chosen` comes first and only once although the session lists it too.
        {Scope::allPDFsInSession, {chosen.id, sibling.id}, std::nullopt},
        {Scope::futureDefault, {}, "focused"},
    };
    for (const Case& c : cases) {
        const auto changes = applyPDFScope(C::focused, c.scope, chosen, session, prefs);
        EXPECT_EQ(idsOf(changes.identities), c.changedIds) << rawValue(c.scope);
        for (const auto& identity : changes.identities) {
            EXPECT_EQ(identity.classificationRawValue, "focused");
        }
        ASSERT_EQ(changes.preferences.has_value(), c.newDefault.has_value()) << rawValue(c.scope);
        if (changes.preferences) {
            EXPECT_EQ(changes.preferences->defaultClassificationRawValue, *c.newDefault);
            EXPECT_EQ(changes.preferences->id, prefs.id);
        }
    }
}

TEST(ApplyPDFScopeTest, ChoosingTheCurrentClassChangesNothing) {
    const LocalPDFIdentity identity = pdf(C::neutral);
    const std::vector<LocalPDFIdentity> session{identity};
    const LocalPDFPreferences prefs = preferences(C::neutral);
    for (const Scope scope : allCases<Scope>()) {
        EXPECT_TRUE(applyPDFScope(C::neutral, scope, identity, session, prefs).empty())
            << rawValue(scope);
    }
}

TEST(ApplyPDFScopeTest, AllPDFsReachesTheChosenPDFEvenWhenTheSessionListOmitsIt) {
    const LocalPDFIdentity identity = pdf(C::unclassified);
    const auto changes =
        applyPDFScope(C::ignored, Scope::allPDFsInSession, identity, {}, preferences(C::neutral));
    EXPECT_EQ(idsOf(changes.identities), std::vector<Uuid>{identity.id});
}

TEST(WithoutFilenameLabelsTest, ClearsOnlyFilenameDerivedLabels) {
    LocalPDFIdentity fromFilename = pdf(C::focused);
    fromFilename.displayLabelStorage = "notes.pdf";
    fromFilename.labelSourceRawValue = "filename";
    LocalPDFIdentity manual = pdf(C::focused);
    manual.displayLabelStorage = "Chapter 3";
    manual.labelSourceRawValue = "manual";
    const LocalPDFIdentity unlabelled = pdf(C::focused);

    const std::vector<LocalPDFIdentity> all{fromFilename, manual, unlabelled};
    const auto changed = withoutFilenameLabels(all);
    ASSERT_EQ(idsOf(changed), std::vector<Uuid>{fromFilename.id});
    EXPECT_FALSE(changed[0].displayLabelStorage);
    EXPECT_FALSE(changed[0].labelSourceRawValue);
    EXPECT_EQ(changed[0].classificationRawValue, "focused");
}

}  // namespace
}  // namespace lumenote::classification
