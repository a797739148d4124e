// Changing an activity's class in one finished session: which segments it
// reaches (the activity's own, in any browser for a page; never time without
// input or the computer asleep), the totals recomputed under the session's
// own version, and the first method refused.
#include "recording/session_reclassification.hpp"

#include <gtest/gtest.h>

#include "no_input_test_support.hpp"
#include "recording/tracking_calculation.hpp"

namespace lumenote::recording {
namespace {

using classification::ActivityClassification;
using lumenote::testing::asleepAt;
using lumenote::testing::focusedAt;
using lumenote::testing::idleAt;
using lumenote::testing::segmentAt;
using lumenote::testing::sessionWith;
namespace Tracking = TrackingCalculationService;

ActivitySegment page(double from, double length, const char* host, const char* browser,
                     ActivityClassification classification) {
    ActivitySegment segment = segmentAt(from, length, false, classification);
    segment.bundleIdentifier = browser;
    segment.browserBundleIdentifier = browser;
    segment.setActivitySource(ActivitySourceType::website);
    segment.hostname = host;
    return segment;
}

StudySession withStoredTotals(StudySession session, TrackingCalculationVersion version) {
    Tracking::applyTotals(Tracking::calculateSessionTotals(session, *session.endDate, version),
                          session);
    return session;
}

TEST(ClassifiedActivity, IsKeyedAsItsRuleWouldBe) {
    const auto editor = classifiedActivityOf(focusedAt(0, 60));
    ASSERT_TRUE(editor.has_value());
    EXPECT_EQ(editor->kind, ClassifiedActivity::Kind::application);
    EXPECT_EQ(editor->bundleIdentifier, "com.example.editor");
    EXPECT_EQ(editor->name, "Editor");

    const auto site = classifiedActivityOf(
        page(0, 60, "video.example", "org.mozilla.firefox", ActivityClassification::neutral));
    ASSERT_TRUE(site.has_value());
    EXPECT_EQ(site->kind, ClassifiedActivity::Kind::website);
    EXPECT_EQ(site->hostname, "video.example");

    ActivitySegment pdf = focusedAt(0, 60);
    pdf.setActivitySource(ActivitySourceType::localPDF);
    pdf.pdfIdentifier = Uuid::generate();
    EXPECT_EQ(classifiedActivityOf(pdf)->kind, ClassifiedActivity::Kind::localPDF);

    ActivitySegment fallback = focusedAt(0, 60);
    fallback.setActivitySource(ActivitySourceType::browserFallback);
    EXPECT_EQ(classifiedActivityOf(fallback)->kind, ClassifiedActivity::Kind::application);

    // Nothing to classify: no input, the computer asleep, a page or PDF
    // whose key was not recorded, an application without an identifier.
    ActivitySegment hostless =
        page(0, 60, "", "org.mozilla.firefox", ActivityClassification::neutral);
    ActivitySegment pdfless = focusedAt(0, 60);
    pdfless.setActivitySource(ActivitySourceType::localPDF);
    ActivitySegment nameless = focusedAt(0, 60);
    nameless.bundleIdentifier.clear();
    for (const ActivitySegment& segment :
         {idleAt(0, 60), asleepAt(0, 60), hostless, pdfless, nameless}) {
        EXPECT_FALSE(classifiedActivityOf(segment).has_value()) << segment.applicationName;
    }
}

TEST(ReclassifyActivity, ReachesThePageInEveryBrowserButNotOtherActivity) {
    const StudySession session =
        withStoredTotals(sessionWith({focusedAt(0, 600),
                                      page(600, 300, "video.example", "org.mozilla.firefox",
                                           ActivityClassification::distracting),
                                      page(900, 120, "video.example", "org.chromium.Chromium",
                                           ActivityClassification::distracting),
                                      page(1020, 180, "news.example", "org.mozilla.firefox",
                                           ActivityClassification::distracting)},
                                     1200),
                         TrackingCalculationVersion::v3);
    const auto video = *classifiedActivityOf(session.segments[1]);
    const auto changed = reclassifyActivity(session, video, ActivityClassification::focused);
    ASSERT_TRUE(changed.ok());
    EXPECT_EQ(changed->segments[1].classification(), ActivityClassification::focused);
    EXPECT_EQ(changed->segments[2].classification(), ActivityClassification::focused);
    EXPECT_EQ(changed->segments[3].classification(), ActivityClassification::distracting);
    EXPECT_DOUBLE_EQ(changed->focusedDuration, 1020.0);
    EXPECT_DOUBLE_EQ(changed->distractedDuration, 180.0);
    EXPECT_DOUBLE_EQ(*changed->focusScore, 85.0);
    EXPECT_EQ(changed->calculationVersion(), TrackingCalculationVersion::v3);
}

TEST(ReclassifyActivity, LeavesTimeWithoutInputAndConfirmationsAlone) {
    StudySession session = sessionWith(
        {focusedAt(0, 600), idleAt(600, 600), focusedAt(1200, 600)}, 1800,
        {lumenote::testing::confirmationAt(600, 1200, ConfirmedStudyState::passiveStudy)});
    session = withStoredTotals(session, TrackingCalculationVersion::v3);
    const auto editor = *classifiedActivityOf(session.segments[0]);
    const auto changed = reclassifyActivity(session, editor, ActivityClassification::distracting);
    ASSERT_TRUE(changed.ok());
    EXPECT_EQ(changed->segments[1].classification(), ActivityClassification::focused);
    EXPECT_DOUBLE_EQ(changed->distractedDuration, 1200.0);
    EXPECT_DOUBLE_EQ(changed->inactiveDuration, 600.0);
    EXPECT_DOUBLE_EQ(changed->passiveStudyDuration(), 600.0);
    EXPECT_DOUBLE_EQ(*changed->focusScore, 0.0);
}

TEST(ReclassifyActivity, KeepsTheSessionsOwnVersion) {
    const StudySession v2 =
        withStoredTotals(sessionWith({focusedAt(0, 600)}, 600), TrackingCalculationVersion::v2);
    const auto changed = reclassifyActivity(v2, *classifiedActivityOf(v2.segments[0]),
                                            ActivityClassification::neutral);
    ASSERT_TRUE(changed.ok());
    EXPECT_EQ(changed->calculationVersion(), TrackingCalculationVersion::v2);
    EXPECT_DOUBLE_EQ(changed->neutralDuration, 600.0);
    EXPECT_FALSE(changed->focusScore.has_value());
}

TEST(ReclassifyActivity, RefusesSessionsOfTheFirstMethodWhateverTheirVersionColumn) {
    StudySession session = sessionWith({focusedAt(0, 600)}, 600);
    const auto editor = *classifiedActivityOf(session.segments[0]);
    for (const std::optional<long long> stored :
         {std::optional<long long>(1), std::optional<long long>(), std::optional<long long>(42)}) {
        session.calculationVersionStorage = stored;
        const auto refused = reclassifyActivity(session, editor, ActivityClassification::neutral);
        ASSERT_FALSE(refused.ok());
        EXPECT_EQ(refused.error(), ReclassificationError::firstMethodSession);
    }
}

}  // namespace
}  // namespace lumenote::recording
