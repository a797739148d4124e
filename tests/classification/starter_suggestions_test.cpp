#include "classification/starter_suggestions.hpp"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "classification/rule_keys.hpp"

namespace lumenote::classification {
namespace {

using C = ActivityClassification;

std::string uppercased(std::string text) {
    for (char& character : text) {
        if (character >= 'a' && character <= 'z') {
            character = static_cast<char>(character - 'a' + 'A');
        }
    }
    return text;
}

TEST(StarterWebsiteTest, MatchesWholeLabelsOnly) {
    struct Case {
        const char* hostname;
        std::optional<C> expected;
    };
    const Case cases[] = {
        {" Docs.Google.com.", C::focused},
        {"en.wikipedia.org", C::neutral},
        {"de.m.wikipedia.org", C::neutral},
        {"mywikipedia.org", std::nullopt},
        {"notwikipedia.org", std::nullopt},
        {"wikipedia.org.evil.com", std::nullopt},
        {".wikipedia.org", C::neutral},
        {"google.com", std::nullopt},
        {"www.TikTok.com", C::distracting},
        {"twitch.tv..", std::nullopt},  // keeps one final dot, and "twitch.tv." is no row
        {"", std::nullopt},
        {"  \n", std::nullopt},
        {".", std::nullopt},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(starterWebsiteClassification(c.hostname), c.expected) << "'" << c.hostname << "'";
    }
}

TEST(StarterWebsiteTest, EveryRowMatchesItselfAndItsSubdomains) {
    for (const StarterRule& rule : starterWebsiteRules()) {
        const std::string hostname(rule.key);
        EXPECT_EQ(starterWebsiteClassification(hostname), rule.classification) << hostname;
        EXPECT_EQ(starterWebsiteClassification("www." + uppercased(hostname)), rule.classification)
            << hostname;
        EXPECT_EQ(starterWebsiteClassification("x" + hostname), std::nullopt) << hostname;
    }
}

TEST(StarterWebsiteTest, MatchOfANormalisedNameIsNotNormalisedAgain) {
    EXPECT_EQ(starterWebsiteMatch("docs.google.com."), std::nullopt);
    EXPECT_EQ(starterWebsiteMatch("docs.google.com"), C::focused);
}

TEST(StarterApplicationTest, EveryRowMatchesInAnyLetterCase) {
    for (const StarterRule& rule : starterApplicationRules()) {
        const std::string identifier(rule.key);
        EXPECT_EQ(starterApplicationClassification(identifier), rule.classification) << identifier;
        EXPECT_EQ(starterApplicationClassification(uppercased(identifier)), rule.classification)
            << identifier;
        EXPECT_EQ(starterApplicationClassification(asciiLowercased(identifier)),
                  rule.classification)
            << identifier;
    }
}

TEST(StarterApplicationTest, NearMissesHaveNoSuggestion) {
    for (const char* identifier : {"", "com.microsoft", "com.microsoft.Word.extra",
                                   "com.microsoft.teams3", " md.obsidian", "com.apple.Safari"}) {
        EXPECT_EQ(starterApplicationClassification(identifier), std::nullopt) << identifier;
    }
    // Two rows that share a prefix keep their own names apart.
    EXPECT_EQ(starterApplicationClassification("com.microsoft.teams"), C::neutral);
    EXPECT_EQ(starterApplicationClassification("com.microsoft.teams2"), C::neutral);
}

TEST(StarterTablesTest, SettingsRowsFollowTheTablesWithDistinctKeys) {
    struct Table {
        std::vector<StarterClassificationRow> rows;
        std::size_t expectedCount;
        const char* countText;
    };
    const Table tables[] = {{starterWebsiteRows(), 26, "26 recognised by default"},
                            {starterApplicationRows(), 27, "27 recognised by default"}};
    for (const Table& table : tables) {
        ASSERT_EQ(table.rows.size(), table.expectedCount);
        EXPECT_EQ(recognisedByDefaultText(table.rows.size()), table.countText);
        std::set<std::string> keys;
        for (const StarterClassificationRow& row : table.rows) {
            EXPECT_FALSE(row.name.empty());
            EXPECT_TRUE(keys.insert(asciiLowercased(row.detail)).second) << row.detail;
            EXPECT_TRUE(row.classification == C::focused || row.classification == C::neutral ||
                        row.classification == C::distracting)
                << row.detail;
        }
    }
    EXPECT_EQ(starterWebsiteRows().front(),
              (StarterClassificationRow{"Google Docs", "docs.google.com", C::focused}));
    EXPECT_EQ(starterApplicationRows().back(),
              (StarterClassificationRow{"Steam", "com.valvesoftware.steam", C::distracting}));
}

}  // namespace
}  // namespace lumenote::classification
