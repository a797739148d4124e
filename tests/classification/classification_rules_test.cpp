// The rules service over a store that can be made to fail: caches follow the
// store only when a write landed, observers hear of every change that did, and
// session-only choices end with the session.
#include "classification/classification_rules.hpp"

#include <gtest/gtest.h>

#include <map>

namespace lumenote::classification {
namespace {

using C = ActivityClassification;

// Keeps rules in memory; `failing` makes every call fail.
class MemoryRuleStore final : public ClassificationRuleStore {
  public:
    bool failing = false;
    std::map<std::string, AppClassification> apps;
    std::map<std::string, WebsiteClassification> sites;
    std::map<Uuid, LocalPDFIdentity> pdfs;
    std::optional<LocalPDFPreferences> preferences;

    template <typename T>
    Result<T, StoreError> answer(T value) {
        if (failing) {
            return fail(StoreError{"disk I/O error"});
        }
        return value;
    }
    Result<void, StoreError> done() {
        if (failing) {
            return fail(StoreError{"disk I/O error"});
        }
        return {};
    }

    Result<std::vector<AppClassification>, StoreError> appClassifications() override {
        std::vector<AppClassification> list;
        for (const auto& [key, rule] : apps) {
            list.push_back(rule);
        }
        return answer(list);
    }
    Result<void, StoreError> saveAppClassification(const AppClassification& rule) override {
        if (!failing) {
            apps[rule.bundleIdentifier] = rule;
        }
        return done();
    }
    Result<void, StoreError> deleteAllAppClassifications() override {
        if (!failing) {
            apps.clear();
        }
        return done();
    }
    Result<bool, StoreError> deleteAppClassification(const std::string& key) override {
        return answer(!failing && apps.erase(key) > 0);
    }
    Result<std::vector<WebsiteClassification>, StoreError> websiteClassifications() override {
        std::vector<WebsiteClassification> list;
        for (const auto& [key, rule] : sites) {
            list.push_back(rule);
        }
        return answer(list);
    }
    Result<void, StoreError> saveWebsiteClassification(const WebsiteClassification& rule) override {
        if (!failing) {
            sites[rule.hostname] = rule;
        }
        return done();
    }
    Result<void, StoreError> deleteAllWebsiteClassifications() override {
        if (!failing) {
            sites.clear();
        }
        return done();
    }
    Result<bool, StoreError> deleteWebsiteClassification(const std::string& key) override {
        return answer(!failing && sites.erase(key) > 0);
    }
    Result<std::vector<LocalPDFIdentity>, StoreError> pdfIdentities(
        const std::optional<Uuid>&) override {
        std::vector<LocalPDFIdentity> list;
        for (const auto& [id, identity] : pdfs) {
            list.push_back(identity);
        }
        return answer(list);
    }
    Result<void, StoreError> savePDFIdentity(const LocalPDFIdentity& identity) override {
        if (!failing) {
            pdfs[identity.id] = identity;
        }
        return done();
    }
    Result<std::size_t, StoreError> clearFilenameDerivedPDFLabels() override {
        return answer(std::size_t{0});
    }
    Result<void, StoreError> deleteAllPDFIdentities() override { return done(); }
    Result<std::optional<LocalPDFPreferences>, StoreError> localPDFPreferences() override {
        return answer(preferences);
    }
    Result<void, StoreError> saveLocalPDFPreferences(const LocalPDFPreferences& value) override {
        if (!failing) {
            preferences = value;
        }
        return done();
    }
    Result<void, StoreError> deleteLocalPDFPreferences() override { return done(); }
};

class ClassificationRulesTest : public ::testing::Test {
  protected:
    ClassificationRulesTest() {
        rules_.changed().add([this] { ++changes_; });
    }

