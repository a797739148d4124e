#include <gtest/gtest.h>

#include <set>

#include "cli/history_test_support.hpp"

namespace lumenote::cli::testing {
namespace {

using nlohmann::json;

class ReviewCommandTest : public HistoryCommandTest {
  protected:
    json review() {
        const CliRun listed = run({"review", "--json"});
        EXPECT_EQ(listed.status, 0) << listed.err;
        return json::parse(listed.out);
    }
};

// Two sessions read the same unclassified host; one also leaves an
// unclassified application in front while no input arrives.
constexpr std::string_view kTwoSessions = R"(
{"at":0,"do":"frontmost","bundle":"org.chromium.Chromium","name":"Chromium"}
{"at":0,"do":"start","subject":"First","duration":3600}
{"at":1,"do":"browserEvent","event":{"browserBundleIdentifier":"org.chromium.Chromium","eventType":"tabActivated","hostname":"lecture-notes.example.org","temporaryTabIdentifier":"1"}}
{"at":61,"do":"frontmost","bundle":"org.example.Sketchpad","name":"Sketchpad"}
{"at":61,"do":"noInput"}
{"at":400,"do":"input"}
{"at":460,"do":"end"}
{"at":1000,"do":"frontmost","bundle":"org.chromium.Chromium","name":"Chromium"}
{"at":1000,"do":"start","subject":"Second","duration":3600}
{"at":1001,"do":"browserEvent","event":{"browserBundleIdentifier":"org.chromium.Chromium","eventType":"tabActivated","hostname":"lecture-notes.example.org","temporaryTabIdentifier":"2"}}
{"at":1061,"do":"browserEvent","event":{"browserBundleIdentifier":"org.chromium.Chromium","eventType":"heartbeat","hostname":"lecture-notes.example.org","temporaryTabIdentifier":"2"}}
{"at":1121,"do":"end"}
)";

TEST_F(ReviewCommandTest, OneHostAcrossTwoSessionsIsOneGroupAndTimeWithoutInputNeverAppears) {
    const json sessions = record(kTwoSessions);
    ASSERT_EQ(sessions.size(), 2u);
    const json groups = review();
    ASSERT_GE(groups.size(), 2u) << groups.dump(1);

    const json& website = groups[0];
    ASSERT_EQ(website["id"], "website:lecture-notes.example.org")
        << "the longest comes first: " << groups.dump(1);
    EXPECT_EQ(website["kind"], "website");
    EXPECT_EQ(website["sessionCount"], 2);
    EXPECT_EQ(website["totalDuration"], 180.0);
    std::set<std::string> ids(website["sessionIDs"].begin(), website["sessionIDs"].end());
    EXPECT_EQ(ids, (std::set<std::string>{sessions[0]["id"], sessions[1]["id"]}));

    // Sketchpad was in front from 61 to 460, without input from 61 to 400:
    // only the 90 s until the no-input threshold and the last 60 s count.
    const json& sketchpad = groups[1];
    EXPECT_EQ(sketchpad["id"], "application:org.example.Sketchpad");
    EXPECT_EQ(sketchpad["totalDuration"], 150.0) << "time without input is never offered";
    EXPECT_EQ(sketchpad["subtitle"], "org.example.Sketchpad");
}

TEST_F(ReviewCommandTest, ClassifyingAGroupWritesTheRuleThatTheNextRecordingUses) {
    record(kTwoSessions);
    const CliRun classified =
        run({"review", "classify", "website:lecture-notes.example.org", "focused"});
    ASSERT_EQ(classified.status, 0) << classified.err;
    EXPECT_EQ(classified.out, "lecture-notes.example.org is now focused.\n");
    for (const json& group : review()) {
        EXPECT_NE(group["id"], "website:lecture-notes.example.org") << "it left the list";
    }

    const json later = record(R"(
{"at":0,"do":"frontmost","bundle":"org.chromium.Chromium","name":"Chromium"}
{"at":0,"do":"start","subject":"Third","duration":3600}
{"at":1,"do":"browserEvent","event":{"browserBundleIdentifier":"org.chromium.Chromium","eventType":"tabActivated","hostname":"lecture-notes.example.org","temporaryTabIdentifier":"3"}}
{"at":61,"do":"end"}
{"at":61,"do":"expect","session":2,"focusedDuration":60}
)",
                              *parseIso8601("2026-11-17T08:00:00Z"));
    EXPECT_EQ(later.size(), 3u);
}

TEST_F(ReviewCommandTest, UnknownGroupsAndTheUnclassifiedClassAreRefused) {
    record(kTwoSessions);
    CliRun refused = run({"review", "classify", "website:never.example", "focused"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_TRUE(contains(refused.err, "No activity waiting for review has the id"));
    refused = run({"review", "classify", "website:lecture-notes.example.org", "unclassified"});
    EXPECT_EQ(refused.status, 2) << "not a class one can choose here";
}

TEST_F(ReviewCommandTest, AnEmptyHistoryHasNothingToReview) {
    const CliRun listed = run({"review"});
    EXPECT_EQ(listed.status, 0) << listed.err;
    EXPECT_EQ(listed.out, "Nothing waits for review: every recorded activity has a class.\n");
}

TEST_F(ReviewCommandTest, ReplayRowsNestThePagesOfOneBrowserStretch) {
    const json sessions = record(R"(
{"at":0,"do":"frontmost","bundle":"org.gnome.TextEditor","name":"Text Editor"}
{"at":0,"do":"start","subject":"Rows","duration":3600}
{"at":30,"do":"frontmost","bundle":"org.chromium.Chromium","name":"Chromium"}
{"at":31,"do":"browserEvent","event":{"browserBundleIdentifier":"org.chromium.Chromium","eventType":"tabActivated","hostname":"en.wikipedia.org","temporaryTabIdentifier":"1"}}
{"at":60,"do":"browserEvent","event":{"browserBundleIdentifier":"org.chromium.Chromium","eventType":"tabNavigated","hostname":"github.com","temporaryTabIdentifier":"1"}}
{"at":90,"do":"frontmost","bundle":"org.gnome.TextEditor","name":"Text Editor"}
{"at":120,"do":"end"}
)");
    ASSERT_EQ(sessions.size(), 1u);
    const CliRun rows = run({"show", sessions[0]["id"], "--rows", "--json"});
    ASSERT_EQ(rows.status, 0) << rows.err;
    const json replay = json::parse(rows.out);
    ASSERT_EQ(replay.size(), 3u) << replay.dump(1);
    EXPECT_EQ(replay[0]["title"], "Text Editor");
    EXPECT_EQ(replay[1]["title"], "Browser activity");
    EXPECT_TRUE(replay[1]["segments"].empty()) << "a parent has no segments of its own";
    ASSERT_EQ(replay[1]["children"].size(), 3u);
    EXPECT_EQ(replay[1]["children"][1]["title"], "en.wikipedia.org");
    EXPECT_EQ(replay[1]["children"][2]["title"], "github.com");
    EXPECT_EQ(replay[1]["duration"], 60.0);
    EXPECT_EQ(replay[2]["title"], "Text Editor");

    const CliRun text = run({"show", sessions[0]["id"], "--rows"});
    EXPECT_TRUE(contains(text.out, "    ")) << text.out;
    EXPECT_TRUE(contains(text.out, "Browser activity")) << text.out;
}

}  // namespace
}  // namespace lumenote::cli::testing
