#include "ui/models/review_list.hpp"

#include <gtest/gtest.h>

namespace lumenote::ui::models {
namespace {

using recording::UnclassifiedActivityGroup;

UnclassifiedActivityGroup group(std::string id, UnclassifiedActivityGroup::Kind kind,
                                double seconds, std::size_t segments, std::size_t sessions) {
    UnclassifiedActivityGroup made;
    made.id = std::move(id);
    made.kind = kind;
    made.title = "Title of " + made.id;
    made.subtitle = "Subtitle";
    made.totalDuration = seconds;
    made.segmentCount = segments;
    made.sessionCount = sessions;
    return made;
}

TEST(ReviewListTest, AnEmptyListSaysNothingWaitsAndInvitesNobody) {
    EXPECT_EQ(reviewRows({}), std::vector<ReviewRow>{});
    EXPECT_EQ(reviewSummaryText({}),
              "Nothing waits for review: every recorded activity has a class.");
    EXPECT_EQ(reviewInvitationText({}), "");
}

TEST(ReviewListTest, OneGroupIsCountedInTheSingular) {
    const std::vector groups{
        group("application:a", UnclassifiedActivityGroup::Kind::application, 65 * 60, 1, 1)};
    const auto rows = reviewRows(groups);
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0].durationText, "1 h 05 min");
    EXPECT_EQ(rows[0].evidenceText, "1 stretch in 1 session");
    EXPECT_FALSE(rows[0].isLocalPDF);
    EXPECT_EQ(reviewSummaryText(groups), "1 activity holds 1 h 05 min without a class.");
    EXPECT_EQ(reviewInvitationText(groups), "1 activity waits for review (1 h 05 min)");
}

TEST(ReviewListTest, RowsKeepTheCoresOrderAndSumEveryGroup) {
    const std::vector groups{
        group("website:example.org", UnclassifiedActivityGroup::Kind::website, 40 * 60, 3, 2),
        group("localPDF:X", UnclassifiedActivityGroup::Kind::localPDF, 5 * 60, 2, 1),
        group("application:b", UnclassifiedActivityGroup::Kind::application, 38, 1, 1)};
    const auto rows = reviewRows(groups);
    ASSERT_EQ(rows.size(), 3u);
    EXPECT_EQ(rows[0].groupId, "website:example.org");
    EXPECT_EQ(rows[0].evidenceText, "3 stretches in 2 sessions");
    EXPECT_TRUE(rows[1].isLocalPDF);
    EXPECT_EQ(rows[2].durationText, "38 s");
    EXPECT_EQ(reviewSummaryText(groups), "3 activities hold 45 min without a class.");
    EXPECT_EQ(reviewInvitationText(groups), "3 activities wait for review (45 min)");
}

}  // namespace
}  // namespace lumenote::ui::models
