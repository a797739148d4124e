#include "classification/classification_lookup.hpp"

#include <gtest/gtest.h>

#include <vector>

namespace lumenote::classification {
namespace {

using C = ActivityClassification;

constexpr const char* kOwnIdentifier = "org.lumenote.Lumenote";

AppClassification appRule(std::string bundle, C classification, double updatedAt = 0) {
    return {std::move(bundle), "App", std::string(rawValue(classification)), Date{updatedAt}};
}

WebsiteClassification websiteRule(std::string hostname, C classification, double updatedAt = 0) {
    return {std::move(hostname), std::string(rawValue(classification)), Date{updatedAt}};
}

class ClassificationLookupTest : public ::testing::Test {
  protected:
    ClassificationLookup lookup{kOwnIdentifier};
    const Uuid tab = Uuid::generate();
    const Uuid otherTab = Uuid::generate();
};

TEST_F(ClassificationLookupTest, WebsiteSourcesAreConsultedInOrder) {
    const std::vector<WebsiteClassification> stored{websiteRule("zoom.us", C::distracting),
                                                    websiteRule("example.org", C::focused)};
    lookup.loadWebsiteRules(stored);
    lookup.setTabOverride(tab, C::ignored);

    struct Case {
        const char* hostname;
        std::optional<Uuid> tabSession;
        C expected;
    };
    const Case cases[] = {
        {"zoom.us", std::nullopt, C::distracting},     // stored rule beats the starter
        {" Zoom.US. ", std::nullopt, C::distracting},  // looked up under the normalised name
        {"zoom.us", tab, C::ignored},                  // the tab's own choice wins
        {"zoom.us", otherTab, C::distracting},         // ... for that tab only
        {"en.wikipedia.org", std::nullopt, C::neutral},
        {"mywikipedia.org", std::nullopt, C::unclassified},
        {"sub.example.org", std::nullopt, C::unclassified},  // stored rules match exactly
        {"", std::nullopt, C::unclassified},
        {" \n\t", otherTab, C::unclassified},
        {"", tab, C::ignored},
        {"docs.google.com..", std::nullopt, C::unclassified},  // keeps one final dot
    };
    for (const Case& c : cases) {
        EXPECT_EQ(lookup.websiteClassification(c.hostname, c.tabSession), c.expected)
            << "'" << c.hostname << "' tab " << c.tabSession.has_value();
    }
}

TEST_F(ClassificationLookupTest, TabOverrideEndsWithTheSession) {
    lookup.setWebsiteRule("zoom.us", C::distracting);
    lookup.setTabOverride(tab, C::focused);
    lookup.setSessionApplicationOverride("us.zoom.xos", C::focused);
    lookup.clearSessionOverrides();
    EXPECT_EQ(lookup.websiteClassification("zoom.us", tab), C::distracting);
    EXPECT_EQ(lookup.applicationClassification("us.zoom.xos", "Zoom"), C::neutral);
}

TEST_F(ClassificationLookupTest, ApplicationSourcesAreConsultedInOrder) {
    const std::vector<AppClassification> stored{
        appRule(kOwnIdentifier, C::focused), appRule("com.microsoft.Word", C::distracting),
        appRule("com.example.editor", C::focused), appRule("com.apple.system.sleep", C::focused)};
    lookup.loadApplicationRules(stored);
    lookup.setSessionApplicationOverride(kOwnIdentifier, C::distracting);
    lookup.setSessionApplicationOverride("com.example.editor", C::neutral);

    struct Case {
        const char* bundle;
        const char* name;
        C expected;
    };
    const Case cases[] = {
        {kOwnIdentifier, "Anything", C::ignored},  // despite a rule and an override
        {"com.apple.system.sleep", "Sleep", C::ignored},
        {"com.example.other", "Tallywise", C::ignored},
        {"com.example.other", "Lumenote", C::ignored},
        {"com.example.other", "lumenote", C::unclassified},  // names match exactly
        {"com.example.editor", "Editor", C::neutral},        // override beats stored rule
        {"com.microsoft.Word", "Word", C::distracting},      // stored rule beats starter
        {"com.microsoft.word", "Word", C::focused},          // stored rule is exact; starter not
        {"COM.MICROSOFT.WORD", "Word", C::focused},
        {"com.example.EDITOR", "Editor", C::unclassified},  // override is exact too
        {"", "", C::unclassified},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(lookup.applicationClassification(c.bundle, c.name), c.expected)
            << c.bundle << " / " << c.name;
    }
}

// A Linux window is recorded under its desktop-file id; the Linux starter rows
// answer for it at the starter step, after the user's own choices.
TEST_F(ClassificationLookupTest, LinuxDesktopIdsTakeTheStarterStepWithoutAnyRule) {
    EXPECT_EQ(lookup.applicationClassification("org.gnome.Evince", "Document Viewer"), C::focused);
    EXPECT_EQ(lookup.applicationClassification("com.spotify.Client", "Spotify"), C::distracting);
    EXPECT_EQ(lookup.applicationClassification("debian-xterm", "XTerm"), C::unclassified);

    lookup.setApplicationRule("org.gnome.Evince", C::distracting);
    EXPECT_EQ(lookup.applicationClassification("org.gnome.Evince", "Document Viewer"),
              C::distracting);
    lookup.setSessionApplicationOverride("org.gnome.Evince", C::neutral);
    EXPECT_EQ(lookup.applicationClassification("org.gnome.Evince", "Document Viewer"), C::neutral);
    lookup.clearSessionOverrides();

    // Removing the rule gives the starter suggestion back.
    lookup.removeApplicationRule("org.gnome.Evince");
    lookup.removeApplicationRule("never.stored");
    EXPECT_EQ(lookup.applicationClassification("org.gnome.Evince", "Document Viewer"), C::focused);
}

TEST(ClassificationLookupOwnIdentifierTest, UnknownOwnIdentifierIgnoresNothing) {
    const ClassificationLookup lookup{""};
    EXPECT_EQ(lookup.applicationClassification("", "Some app"), C::unclassified);
}

TEST_F(ClassificationLookupTest, LoadingReplacesTheCacheAndSkipsUnreadableRules) {
    lookup.setApplicationRule("com.example.old", C::focused);
    const std::vector<AppClassification> stored{
        {"com.netflix.Netflix", "Netflix", "classifiedByALaterVersion", Date{}},
        appRule("com.example.new", C::distracting)};
    lookup.loadApplicationRules(stored);
    EXPECT_EQ(lookup.applicationClassification("com.example.old", "Old"), C::unclassified);
    EXPECT_EQ(lookup.applicationClassification("com.example.new", "New"), C::distracting);
    // The unreadable rule leaves the starter suggestion in place.
    EXPECT_EQ(lookup.applicationClassification("com.netflix.Netflix", "Netflix"), C::distracting);
}

TEST_F(ClassificationLookupTest, DuplicateStoredKeysKeepTheLatestChange) {
    for (const bool newerFirst : {true, false}) {
        std::vector<WebsiteClassification> stored{websiteRule("a.org", C::focused, 200),
                                                  websiteRule("a.org", C::distracting, 100)};
        if (!newerFirst) {
            std::swap(stored[0], stored[1]);
        }
        lookup.loadWebsiteRules(stored);
        EXPECT_EQ(lookup.websiteClassification("a.org", std::nullopt), C::focused) << newerFirst;
    }
}

TEST_F(ClassificationLookupTest, StoredWebsiteKeysAreNotNormalisedAgain) {
    // "docs.google.com." is the normalised form of "docs.google.com..".
    const std::vector<WebsiteClassification> stored{websiteRule("docs.google.com.", C::neutral)};
    lookup.loadWebsiteRules(stored);
    EXPECT_EQ(lookup.websiteClassification("docs.google.com..", std::nullopt), C::neutral);
    EXPECT_EQ(lookup.websiteClassification("docs.google.com.", std::nullopt), C::focused);
}

TEST_F(ClassificationLookupTest, SavedAndClearedRulesReachTheLookup) {
    lookup.setWebsiteRule("instagram.com", C::focused);
    lookup.setWebsiteRule("", C::focused);
    lookup.setApplicationRule("com.burbn.instagram", C::focused);
    EXPECT_EQ(lookup.websiteClassification("www.instagram.com", std::nullopt), C::distracting);
    EXPECT_EQ(lookup.websiteClassification("instagram.com", std::nullopt), C::focused);
    EXPECT_EQ(lookup.websiteClassification("", std::nullopt), C::unclassified);
    EXPECT_EQ(lookup.applicationClassification("com.burbn.instagram", "Instagram"), C::focused);

    lookup.setWebsiteRule("instagram.com", C::neutral);  // a second save replaces the entry
    EXPECT_EQ(lookup.websiteClassification("instagram.com", std::nullopt), C::neutral);

    lookup.clearWebsiteRules();
    EXPECT_EQ(lookup.websiteClassification("instagram.com", std::nullopt), C::distracting);
    EXPECT_EQ(lookup.applicationClassification("com.burbn.instagram", "Instagram"), C::focused);
    lookup.clearApplicationRules();
    EXPECT_EQ(lookup.applicationClassification("com.burbn.instagram", "Instagram"), C::distracting);
}

}  // namespace
}  // namespace lumenote::classification
