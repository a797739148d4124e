#include "ui/models/classification_settings.hpp"

#include <gtest/gtest.h>

namespace lumenote::ui::models {
namespace {

using classification::ActivityClassification;

TEST(ClassificationSettings, ApplicationRulesListByNameIgnoringCaseThenIdentifier) {
    const std::vector<classification::AppClassification> rules{
        {"org.gnome.TextEditor", "Text Editor", "focused", {}},
        {"com.valvesoftware.Steam", "steam", "distracting", {}},
        {"org.example.Nameless", "", "neutral", {}},
        {"org.other.TextEditor", "Text Editor", "ignored", {}},
    };
    const std::vector<RuleRow> rows = applicationRuleRows(rules);
    ASSERT_EQ(rows.size(), 4u);
    EXPECT_EQ(rows[0], (RuleRow{"org.example.Nameless", "org.example.Nameless", "",
                                ActivityClassification::neutral}));
    EXPECT_EQ(rows[1].title, "steam");
    EXPECT_EQ(rows[2], (RuleRow{"org.gnome.TextEditor", "Text Editor", "org.gnome.TextEditor",
                                ActivityClassification::focused}));
    EXPECT_EQ(rows[3].key, "org.other.TextEditor");
    EXPECT_EQ(rows[3].classification, ActivityClassification::ignored);
}

TEST(ClassificationSettings, WebsiteRulesListByHostname) {
    const auto rows = websiteRuleRows({{"youtube.com", "distracting", {}},
                                       {"en.wikipedia.org", "focused", {}},
                                       {"docs.python.org", "focused", {}}});
    ASSERT_EQ(rows.size(), 3u);
    EXPECT_EQ(rows[0].title, "docs.python.org");
    EXPECT_EQ(rows[1].title, "en.wikipedia.org");
    EXPECT_EQ(rows[2].classification, ActivityClassification::distracting);
    EXPECT_TRUE(websiteRuleRows({}).empty());
}

TEST(ClassificationSettings, StarterRowsAreWebsitesThenBothApplicationTables) {
    const auto rows = starterRows();
    const auto websites = classification::starterWebsiteRows();
    const auto applications = classification::starterApplicationRows();
    const auto linux = classification::linuxStarterApplicationRows();
    ASSERT_EQ(rows.size(), websites.size() + applications.size() + linux.size());
    EXPECT_EQ(rows.front(), websites.front());
    EXPECT_EQ(rows[websites.size()], applications.front());
    EXPECT_EQ(rows.back(), linux.back());
    for (const auto& row : rows) {
        EXPECT_NE(row.classification, ActivityClassification::unclassified) << row.detail;
    }
}

}  // namespace
}  // namespace lumenote::ui::models