    MemoryRuleStore store_;
    ClassificationRules rules_{store_, [] { return Date{1000}; }, "com.tallywise.Lumenote"};
    int changes_ = 0;
};

TEST_F(ClassificationRulesTest, AFailedSaveLeavesTheCacheAndTellsNobody) {
    store_.failing = true;
    const auto saved = rules_.saveApplicationClassification("org.gnome.Notes", "", C::focused);
    ASSERT_FALSE(saved.ok());
    EXPECT_EQ(saved.error().message(),
              "The classification for org.gnome.Notes could not be saved.");
    EXPECT_EQ(rules_.lookup().applicationClassification("org.gnome.Notes", "Notes"),
              C::unclassified);
    EXPECT_EQ(changes_, 0);

    store_.failing = false;
    ASSERT_TRUE(rules_.saveApplicationClassification("org.gnome.Notes", "Notes", C::focused).ok());
    EXPECT_EQ(rules_.lookup().applicationClassification("org.gnome.Notes", "Notes"), C::focused);
    EXPECT_EQ(changes_, 1);
}

TEST_F(ClassificationRulesTest, HostnamesAreNormalisedAndEmptyOnesRefused) {
    ASSERT_TRUE(rules_.saveWebsiteClassification("  YouTube.com. ", C::distracting).ok());
    EXPECT_TRUE(store_.sites.contains("youtube.com"));
    EXPECT_EQ(rules_.lookup().websiteClassification("youtube.com", std::nullopt), C::distracting);
    const auto refused = rules_.saveWebsiteClassification(" . ", C::focused);
    ASSERT_FALSE(refused.ok());
    EXPECT_EQ(refused.error().failure, ClassificationFailure::classificationNotSaved);
    EXPECT_EQ(store_.sites.size(), 1u);
}

TEST_F(ClassificationRulesTest, RemovingARuleGivesTheStarterSuggestionBack) {
    ASSERT_TRUE(rules_.saveApplicationClassification("org.gnome.Evince", "", C::ignored).ok());
    ASSERT_TRUE(rules_.saveWebsiteClassification("zoom.us", C::distracting).ok());
    changes_ = 0;

    const auto application = rules_.removeApplicationClassification("org.gnome.Evince");
    ASSERT_TRUE(application.ok());
    EXPECT_TRUE(*application);
    EXPECT_EQ(rules_.lookup().applicationClassification("org.gnome.Evince", ""), C::focused);
    // The hostname is normalised as it was when saved.
    const auto website = rules_.removeWebsiteClassification(" Zoom.US. ");
    ASSERT_TRUE(website.ok());
    EXPECT_TRUE(*website);
    EXPECT_TRUE(store_.sites.empty());
    EXPECT_EQ(rules_.lookup().websiteClassification("zoom.us", std::nullopt), C::neutral);
    EXPECT_EQ(changes_, 2);
}

TEST_F(ClassificationRulesTest, RemovingWhatIsNotThereChangesNothingAndTellsNobody) {
    ASSERT_TRUE(rules_.saveApplicationClassification("org.gnome.Evince", "", C::ignored).ok());
    changes_ = 0;
    for (const std::string key : {"org.gnome.evince", "org.gnome", " "}) {
        EXPECT_FALSE(*rules_.removeApplicationClassification(key)) << key;
        EXPECT_FALSE(*rules_.removeWebsiteClassification(key)) << key;
    }
    EXPECT_EQ(changes_, 0);
    EXPECT_EQ(store_.apps.size(), 1u);
}

TEST_F(ClassificationRulesTest, AFailedRemovalKeepsTheRuleWithItsSentence) {
    ASSERT_TRUE(rules_.saveApplicationClassification("org.gnome.Evince", "", C::ignored).ok());
    ASSERT_TRUE(rules_.saveWebsiteClassification("zoom.us", C::distracting).ok());
    changes_ = 0;
    store_.failing = true;
    const auto application = rules_.removeApplicationClassification("org.gnome.Evince");
    ASSERT_FALSE(application.ok());
    EXPECT_EQ(application.error().message(),
              "The classification for org.gnome.Evince could not be removed.");
    const auto website = rules_.removeWebsiteClassification("Zoom.us");
    ASSERT_FALSE(website.ok());
    EXPECT_EQ(website.error().message(), "The classification for zoom.us could not be removed.");
    EXPECT_EQ(rules_.lookup().applicationClassification("org.gnome.Evince", ""), C::ignored);
    EXPECT_EQ(rules_.lookup().websiteClassification("zoom.us", std::nullopt), C::distracting);
    EXPECT_EQ(changes_, 0);
}

TEST_F(ClassificationRulesTest, LoadingReportsEachRuleSetThatCouldNotBeRead) {
    store_.failing = true;
    const auto problems = rules_.load();
    ASSERT_EQ(problems.size(), 3u);
    EXPECT_EQ(problems[0].message(), "Saved app classifications could not be loaded.");
    EXPECT_EQ(problems[1].message(), "Saved website classifications could not be loaded.");
    EXPECT_EQ(problems[2].message(), "Local PDF preferences could not be loaded.");
}

TEST_F(ClassificationRulesTest, ClearingAllStopsAtTheFirstFailureWithItsSentence) {
    ASSERT_TRUE(rules_.saveApplicationClassification("org.gnome.Notes", "Notes", C::focused).ok());
    store_.failing = true;
    const auto cleared = rules_.clearAll();
    ASSERT_FALSE(cleared.ok());
    EXPECT_EQ(cleared.error().message(),
              "Could not clear application classifications: disk I/O error");
    EXPECT_EQ(rules_.lookup().applicationClassification("org.gnome.Notes", "Notes"), C::focused);
}

TEST_F(ClassificationRulesTest, SessionChoicesEndWithTheSession) {
    const Uuid session = Uuid::generate();
    const Uuid tab = Uuid::generate();
    rules_.beginSession(session);
    rules_.setSessionApplicationOverride("org.gnome.Notes", C::distracting);
    rules_.setTabOverride(tab, C::focused);
    EXPECT_EQ(rules_.lookup().applicationClassification("org.gnome.Notes", "Notes"),
              C::distracting);
    EXPECT_EQ(rules_.lookup().websiteClassification("example.org", tab), C::focused);
    rules_.endSession();
    EXPECT_EQ(rules_.lookup().applicationClassification("org.gnome.Notes", "Notes"),
              C::unclassified);
    EXPECT_EQ(rules_.lookup().websiteClassification("example.org", tab), C::unclassified);
}

TEST_F(ClassificationRulesTest, APDFMetFirstIsSavedOnceWithTheSession) {
    const Uuid session = Uuid::generate();
    rules_.beginSession(session);
    const NewLocalPDF pdf{Uuid::generate(),
                          "org.chromium.Chromium",
                          "notes.pdf",
                          BrowserPDFLabelSource::filename,
                          {},
                          {}};
    const auto first = rules_.classifyPDFSample(pdf);
    ASSERT_EQ(first.identitiesToSave.size(), 1u);
    EXPECT_EQ(first.identitiesToSave[0].session, session);
    EXPECT_EQ(first.identitiesToSave[0].createdAt, Date{1000});
    EXPECT_TRUE(rules_.classifyPDFSample(pdf).identitiesToSave.empty());
    EXPECT_EQ(rules_.classifyPDFSample(std::nullopt).classification, C::unclassified);

    // Unknown PDFs cannot be classified.
    EXPECT_FALSE(rules_
                     .classifyLocalPDF(Uuid::generate(), C::focused,
                                       LocalPDFClassificationScope::thisPDFInSession)
                     .ok());
}

}  // namespace
}  // namespace lumenote::classification
