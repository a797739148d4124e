#include "recording/activity_timeline.hpp"

#include <gtest/gtest.h>

namespace lumenote::recording {
namespace {

ActivityState application(const std::string& bundle,
                          classification::ActivityClassification classification =
                              classification::ActivityClassification::focused) {
    ActivityState state;
    state.applicationName = bundle;
    state.bundleIdentifier = bundle;
    state.classification = classification;
    return state;
}

TrackingInstant at(double monotonic, double wall) {
    return {Date{wall}, monotonic};
}
TrackingInstant at(double seconds) {
    return at(seconds, 1000 + seconds);
}

TEST(ActivityTimelineTest, SameStateTwiceOpensOneStretch) {
    ActivityTimelineEngine engine;
    EXPECT_FALSE(engine.observe(application("editor"), at(0)));
    EXPECT_FALSE(engine.observe(application("editor"), at(1)));
    ASSERT_TRUE(engine.openInterval());
    EXPECT_EQ(engine.openInterval()->start, at(0));
}

TEST(ActivityTimelineTest, ConsecutiveStretchesShareTheirBoundary) {
    ActivityTimelineEngine engine;
    engine.observe(application("editor"), at(0));
    const auto first = engine.observe(application("browser"), at(7));
    const auto second = engine.finalize(at(12));
    ASSERT_TRUE(first && second);
    EXPECT_EQ(first->duration, 7.0);
    EXPECT_EQ(first->endDate, second->startDate);
    EXPECT_EQ(second->duration, 5.0);
    EXPECT_EQ(second->state.bundleIdentifier, "browser");
    EXPECT_FALSE(engine.openInterval());
}

TEST(ActivityTimelineTest, EachOfTheTwelveFieldsSplitsAStretch) {
    const ActivityState base = application("browser");
    std::vector<ActivityState> variants(12, base);
    variants[0].applicationName = "Other";
    variants[1].bundleIdentifier = "other";
    variants[2].classification = classification::ActivityClassification::distracting;
    variants[3].isInactive = true;
    variants[4].activitySource = ActivitySourceType::website;
    variants[5].browserBundleIdentifier = "org.chromium.Chromium";
    variants[6].hostname = "example.org";
    variants[7].tabSessionIdentifier = Uuid::generate();
    variants[8].pdfIdentifier = Uuid::generate();
    variants[9].pdfDisplayLabel = "notes.pdf";
    variants[10].pdfLabelSource = classification::BrowserPDFLabelSource::filename;
    variants[11].browserFallbackReason = BrowserFallbackReason::staleEvent;
    for (std::size_t i = 0; i < variants.size(); ++i) {
        ActivityTimelineEngine engine;
        engine.observe(base, at(0));
        EXPECT_TRUE(engine.observe(variants[i], at(1))) << "field " << i;
    }
}

TEST(ActivityTimelineTest, WallClockJumpBackwardsLeavesTheMonotonicDuration) {
    ActivityTimelineEngine engine;
    engine.observe(application("editor"), at(100, 5000));
    const auto closed = engine.finalize(at(160, 1400));  // wall clock set back an hour
    ASSERT_TRUE(closed);
    EXPECT_EQ(closed->duration, 60.0);
    EXPECT_EQ(closed->startDate, Date{5000});
    EXPECT_EQ(closed->endDate, Date{1400});
}

TEST(ActivityTimelineTest, FinalizeWithNothingOpenReturnsNothing) {
    ActivityTimelineEngine engine;
    EXPECT_FALSE(engine.finalize(at(3)));
    engine.observe(application("editor"), at(0));
    EXPECT_TRUE(engine.finalize(at(3)));
    EXPECT_FALSE(engine.finalize(at(4)));
}

TEST(ActivityTimelineTest, ClosingInThePastSplitsAtThatInstant) {
    // The recorder notices inactivity at t=130 but closes the active stretch
    // where the idle time crossed the threshold, at t=100.
    ActivityTimelineEngine engine;
    engine.observe(application("editor"), at(0));
    ActivityState idle = application("editor");
    idle.isInactive = true;
    const auto active = engine.observe(idle, at(100));
    ASSERT_TRUE(active);
    EXPECT_EQ(active->duration, 100.0);
    EXPECT_EQ(engine.openInterval()->start, at(100));
    const auto inactive = engine.finalize(at(130));
    EXPECT_EQ(inactive->duration, 30.0);
}

TEST(ActivityTimelineTest, ClosingBeforeTheStartGivesAnEmptyStretchAtTheStart) {
    ActivityTimelineEngine engine;
    engine.observe(application("editor"), at(50));
    const auto closed = engine.observe(application("browser"), at(40));
    ASSERT_TRUE(closed);
    EXPECT_EQ(closed->duration, 0.0);
    EXPECT_EQ(closed->endDate, closed->startDate);
    EXPECT_EQ(engine.openInterval()->start, at(50));
}

}  // namespace
}  // namespace lumenote::recording
