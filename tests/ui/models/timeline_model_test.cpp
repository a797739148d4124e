// The timeline's blocks from a session's segments, and where each block sits
// on a strip of a given width.
#include "ui/models/timeline_model.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace lumenote::ui::models {
namespace {

using classification::ActivityClassification;
using recording::ActivitySegment;
using recording::ActivitySourceType;

constexpr double kNine = 800000000.0;  // an arbitrary morning, seconds since 2001

Date at(double minutes) {
    return Date{kNine + minutes * 60.0};
}

ActivitySegment segment(double fromMinute, double toMinute, std::string application,
                        ActivityClassification classification = ActivityClassification::focused) {
    return ActivitySegment(Uuid::generate(), at(fromMinute), at(toMinute),
                           (toMinute - fromMinute) * 60.0, std::move(application),
                           "org.example." + application, classification, false);
}

ActivitySegment noInput(double fromMinute, double toMinute) {
    ActivitySegment idle = segment(fromMinute, toMinute, "Editor");
    idle.isInactive = true;
    return idle;
}

ActivitySegment asleep(double fromMinute, double toMinute) {
    ActivitySegment sleep =
        segment(fromMinute, toMinute, "Mac asleep", ActivityClassification::ignored);
    sleep.isInactive = true;
    sleep.setActivitySource(ActivitySourceType::system);
    return sleep;
}

TimelineBlock block(double fromMinute, double toMinute, TimelineBlockKind kind,
                    std::optional<ActivityClassification> classification, std::string name) {
    return {at(fromMinute), at(toMinute), kind, classification, std::move(name)};
}

TEST(TimelineBlocks, EmptySessionHasNoBlocksAndNoSpan) {
    EXPECT_TRUE(timelineBlocks({}).empty());
    EXPECT_FALSE(timelineSpan({}).has_value());
}

TEST(TimelineBlocks, MergesTouchingSegmentsOfOneActivityAndKeepsGaps) {
    //  Editor Editor | Video |  (pause)  | Editor
    //  0----5-----10-------15           20-----25
    const auto blocks = timelineBlocks(
        {segment(0, 5, "Editor"), segment(5, 10, "Editor"),
         segment(10, 15, "Video", ActivityClassification::distracting), segment(20, 25, "Editor")});
    const std::vector<TimelineBlock> expected{
        block(0, 10, TimelineBlockKind::activity, ActivityClassification::focused, "Editor"),
        block(10, 15, TimelineBlockKind::activity, ActivityClassification::distracting, "Video"),
        block(20, 25, TimelineBlockKind::activity, ActivityClassification::focused, "Editor")};
    EXPECT_EQ(blocks, expected);
    EXPECT_EQ(timelineSpan(blocks), (TimelineSpan{at(0), at(25)}));
}

TEST(TimelineBlocks, SameNameInAnotherClassStaysApart) {
    const auto blocks = timelineBlocks(
        {segment(0, 5, "Browser"), segment(5, 10, "Browser", ActivityClassification::neutral)});
    ASSERT_EQ(blocks.size(), 2u);
    EXPECT_EQ(blocks[1].classification, ActivityClassification::neutral);
}

TEST(TimelineBlocks, NoInputAndSleepAreTheirOwnKindsWithoutClass) {
    const auto blocks = timelineBlocks({segment(0, 5, "Editor"), noInput(5, 8), noInput(8, 12),
                                        asleep(12, 40), segment(40, 41, "Editor")});
    const std::vector<TimelineBlock> expected{
        block(0, 5, TimelineBlockKind::activity, ActivityClassification::focused, "Editor"),
        block(5, 12, TimelineBlockKind::noInput, std::nullopt, kNoInputBlockName),
        block(12, 40, TimelineBlockKind::sleep, std::nullopt, "Mac asleep"),
        block(40, 41, TimelineBlockKind::activity, ActivityClassification::focused, "Editor")};
    EXPECT_EQ(blocks, expected);
}

TEST(TimelineBlocks, NamesComeFromTheReplayTitles) {
    ActivitySegment website = segment(0, 5, "Browser");
    website.setActivitySource(ActivitySourceType::website);
    website.hostname = "例え.jp";
    ActivitySegment pdf = segment(5, 9, "Browser");
    pdf.setActivitySource(ActivitySourceType::localPDF);
    pdf.setPdfDisplayLabel("Lecture 3.pdf");
    const auto blocks = timelineBlocks({website, pdf, segment(9, 10, "")});
    ASSERT_EQ(blocks.size(), 3u);
    EXPECT_EQ(blocks[0].name, "例え.jp");
    EXPECT_EQ(blocks[1].name, "Lecture 3.pdf");
    EXPECT_EQ(blocks[2].name, "Unknown application");
}

TEST(TimelineBlocks, UnsortedAndOverlappingInputGivesOrderedBlocksThatNeverOverlap) {
    //  A 0------10
    //  B     5------15      cut to 10-15
    //  C   2--4             inside A: dropped
    //  D                20--30 (given first)
    const auto blocks = timelineBlocks(
        {segment(20, 30, "D"), segment(5, 15, "B"), segment(0, 10, "A"), segment(2, 4, "C")});
    ASSERT_EQ(blocks.size(), 3u);
    EXPECT_EQ(blocks[0].name, "A");
    EXPECT_EQ(blocks[1],
              block(10, 15, TimelineBlockKind::activity, ActivityClassification::focused, "B"));
    EXPECT_EQ(blocks[2].name, "D");
    for (std::size_t i = 1; i < blocks.size(); ++i) {
        EXPECT_LE(blocks[i - 1].end, blocks[i].start);
    }
}

TEST(TimelineBlocks, BackwardsEmptyAndBrokenSegmentsAreDropped) {
    ActivitySegment broken = segment(3, 4, "Broken");
    broken.endDate = Date{std::numeric_limits<double>::quiet_NaN()};
    const auto blocks = timelineBlocks(
        {segment(5, 2, "Backwards"), segment(1, 1, "Empty"), broken, segment(6, 7, "Kept")});
    ASSERT_EQ(blocks.size(), 1u);
    EXPECT_EQ(blocks[0].name, "Kept");
}

TEST(TimelineGeometry, BlocksMapOntoTheWidthProportionally) {
    const TimelineSpan span{at(0), at(100)};
    EXPECT_EQ(blockPixels(block(0, 25, TimelineBlockKind::activity, {}, "a"), span, 200.0),
              (PixelRange{0.0, 50.0}));
    EXPECT_EQ(blockPixels(block(75, 100, TimelineBlockKind::activity, {}, "b"), span, 200.0),
              (PixelRange{150.0, 200.0}));
}

TEST(TimelineGeometry, PartsOutsideTheSpanAreCutAndBlocksWhollyOutsideAreNotDrawn) {
    const TimelineSpan span{at(10), at(20)};
    EXPECT_EQ(blockPixels(block(5, 15, TimelineBlockKind::activity, {}, "a"), span, 100.0),
              (PixelRange{0.0, 50.0}));
    EXPECT_EQ(blockPixels(block(15, 30, TimelineBlockKind::activity, {}, "b"), span, 100.0),
              (PixelRange{50.0, 100.0}));
    EXPECT_FALSE(blockPixels(block(0, 10, TimelineBlockKind::activity, {}, "before"), span, 100.0));
    EXPECT_FALSE(blockPixels(block(20, 30, TimelineBlockKind::activity, {}, "after"), span, 100.0));
}

TEST(TimelineGeometry, AShortBlockKeepsOnePixelInsideTheStrip) {
    const TimelineSpan span{at(0), at(600)};  // ten hours on 100 px: 6 minutes a pixel
    const auto middle =
        blockPixels(block(300, 300.5, TimelineBlockKind::noInput, {}, "x"), span, 100.0);
    ASSERT_TRUE(middle);
    EXPECT_DOUBLE_EQ(middle->right - middle->left, 1.0);
    const auto atEnd =
        blockPixels(block(599.9, 600, TimelineBlockKind::noInput, {}, "y"), span, 100.0);
    ASSERT_TRUE(atEnd);
    EXPECT_EQ(*atEnd, (PixelRange{99.0, 100.0}));
}

TEST(TimelineGeometry, ZeroSpanOrWidthDrawsNothing) {
    const TimelineBlock any = block(0, 1, TimelineBlockKind::activity, {}, "a");
    EXPECT_FALSE(blockPixels(any, {at(0), at(0)}, 100.0));
    EXPECT_FALSE(blockPixels(any, {at(1), at(0)}, 100.0));
    EXPECT_FALSE(blockPixels(any, {at(0), at(1)}, 0.0));
    EXPECT_FALSE(blockPixels(any, {at(0), at(1)}, std::nan("")));
}

TEST(TimelineGeometry, TheBlockUnderAPointerIsFoundAndGapsFindNone) {
    const std::vector<TimelineBlock> blocks{block(0, 10, TimelineBlockKind::activity, {}, "a"),
                                            block(20, 30, TimelineBlockKind::activity, {}, "b")};
    const TimelineSpan span{at(0), at(30)};
    EXPECT_EQ(blockIndexAt(blocks, span, 300.0, 0.0), 0u);
    EXPECT_EQ(blockIndexAt(blocks, span, 300.0, 99.9), 0u);
    EXPECT_FALSE(blockIndexAt(blocks, span, 300.0, 100.0));  // the pause
    EXPECT_EQ(blockIndexAt(blocks, span, 300.0, 200.0), 1u);
    EXPECT_FALSE(blockIndexAt(blocks, span, 300.0, 300.0));
    EXPECT_FALSE(blockIndexAt(blocks, span, 300.0, -1.0));
}

}  // namespace
}  // namespace lumenote::ui::models
