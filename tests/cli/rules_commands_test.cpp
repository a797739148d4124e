#include <gtest/gtest.h>

#include <chrono>

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
    EXPECT_EQ(dot.err, "\".\" is not a hostname: it names no website.\n");
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

TEST_F(RulesCommandTest, StarterListsEveryTableWithItsCount) {
    const CliRun starter = run({"rules", "starter"});
    ASSERT_EQ(starter.status, 0) << starter.err;
    EXPECT_TRUE(
        starter.out.starts_with("Starter suggestions\nWebsites · 26 recognised by default\n"))
        << starter.out;
    const auto applications = starter.out.find("Applications · 27 recognised by default\n");
    ASSERT_NE(applications, std::string::npos);
    const auto linuxRows = classification::linuxStarterApplicationRows();
    const auto linux = starter.out.find("Linux applications · " +
                                        classification::recognisedByDefaultText(linuxRows.size()));
    ASSERT_NE(linux, std::string::npos);
    ASSERT_LT(applications, linux);
    // Every row appears in its own table with its key and classification.
    const std::string websiteSection = starter.out.substr(0, applications);
    const std::string applicationSection = starter.out.substr(applications, linux - applications);
    const std::string linuxSection = starter.out.substr(linux);
    for (const auto& [rows, section] :
         {std::pair{classification::starterWebsiteRows(), &websiteSection},
          std::pair{classification::starterApplicationRows(), &applicationSection},
          std::pair{linuxRows, &linuxSection}}) {
        for (const auto& row : rows) {
            const auto at = section->find("  " + row.name + " ");
            ASSERT_NE(at, std::string::npos) << row.name;
            const std::string line = section->substr(at, section->find('\n', at) - at);
            EXPECT_TRUE(contains(*section, "  " + row.detail + " ")) << row.detail;
            EXPECT_TRUE(line.ends_with(rawValue(row.classification))) << line;
        }
    }
}

// ---- hostnames ----

TEST_F(RulesCommandTest, WebsiteRulesRefuseWhatIsNotAHostnameAndKeepTheRestAsTyped) {
    struct Case {
        const char* host;
        const char* reason;
    };
    const Case cases[] = {
        {"not a host!!",
         "use only letters a-z, digits, hyphens and dots (international names in their xn-- "
         "form)."},
        {"https://example.com", "leave out the scheme, such as https://."},
        {"example.com:8080", "leave out the port; a rule applies to every port."},
    };
    for (const Case& c : cases) {
        const CliRun refused = run({"rules", "set-website", c.host, "focused"});
        EXPECT_EQ(refused.status, 1) << c.host;
        EXPECT_EQ(refused.out, "") << c.host;
        EXPECT_EQ(refused.err,
                  "\"" + std::string(c.host) + "\" is not a hostname: " + c.reason + "\n");
    }
    EXPECT_TRUE(websiteRules().empty());
    // Letter case and a final dot are normalised; "www." stays.
    EXPECT_EQ(run({"rules", "set-website", "WWW.Example.COM.", "neutral"}).out,
              "www.example.com is now neutral.\n");
    ASSERT_EQ(websiteRules().size(), 1u);
    EXPECT_EQ(websiteRules()[0].hostname, "www.example.com");
}

// ---- application ids ----

TEST_F(RulesCommandTest, AnIdNeverRecordedIsSavedWithAWarningNamingLookalikes) {
    record(R"(
{"at":0,"do":"frontmost","bundle":"debian-xterm","name":"XTerm"}
{"at":0,"do":"start","subject":"Shell","duration":600}
{"at":30,"do":"end"}
)");
    const std::string lookalikeWarning =
        "Warning: nothing has been recorded as XTerm, and no starter suggestion names it. A rule "
        "applies only to an application recorded under exactly that id.\n"
        "Recorded with a similar id or name: XTerm (debian-xterm).\n"
        "The applications recorded lately: lumenote-cli rules recent\n";
    struct Case {
        const char* id;
        std::string warning;
    };
    const Case cases[] = {
        {"XTerm", lookalikeWarning},
        {"debian-xterm", ""},      // recorded
        {"org.gnome.Evince", ""},  // a starter key, though never recorded here
        {"org.gnome.evince",
         "Warning: nothing has been recorded as org.gnome.evince, and no starter suggestion "
         "names it. A rule applies only to an application recorded under exactly that id.\n"
         "The applications recorded lately: lumenote-cli rules recent\n"},
    };
    for (const Case& c : cases) {
        const CliRun saved = run({"rules", "set-app", c.id, "neutral"});
        EXPECT_EQ(saved.status, 0) << c.id;
        EXPECT_EQ(saved.out, std::string(c.id) + " (" + c.id + ") is now neutral.\n");
        EXPECT_EQ(saved.err, c.warning) << c.id;
    }
    // Warned or not, every rule was saved.
    EXPECT_EQ(applicationRules().size(), 4u);
}

