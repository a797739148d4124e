#include <gtest/gtest.h>

#include "classification/starter_suggestions.hpp"
#include "cli/history_test_support.hpp"

namespace lumenote::cli::testing {
namespace {

class RulesCommandTest : public HistoryCommandTest {
  protected:
    std::vector<classification::AppClassification> applicationRules() {
        auto rules = openStore()->appClassifications();
        EXPECT_TRUE(rules.ok());
        return rules.ok() ? *rules : std::vector<classification::AppClassification>{};
    }
    std::vector<classification::WebsiteClassification> websiteRules() {
        auto rules = openStore()->websiteClassifications();
        EXPECT_TRUE(rules.ok());
        return rules.ok() ? *rules : std::vector<classification::WebsiteClassification>{};
    }
};

TEST_F(RulesCommandTest, SavedRulesAreStoredUnderTheirKeysAndListed) {
    EXPECT_EQ(run({"rules", "list"}).out, "No application rules.\nNo website rules.\n");

    const CliRun named = run({"rules", "set-app", "code.desktop", "neutral", "--name", "Code"});
    EXPECT_EQ(named.out, "Code (code.desktop) is now neutral.\n");
    // A second rule for the same identifier replaces the first.
    EXPECT_EQ(run({"rules", "set-app", "code.desktop", "focused", "--name", "Code"}).status, 0);
    // Identifiers are exact: another letter case is another application.
    const CliRun unnamed = run({"rules", "set-app", "Code.Desktop", "ignored"});
    EXPECT_EQ(unnamed.out, "Code.Desktop (Code.Desktop) is now ignored.\n");
    const CliRun site = run({"rules", "set-website", " YouTube.COM. ", "distracting"});
    EXPECT_EQ(site.out, "youtube.com is now distracting.\n");

    const auto applications = applicationRules();
    ASSERT_EQ(applications.size(), 2u);
    EXPECT_EQ(applications[0].bundleIdentifier, "Code.Desktop");
    EXPECT_EQ(applications[0].applicationName, "Code.Desktop");
    EXPECT_EQ(applications[0].classificationRawValue, "ignored");
    EXPECT_EQ(applications[1].bundleIdentifier, "code.desktop");
    EXPECT_EQ(applications[1].applicationName, "Code");
    EXPECT_EQ(applications[1].classificationRawValue, "focused");
    const auto websites = websiteRules();
    ASSERT_EQ(websites.size(), 1u);
    EXPECT_EQ(websites[0].hostname, "youtube.com");

    const CliRun listed = run({"rules", "list"});
    ASSERT_EQ(listed.status, 0) << listed.err;
    EXPECT_EQ(listed.out,
              "Application rules (2)\n"
              "  Code.Desktop  Code.Desktop  ignored\n"
              "  code.desktop  Code          focused\n"
              "Website rules (1)\n"
              "  youtube.com  distracting\n");
}

TEST_F(RulesCommandTest, AClassOutsideTheRawValuesIsAUsageErrorListingThem) {
    for (const char* bad : {"Focused", "distracted", "", "0", "focused "}) {
        for (const std::vector<std::string>& arguments :
             std::vector<std::vector<std::string>>{{"rules", "set-app", "code.desktop", bad},
                                                   {"rules", "set-website", "example.com", bad}}) {
            const CliRun refused = run(arguments);
            EXPECT_EQ(refused.status, 2) << bad;
            for (const char* name :
                 {"focused", "distracting", "neutral", "unclassified", "ignored"}) {
                EXPECT_TRUE(contains(refused.err, name)) << bad << ": " << refused.err;
            }
        }
    }
    EXPECT_TRUE(applicationRules().empty());
    EXPECT_TRUE(websiteRules().empty());
}

TEST_F(RulesCommandTest, KeysThatNameNothingAreRefused) {
    EXPECT_EQ(run({"rules", "set-app", "  ", "focused"}).status, 2);
    EXPECT_EQ(run({"rules", "set-website", "", "focused"}).status, 2);
    // A lone dot is not blank, but it normalises to no hostname at all.
    const CliRun dot = run({"rules", "set-website", ".", "focused"});
    EXPECT_EQ(dot.status, 1);
    EXPECT_EQ(dot.err, "The classification for . could not be saved.\n");
    EXPECT_TRUE(applicationRules().empty());
    EXPECT_TRUE(websiteRules().empty());
}

TEST_F(RulesCommandTest, ClearingRemovesOnlyItsOwnKindOfRule) {
    for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
             {"rules", "set-app", "a.desktop", "focused"},
             {"rules", "set-app", "b.desktop", "distracting"},
             {"rules", "set-website", "example.com", "neutral"}}) {
        ASSERT_EQ(run(arguments).status, 0);
    }
    const CliRun apps = run({"rules", "clear-apps"});
    EXPECT_EQ(apps.out, "Removed 2 application rules.\n");
    EXPECT_TRUE(applicationRules().empty());
    EXPECT_EQ(websiteRules().size(), 1u);

    const CliRun sites = run({"rules", "clear-websites"});
    EXPECT_EQ(sites.out, "Removed 1 website rule.\n");
    EXPECT_TRUE(websiteRules().empty());
    EXPECT_EQ(run({"rules", "clear-websites"}).out, "Removed 0 website rules.\n");
}

TEST_F(RulesCommandTest, StarterListsBothTablesWithTheirCounts) {
    const CliRun starter = run({"rules", "starter"});
    ASSERT_EQ(starter.status, 0) << starter.err;
    EXPECT_TRUE(
        starter.out.starts_with("Starter suggestions\nWebsites · 26 recognised by default\n"))
        << starter.out;
    const auto applications = starter.out.find("Applications · 27 recognised by default\n");
    ASSERT_NE(applications, std::string::npos);
    // Every row appears in its own table with its key and classification.
    const std::string websiteSection = starter.out.substr(0, applications);
    const std::string applicationSection = starter.out.substr(applications);
    for (const auto& [rows, section] :
         {std::pair{classification::starterWebsiteRows(), &websiteSection},
          std::pair{classification::starterApplicationRows(), &applicationSection}}) {
        for (const auto& row : rows) {
            const auto at = section->find("  " + row.name + " ");
            ASSERT_NE(at, std::string::npos) << row.name;
            const std::string line = section->substr(at, section->find('\n', at) - at);
            EXPECT_TRUE(contains(line, row.detail)) << line;
            EXPECT_TRUE(line.ends_with(rawValue(row.classification))) << line;
        }
    }
}

TEST_F(RulesCommandTest, RulesNeedASubcommand) {
    EXPECT_EQ(run({"rules"}).status, 2);
    EXPECT_EQ(run({"rules", "frobnicate"}).status, 2);
}

}  // namespace
}  // namespace lumenote::cli::testing
