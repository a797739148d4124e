#include "recording/session_records.hpp"

#include <gtest/gtest.h>

namespace lumenote::recording {
namespace {

TEST(StudySessionTest, RecordOfTheFirstLayoutReadsItsFallbacks) {
    StudySession session;
    session.statusRawValue = "completed";
    session.endDate = Date{100};
    EXPECT_EQ(session.unclassifiedDuration(), 0.0);
    EXPECT_EQ(session.ignoredDuration(), 0.0);
    EXPECT_EQ(session.passiveStudyDuration(), 0.0);
    EXPECT_EQ(session.confirmedBreakDuration(), 0.0);
    EXPECT_EQ(session.systemExcludedDuration(), 0.0);
    EXPECT_FALSE(session.notes());
    EXPECT_FALSE(session.originatingTemplateID());
    EXPECT_FALSE(session.calculationVersion());
    EXPECT_FALSE(session.schemaVersion());
    EXPECT_EQ(session.timingMode(), SessionTimingMode::timer);
    EXPECT_EQ(session.studyMode(), StudySessionMode::computerBased);
}

TEST(StudySessionTest, UnknownRawTextFallsBackWithoutRewritingTheColumn) {
    StudySession session;
    session.timingModeStorage = "countdown-v9";
    session.studyModeStorage = "holographic";
    session.calculationVersionStorage = 4;
    EXPECT_EQ(session.timingMode(), SessionTimingMode::timer);
    EXPECT_EQ(session.studyMode(), StudySessionMode::computerBased);
    EXPECT_FALSE(session.calculationVersion());
    EXPECT_EQ(session.timingModeStorage, "countdown-v9");
}

TEST(StudySessionTest, UnknownStatusIsNeverTakenForALiveSession) {
    StudySession session;
    session.statusRawValue = "archived";
    EXPECT_EQ(session.status(), StudySessionStatus::interrupted);
    session.endDate = Date{10};
    EXPECT_EQ(session.status(), StudySessionStatus::completed);
    EXPECT_FALSE(session.isLive());
}

TEST(StudySessionTest, TypedPropertiesWriteTheirRawColumns) {
    StudySession session(Uuid::generate(), "Biology", "", 1500, Date{0});
    EXPECT_EQ(session.status(), StudySessionStatus::running);
    EXPECT_TRUE(session.isLive());
    EXPECT_FALSE(session.endDate);
    session.setTimingMode(SessionTimingMode::openEnded);
    session.setStudyMode(StudySessionMode::offlineBookStudy);
    session.setCalculationVersion(TrackingCalculationVersion::v3);
    session.setStatus(StudySessionStatus::paused);
    EXPECT_EQ(session.timingModeStorage, "open_ended");
    EXPECT_EQ(session.studyModeStorage, "offlineBookStudy");
    EXPECT_EQ(session.calculationVersionStorage, 3);
    EXPECT_EQ(session.statusRawValue, "paused");
    EXPECT_TRUE(session.isLive());
    session.setCalculationVersion(std::nullopt);
    EXPECT_FALSE(session.calculationVersionStorage);
}

TEST(ActivitySegmentTest, MissingOrUnknownSourceReadsAsApplication) {
    ActivitySegment segment(Uuid::generate(), Date{0}, Date{5}, 5, "Terminal", "org.gnome.Terminal",
                            classification::ActivityClassification::focused, false);
    EXPECT_EQ(segment.activitySource(), ActivitySourceType::application);
    segment.activitySourceRawValue = "hologram";
    EXPECT_EQ(segment.activitySource(), ActivitySourceType::application);
    segment.setActivitySource(ActivitySourceType::localPDF);
    EXPECT_EQ(segment.activitySourceRawValue, "localPDF");
}

TEST(ActivitySegmentTest, UnknownClassificationAndReasonHaveSafeFallbacks) {
    ActivitySegment segment;
    segment.classificationRawValue = "sparkling";
    EXPECT_EQ(segment.classification(), classification::ActivityClassification::unclassified);
    EXPECT_FALSE(segment.browserFallbackReason());
    segment.browserFallbackReasonRawValue = "solarFlare";
    EXPECT_EQ(segment.browserFallbackReason(), BrowserFallbackReason::unknown);
    segment.pdfLabelSourceRawValue = "guessed";
    EXPECT_FALSE(segment.pdfLabelSource());
}

TEST(ConfirmedNoInputIntervalTest, OnlyIntervalsInForceBecomeCalculationInputs) {
    ConfirmedNoInputInterval current(Uuid::generate(), Date{0}, Date{60},
                                     ConfirmedStudyState::passiveStudy,
                                     ConfirmedStudyStateSource::returnPrompt, Date{61});
    ConfirmedNoInputInterval replaced = current;
    replaced.id = Uuid::generate();
    replaced.setState(ConfirmedStudyState::confirmedBreak);
    replaced.supersededAt = Date{62};
    const auto inForce = confirmedStudyIntervalsInForce({replaced, current});
    ASSERT_EQ(inForce.size(), 1u);
    EXPECT_EQ(inForce[0].id, current.id);
    EXPECT_EQ(inForce[0].state, ConfirmedStudyState::passiveStudy);
}

TEST(ConfirmedNoInputIntervalTest, UnknownStateAddsNoStudyTime) {
    ConfirmedNoInputInterval interval;
    interval.stateRawValue = "meditating";
    interval.sourceRawValue = "telepathy";
    EXPECT_EQ(interval.state(), ConfirmedStudyState::confirmedBreak);
    EXPECT_EQ(interval.source(), ConfirmedStudyStateSource::returnPrompt);
}

TEST(EnumerationTest, EveryCaseRoundTripsThroughItsRawValue) {
    auto roundTrips = [](auto cases) {
        for (auto value : cases) {
            using E = decltype(value);
            EXPECT_EQ(fromRawValue<E>(rawValue(value)), value) << rawValue(value);
        }
    };
    roundTrips(allCases<classification::ActivityClassification>());
    roundTrips(allCases<StudySessionStatus>());
    roundTrips(allCases<SessionTimingMode>());
    roundTrips(allCases<StudySessionMode>());
    roundTrips(allCases<ActivitySourceType>());
    roundTrips(allCases<ConfirmedStudyState>());
    roundTrips(allCases<ConfirmedStudyStateSource>());
    roundTrips(allCases<BrowserFallbackReason>());
    EXPECT_FALSE(fromRawValue<SessionTimingMode>("openEnded"));
    EXPECT_FALSE(fromRawValue<classification::ActivityClassification>("Focused"));
}

}  // namespace
}  // namespace lumenote::recording