// ---- remove ----

TEST_F(RulesCommandTest, RemoveTakesTheRuleUnderTheKeyAndSaysWhichKind) {
    for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
             {"rules", "set-app", "org.gnome.Evince", "distracting"},
             {"rules", "set-app", "localhost", "focused"},
             {"rules", "set-website", "YouTube.com", "distracting"},
             {"rules", "set-website", "localhost", "neutral"}}) {
        ASSERT_EQ(run(arguments).status, 0);
    }
    // A rule saved before hostnames were checked can still be removed.
    ASSERT_TRUE(openStore()->saveWebsiteClassification({"not a host!!", "focused", Date{}}));

    struct Case {
        const char* key;
        int status;
        const char* out;
        const char* err;
    };
    const Case cases[] = {
        {"org.gnome.Evince", 0, "Removed the application rule for org.gnome.Evince.\n", ""},
        {" YOUTUBE.com. ", 0, "Removed the website rule for youtube.com.\n", ""},
        {"localhost", 0,
         "Removed the application rule for localhost.\nRemoved the website rule for "
         "localhost.\n",
         ""},
        {"not a host!!", 0, "Removed the website rule for not a host!!.\n", ""},
        {"org.gnome.Evince", 1, "",
         "No application or website rule has the key org.gnome.Evince (see lumenote-cli rules "
         "list).\n"},
        // Application ids are exact.
        {"ORG.GNOME.EVINCE", 1, "",
         "No application or website rule has the key ORG.GNOME.EVINCE (see lumenote-cli rules "
         "list).\n"},
    };
    for (const Case& c : cases) {
        const CliRun removed = run({"rules", "remove", c.key});
        EXPECT_EQ(removed.status, c.status) << c.key;
        EXPECT_EQ(removed.out, c.out) << c.key;
        EXPECT_EQ(removed.err, c.err) << c.key;
    }
    EXPECT_TRUE(applicationRules().empty());
    EXPECT_TRUE(websiteRules().empty());
    EXPECT_EQ(run({"rules", "remove", " "}).status, 2);
}

// ---- recent ----

TEST_F(RulesCommandTest, RecentListsWhatWasRecordedLatelyWithItsClassNow) {
    EXPECT_EQ(run({"rules", "recent"}).out,
              "No applications recorded in the last 30 days.\n"
              "No websites recorded in the last 30 days.\n");
    const Date now = Date::fromSystemClock(std::chrono::system_clock::now());
    record(R"(
{"at":0,"do":"frontmost","bundle":"old.application","name":"Old"}
{"at":0,"do":"start","subject":"Long ago","duration":600}
{"at":30,"do":"end"}
)",
           now.addingSeconds(-40 * 24 * 60 * 60));
    record(R"(
{"at":0,"do":"frontmost","bundle":"org.gnome.Evince","name":"Document Viewer"}
{"at":0,"do":"start","subject":"Reading","duration":3600}
{"at":60,"do":"frontmost","bundle":"debian-xterm","name":"XTerm"}
{"at":90,"do":"frontmost","bundle":"org.chromium.Chromium","name":"Chromium"}
{"at":90,"do":"browser","bundle":"org.chromium.Chromium","hostname":"en.wikipedia.org"}
{"at":120,"do":"end"}
)",
           now.addingSeconds(-2 * 24 * 60 * 60));
    ASSERT_EQ(run({"rules", "set-app", "debian-xterm", "distracting"}).status, 0);

    const CliRun recent = run({"rules", "recent"});
    ASSERT_EQ(recent.status, 0) << recent.err;
    EXPECT_EQ(recent.out,
              "Applications recorded in the last 30 days (3)\n"
              "  org.chromium.Chromium  Chromium         unclassified\n"
              "  debian-xterm           XTerm            distracting\n"
              "  org.gnome.Evince       Document Viewer  focused\n"
              "Websites recorded in the last 30 days (1)\n"
              "  en.wikipedia.org  neutral\n");
}

TEST_F(RulesCommandTest, RulesNeedASubcommand) {
    EXPECT_EQ(run({"rules"}).status, 2);
    EXPECT_EQ(run({"rules", "frobnicate"}).status, 2);
}

}  // namespace
}  // namespace lumenote::cli::testing
