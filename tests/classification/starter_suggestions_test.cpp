#include "classification/starter_suggestions.hpp"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "classification/linux_starter_applications.hpp"
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

// Ids as the Linux observer records them: desktop-file ids without
// ".desktop", from distribution packages, Flatpak and snapd.
TEST(LinuxStarterApplicationTest, RecordedDesktopIdsHaveTheirSuggestion) {
    struct Case {
        const char* recordedId;
        std::optional<C> expected;
    };
    const Case cases[] = {
        {"org.gnome.Evince", C::focused},
        {"libreoffice-writer", C::focused},
        {"org.libreoffice.LibreOffice.writer", C::focused},
        {"code", C::focused},
        {"md.obsidian.Obsidian", C::focused},
        {"org.telegram.desktop", C::neutral},  // the id itself ends in ".desktop"
        {"org.mozilla.Thunderbird", C::neutral},
        {"us.zoom.Zoom", C::neutral},
        {"zoom", C::neutral},  // the package's Zoom.desktop, in any letter case
        {"com.slack.Slack", C::neutral},
        {"com.spotify.Client", C::distracting},
        {"spotify_spotify", C::distracting},
        // The fixed row com.valvesoftware.steam already covers the Flatpak id.
        {"com.valvesoftware.Steam", C::distracting},
        // Terminals, browsers, the desktop's own tools: no suggestion.
        {"debian-xterm", std::nullopt},
        {"org.mozilla.firefox", std::nullopt},
        {"firefox_firefox", std::nullopt},
        {"org.gnome.Nautilus", std::nullopt},
        {"org.gnome.TextEditor", std::nullopt},
        // Near misses: the file name with its suffix, a handler entry, a
        // snap's application alone, a prefix of a row.
        {"org.gnome.Evince.desktop", std::nullopt},
        {"code-url-handler", std::nullopt},
        {"spotify_", std::nullopt},
        {"org.libreoffice", std::nullopt},
        {"", std::nullopt},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(starterApplicationClassification(c.recordedId), c.expected) << c.recordedId;
    }
}

TEST(LinuxStarterApplicationTest, EveryRowMatchesInAnyLetterCaseAndLooksLikeADesktopId) {
    for (const StarterRule& rule : linuxStarterApplicationRules()) {
        const std::string identifier(rule.key);
        EXPECT_EQ(starterApplicationClassification(identifier), rule.classification) << identifier;
        EXPECT_EQ(starterApplicationClassification(uppercased(identifier)), rule.classification)
            << identifier;
        EXPECT_TRUE(isStarterApplicationKey(identifier)) << identifier;
        // Subfolders become "-" in a desktop-file id, and the observer never
        // records white space.
        EXPECT_EQ(identifier.find_first_of("/ \t"), std::string::npos) << identifier;
    }
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
    EXPECT_EQ(starterApplicationRows().size(), starterApplicationRules().size());
    EXPECT_EQ(linuxStarterApplicationRows().size(), linuxStarterApplicationRules().size());
    EXPECT_EQ(starterWebsiteRows().front(),
              (StarterClassificationRow{"Google Docs", "docs.google.com", C::focused}));
    EXPECT_EQ(starterApplicationRows().back(),
              (StarterClassificationRow{"Steam", "com.valvesoftware.steam", C::distracting}));
}

// A key in both application tables would make one of its rows dead, and the
// Linux rows would then depend on which table the map was filled from first.
TEST(StarterTablesTest, ApplicationTablesShareNoKeyInAnyLetterCase) {
    std::set<std::string> keys;
    for (const auto& rows : {starterApplicationRows(), linuxStarterApplicationRows()}) {
        for (const StarterClassificationRow& row : rows) {
            EXPECT_FALSE(row.name.empty()) << row.detail;
            EXPECT_TRUE(keys.insert(asciiLowercased(row.detail)).second) << row.detail;
            EXPECT_TRUE(row.classification == C::focused || row.classification == C::neutral ||
                        row.classification == C::distracting)
                << row.detail;
        }
    }
}

}  // namespace
}  // namespace lumenote::classification
