#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "recording/replay_rows.hpp"
#include "recording/unclassified_activity_review.hpp"

namespace lumenote::recording {
namespace {

using classification::ActivityClassification;

const Date kStart = Date::fromUnixSeconds(1795600000.0);

// One ten-second segment after the previous one: `what` is "app:<bundle>",
// "site:<browser>:<host>" or "fallback:<browser>".
std::vector<ActivitySegment> timeline(const std::vector<std::string>& whats) {
    std::vector<ActivitySegment> segments;
    double at = 0;
    for (const std::string& what : whats) {
        ActivitySegment segment(Uuid::generate(), kStart.addingSeconds(at),
                                kStart.addingSeconds(at + 10), 10.0, what, what,
                                ActivityClassification::neutral, false);
        const auto colon = what.find(':');
        const std::string kind = what.substr(0, colon);
        const std::string rest = what.substr(colon + 1);
        if (kind == "site") {
            const auto second = rest.find(':');
            segment.activitySourceRawValue = "website";
            segment.browserBundleIdentifier = rest.substr(0, second);
            segment.bundleIdentifier = rest.substr(0, second);
            segment.hostname = rest.substr(second + 1);
        } else if (kind == "fallback") {
            segment.activitySourceRawValue = "browserFallback";
            segment.browserBundleIdentifier = rest;
            segment.bundleIdentifier = rest;
        } else {
            segment.activitySourceRawValue = "application";
            segment.bundleIdentifier = rest;
        }
        segments.push_back(segment);
        at += 10;
    }
    return segments;
}

// Each row as its title, its children's titles in brackets.
std::string shape(const std::vector<ReplayDisplaySegment>& rows) {
    std::string text;
    for (const ReplayDisplaySegment& row : rows) {
        text += text.empty() ? "" : " ";
        text += row.children.empty() ? row.title : row.title + "[" + shape(row.children) + "]";
    }
    return text;
}

TEST(ReplayRowsTest, NeighboursOfOneKeyShareARowAndBrowserStretchesNestOneLevel) {
    const struct {
        std::vector<std::string> timeline;
        std::string rows;
    } cases[] = {
        {{}, ""},
        {{"app:editor", "app:editor", "app:player"}, "app:editor app:player"},
        // One page only: nothing to gather.
        {{"site:chromium:a.org", "site:chromium:a.org"}, "a.org"},
        {{"fallback:chromium", "site:chromium:a.org", "site:chromium:b.org", "app:editor"},
         "Browser activity[fallback:chromium a.org b.org] app:editor"},
        // Two browsers side by side are two stretches.
        {{"site:chromium:a.org", "site:chromium:b.org", "site:firefox:a.org", "site:firefox:a.org"},
         "Browser activity[a.org b.org] a.org"},
        // Returning to a page after another is a row of its own.
        {{"site:chromium:a.org", "site:chromium:b.org", "site:chromium:a.org"},
         "Browser activity[a.org b.org a.org]"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(shape(replayRows(timeline(c.timeline))), c.rows) << c.rows;
    }
}

TEST(ReplayRowsTest, AClassOrInputChangeSplitsARowAndTotalsCoverEverySegment) {
    auto segments = timeline({"app:editor", "app:editor", "app:editor", "app:editor"});
    segments[1].isInactive = true;
    segments[3].setClassification(ActivityClassification::focused);
    const auto rows = replayRows(segments);
    ASSERT_EQ(rows.size(), 4u);

    auto browsing = timeline({"site:chromium:a.org", "site:chromium:b.org", "site:chromium:b.org"});
    const auto nested = replayRows(browsing);
    ASSERT_EQ(nested.size(), 1u);
    EXPECT_TRUE(nested[0].directSegments.empty());
    EXPECT_EQ(nested[0].rawSegments.size(), 3u);
    EXPECT_EQ(nested[0].totalDuration(), 30.0);
    ASSERT_EQ(nested[0].children.size(), 2u);
    EXPECT_EQ(nested[0].children[1].directSegments.size(), 2u);
    EXPECT_NE(nested[0].id, nested[0].children[0].id);
}

TEST(ReplayRowsTest, TitlesFallBackWhenTheRecordLacksAName) {
    ActivitySegment segment;
    segment.activitySourceRawValue = "website";
    EXPECT_EQ(segmentTitle(segment), "Website");
    segment.activitySourceRawValue = "localPDF";
    EXPECT_EQ(segmentTitle(segment), "Local PDF");
    segment.pdfDisplayLabelStorage = "notes.pdf";
    EXPECT_EQ(segmentTitle(segment), "notes.pdf");
    segment.activitySourceRawValue.reset();
    EXPECT_EQ(segmentTitle(segment), "Unknown application");
}

UnclassifiedActivityTally tally(UnclassifiedActivityTally::Kind kind, std::string key,
                                double seconds, Uuid session = Uuid::generate()) {
    UnclassifiedActivityTally t;
    t.kind = kind;
    t.bundleIdentifier = kind == UnclassifiedActivityTally::Kind::application ? key : "browser";
    t.applicationName = key;
    if (kind == UnclassifiedActivityTally::Kind::website) {
        t.hostname = key;
    }
    t.session = session;
    t.segmentCount = 1;
    t.totalDuration = seconds;
    return t;
}

TEST(UnclassifiedReviewTest, OnlyWhatIsStillUnclassifiedIsOfferedLongestFirst) {
    using Kind = UnclassifiedActivityTally::Kind;
    classification::ClassificationLookup lookup("com.tallywise.Lumenote");
    lookup.setApplicationRule("org.example.Ruled", ActivityClassification::focused);
    const Uuid shared = Uuid::generate();

    UnclassifiedActivityTally pdf = tally(Kind::localPDF, "", 500);
    pdf.pdfIdentifier = Uuid::generate();
    pdf.currentPDFClassification = "distracting";  // classified since it was recorded
    UnclassifiedActivityTally unnamedPDF = tally(Kind::localPDF, "", 5);
    unnamedPDF.pdfIdentifier = Uuid::generate();

    const auto groups = unclassifiedActivityGroups(
        {tally(Kind::application, "org.example.Ruled", 900),
         tally(Kind::website, "github.com", 800),  // a starter suggestion covers it now
         tally(Kind::website, "b.example", 20, shared), tally(Kind::website, "b.example", 20),
         tally(Kind::website, "a.example", 40, shared), pdf, unnamedPDF,
         tally(Kind::application, "", 1)},
        lookup);
    ASSERT_EQ(groups.size(), 4u);
    EXPECT_EQ(groups[0].id, "website:a.example") << "equal totals in title order";
    EXPECT_EQ(groups[1].id, "website:b.example");
    EXPECT_EQ(groups[1].sessionCount, 2u);
    EXPECT_EQ(groups[1].segmentCount, 2u);
    EXPECT_EQ(groups[2].title, "Local PDF");
    EXPECT_EQ(groups[2].id, "localPDF:" + unnamedPDF.pdfIdentifier->upperString());
    EXPECT_EQ(groups[3].title, "Unknown application");
}

}  // namespace
}  // namespace lumenote::recording
