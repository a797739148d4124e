#include "ui/models/session_receipt.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "recording/focus_score_text.hpp"
#include "ui/models/receipt_test_sessions.hpp"

namespace lumenote::ui::models {
namespace {

using namespace testing;
using recording::PersonalBest;
using recording::PersonalBestKind;
using ::testing::ElementsAre;
using ::testing::Field;
using ::testing::Not;

constexpr ReceiptOptions kEverything{.includeGoal = true,
                                     .includeExactTimes = true,
                                     .includeBranding = true,
                                     .includeSubjectSummary = true};
constexpr ReceiptOptions kNothing{.includeGoal = false,
                                  .includeExactTimes = false,
                                  .includeBranding = false,
                                  .includeSubjectSummary = false};

recording::StudySession studiedHour() {
    return finishedSession({
        appSegment(0, 2400, "Editor", ActivityClassification::focused),
        siteSegment(2400, 600, "video.example", ActivityClassification::distracting),
        appSegment(3000, 600, "Files", ActivityClassification::neutral),
    });
}

TEST(SessionReceipt, OptionsDecideGoalTimesAndBranding) {
    const auto session = studiedHour();
    const auto berlin = calendarNamed("Europe/Berlin");

    const SessionReceipt shown = makeSessionReceipt(session, {}, kEverything, berlin);
    EXPECT_EQ(shown.goal, "Finish chapter 4");
    EXPECT_EQ(shown.timesText, "10:00 – 11:00");
    EXPECT_EQ(shown.branding, "Made with Lumenote");

    const SessionReceipt hidden = makeSessionReceipt(session, {}, kNothing, berlin);
    EXPECT_EQ(hidden.goal, std::nullopt);
    EXPECT_EQ(hidden.timesText, std::nullopt);
    EXPECT_EQ(hidden.branding, std::nullopt);
    // The day is always there; only the times of day are private.
    EXPECT_EQ(hidden.dayText, "Monday 23 November 2026");
    EXPECT_EQ(hidden.subject, "Organic chemistry");

    auto withoutGoal = session;
    withoutGoal.goal.clear();
    EXPECT_EQ(makeSessionReceipt(withoutGoal, {}, kEverything, berlin).goal, std::nullopt);
}

TEST(SessionReceipt, DayAndTimesAreLocalAcrossMidnight) {
    // 10:30 UTC is 23:30 in Auckland (UTC+13 in November): the session ends
    // after midnight there, and the receipt names the day it started.
    auto session = studiedHour();
    session.startDate = at("2026-11-23T10:30:00Z");
    session.endDate = session.startDate.addingSeconds(3600.0);
    const auto receipt =
        makeSessionReceipt(session, {}, kEverything, calendarNamed("Pacific/Auckland"));
    EXPECT_EQ(receipt.dayText, "Monday 23 November 2026");
    EXPECT_EQ(receipt.timesText, "23:30 – 00:30");
}

TEST(SessionReceipt, FiguresAreTheStoredTotalsInWords) {
    const auto receipt = makeSessionReceipt(studiedHour(), {}, kNothing, LocalCalendar::utc());
    EXPECT_EQ(receipt.duration, "1 h 00 min");
    EXPECT_EQ(receipt.studyTime, "1 h 00 min");
    EXPECT_EQ(receipt.focusScore, "80%");
    EXPECT_TRUE(receipt.focusScoreAbsence.empty());
    EXPECT_EQ(receipt.split, (ClassSplit{.focused = 2400, .distracting = 600, .neutral = 600}));
    EXPECT_THAT(receipt.topActivities,
                ElementsAre(Field(&ReceiptLine::name, "Editor"), Field(&ReceiptLine::name, "Files"),
                            Field(&ReceiptLine::name, "video.example")));
    EXPECT_EQ(receipt.topActivities.front().duration, "40 min");
}

TEST(SessionReceipt, OnlyNoInputTimeHasNothingToSplitOrScore) {
    const auto session = finishedSession(
        {appSegment(0, 3600, "Editor", ActivityClassification::focused, /*inactive=*/true)});
    const auto receipt = makeSessionReceipt(session, {}, kEverything, LocalCalendar::utc());
    EXPECT_EQ(receipt.split.total(), 0.0);
    EXPECT_EQ(receipt.studyTime, "0 s");
    EXPECT_EQ(receipt.focusScore, std::nullopt);
    EXPECT_EQ(receipt.focusScoreAbsence,
              recording::TrackingCalculationService::kNotEnoughEvidenceToShowScoreText);
    EXPECT_TRUE(receipt.topActivities.empty());
}

TEST(SessionReceipt, ScoreUnderAMinuteOfEvidenceIsNotShownEvenWhenStored) {
    auto session = finishedSession({
        appSegment(0, 40, "Editor", ActivityClassification::focused),
        appSegment(40, 3560, "Files", ActivityClassification::neutral),
    });
    session.focusScore = 100.0;  // as an older release may have stored it
    const auto receipt = makeSessionReceipt(session, {}, kNothing, LocalCalendar::utc());
    EXPECT_EQ(receipt.focusScore, std::nullopt);
    EXPECT_FALSE(receipt.focusScoreAbsence.empty());
}

TEST(SessionReceipt, VersionOneSessionKeepsTheFiguresItWasShownWith) {
    // Recalculated, this hour of Focused work would score 100%; the stored
    // v1 totals say otherwise and are what the session has always shown.
    auto session = finishedSession({appSegment(0, 3600, "Editor", ActivityClassification::focused)},
                                   recording::TrackingCalculationVersion::v1);
    session.setCalculationVersion(std::nullopt);
    session.focusedDuration = 1200.0;
    session.distractedDuration = 300.0;
    session.neutralDuration = 0.0;
    session.focusScore = 80.0;
    const auto receipt = makeSessionReceipt(session, {}, kNothing, LocalCalendar::utc());
    EXPECT_EQ(receipt.focusScore, "80%");
    EXPECT_EQ(receipt.split, (ClassSplit{.focused = 1200.0, .distracting = 300.0}));
    EXPECT_EQ(receipt.studyTime, "25 min");
}

TEST(SessionReceipt, ActivitiesAreNamedAsTheReplayShowsThem) {
    auto privateTab = appSegment(600, 900, "Firefox", ActivityClassification::distracting);
    privateTab.bundleIdentifier = "org.mozilla.firefox";
    privateTab.browserBundleIdentifier = "org.mozilla.firefox";
    privateTab.setActivitySource(recording::ActivitySourceType::browserFallback);
    privateTab.hostname = "private-tab.example";  // never shown for a fallback

    auto pdf = appSegment(1500, 1200, "Firefox", ActivityClassification::focused);
    pdf.setActivitySource(recording::ActivitySourceType::localPDF);
    pdf.pdfIdentifier = Uuid::generate();
    pdf.hostname = "files.example";  // a PDF is named by its label only

    auto labelled = appSegment(2700, 300, "Firefox", ActivityClassification::focused);
    labelled.setActivitySource(recording::ActivitySourceType::localPDF);
    labelled.pdfIdentifier = Uuid::generate();
    labelled.setPdfDisplayLabel("Lecture notes");

    const auto session = finishedSession({
        siteSegment(0, 600, "wiki.example", ActivityClassification::focused),
        privateTab,
        pdf,
        labelled,
        appSegment(3000, 600, "", ActivityClassification::unclassified),
    });
    const auto receipt = makeSessionReceipt(session, {}, kNothing, LocalCalendar::utc());
    EXPECT_THAT(receipt.topActivities, ElementsAre(Field(&ReceiptLine::name, "Local PDF"),
                                                   Field(&ReceiptLine::name, "Firefox"),
                                                   Field(&ReceiptLine::name, "Unknown application"),
                                                   Field(&ReceiptLine::name, "wiki.example"),
                                                   Field(&ReceiptLine::name, "Lecture notes")));
    for (const ReceiptLine& line : receipt.topActivities) {
        EXPECT_THAT(line.name, Not(::testing::HasSubstr("private-tab")));
        EXPECT_THAT(line.name, Not(::testing::HasSubstr("files.example")));
    }
}

TEST(SessionReceipt, ListsAtMostFiveActivitiesLargestFirst) {
    std::vector<recording::ActivitySegment> segments;
    double offset = 0;
    for (int index = 1; index <= 7; ++index) {
        const double seconds = 100.0 * index;
        segments.push_back(appSegment(offset, seconds, "App" + std::to_string(index),
                                      ActivityClassification::focused));
        offset += seconds;
    }
    const auto receipt =
        makeSessionReceipt(finishedSession(segments), {}, kNothing, LocalCalendar::utc());
    ASSERT_EQ(receipt.topActivities.size(), kReceiptActivityCount);
    EXPECT_EQ(receipt.topActivities.front().name, "App7");
    EXPECT_EQ(receipt.topActivities.back().name, "App3");
}

TEST(SessionReceipt, PersonalBestsInWordsInTheirOrder) {
    const std::vector<PersonalBest> bests{{PersonalBestKind::longestFocus, 2520.0},
                                          {PersonalBestKind::highestFocusScore, 87.4}};
    const auto receipt = makeSessionReceipt(studiedHour(), bests, kNothing, LocalCalendar::utc());
    EXPECT_THAT(receipt.personalBests,
                ElementsAre("New longest focus: 42 min", "New highest focus score: 87%"));
}

}  // namespace
}  // namespace lumenote::ui::models
