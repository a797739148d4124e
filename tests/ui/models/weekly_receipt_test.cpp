#include "ui/models/weekly_receipt.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "insights/insight_test_support.hpp"
#include "recording/focus_score_text.hpp"

namespace lumenote::ui::models {
namespace {

using insights::testing::at;
using insights::testing::calendarNamed;
using insights::testing::snapshot;
using ::testing::ElementsAre;
using ::testing::Field;

constexpr ReceiptOptions kEverything{};
constexpr ReceiptOptions kNoSummary{.includeBranding = false, .includeSubjectSummary = false};

insights::WeeklyFigures weekOf(const std::vector<insights::SessionSnapshot>& sessions,
                               const char* day, const LocalCalendar& calendar) {
    const auto week = insights::weekContaining(at(day), calendar, 1);
    return insights::computeWeeklyFigures(sessions, week, calendar, 0);
}

TEST(WeeklyReceipt, EmptyWeekSaysSoAndScoresNothing) {
    const auto utc = LocalCalendar::utc();
    const auto receipt =
        makeWeeklyReceipt(weekOf({}, "2026-11-25T12:00:00Z", utc), std::nullopt, kEverything, utc);
    EXPECT_EQ(receipt.datesText, "23 – 29 November 2026");
    EXPECT_EQ(receipt.emptyText, kEmptyWeekText);
    EXPECT_EQ(receipt.sessionsText, "0 sessions");
    EXPECT_EQ(receipt.studyTime, "0 s");
    EXPECT_EQ(receipt.focusScore, std::nullopt);
    EXPECT_EQ(receipt.focusScoreAbsence,
              recording::TrackingCalculationService::kNotEnoughEvidenceToShowScoreText);
    ASSERT_EQ(receipt.days.size(), 7u);
    EXPECT_EQ(receipt.days.front().weekday, "Mon");
    EXPECT_EQ(receipt.days.back().weekday, "Sun");
    EXPECT_TRUE(receipt.topFocused.empty());
    EXPECT_TRUE(receipt.subjects.empty());
    EXPECT_EQ(receipt.branding, "Made with Lumenote");
}

TEST(WeeklyReceipt, WeekAcrossTheEndOfSummerTimeCountsEachDayOnce) {
    // Berlin leaves summer time on Sunday 25 October 2026: that day has 25
    // hours. A session late that evening is still Sunday's, and the week
    // ends with it.
    const auto berlin = calendarNamed("Europe/Berlin");
    const std::vector<insights::SessionSnapshot> sessions{
        snapshot(at("2026-10-19T08:00:00+02:00"), 1800.0),
        snapshot(at("2026-10-25T23:15:00+01:00"), 2700.0, 300.0, "Physics"),
    };
    const auto receipt = makeWeeklyReceipt(weekOf(sessions, "2026-10-22T12:00:00+02:00", berlin),
                                           std::nullopt, kEverything, berlin);
    EXPECT_EQ(receipt.datesText, "19 – 25 October 2026");
    EXPECT_EQ(receipt.days.front().studyTime, "30 min");
    EXPECT_EQ(receipt.days.back().weekday, "Sun");
    EXPECT_EQ(receipt.days.back().studyTime, "50 min");
    EXPECT_EQ(receipt.studyTime, "1 h 20 min");
    EXPECT_EQ(receipt.sessionsText, "2 sessions");
    EXPECT_EQ(receipt.focusScore, "94%");
    EXPECT_EQ(receipt.emptyText, std::nullopt);
}

TEST(WeeklyReceipt, RangeAcrossMonthAndYearNamesBothEnds) {
    const auto utc = LocalCalendar::utc();
    EXPECT_EQ(
        makeWeeklyReceipt(weekOf({}, "2026-12-02T12:00:00Z", utc), std::nullopt, kEverything, utc)
            .datesText,
        "30 November – 6 December 2026");
    EXPECT_EQ(
        makeWeeklyReceipt(weekOf({}, "2026-12-30T12:00:00Z", utc), std::nullopt, kEverything, utc)
            .datesText,
        "28 December 2026 – 3 January 2027");
}

TEST(WeeklyReceipt, SubjectSummaryFollowsItsOption) {
    const auto utc = LocalCalendar::utc();
    const auto figures = weekOf({snapshot(at("2026-11-23T09:00:00Z"), 1800.0, 0.0, "Maths"),
                                 snapshot(at("2026-11-24T09:00:00Z"), 600.0, 0.0, "Art")},
                                "2026-11-25T12:00:00Z", utc);
    EXPECT_THAT(makeWeeklyReceipt(figures, std::nullopt, kEverything, utc).subjects,
                ElementsAre(Field(&ReceiptLine::name, "Maths"), Field(&ReceiptLine::name, "Art")));
    const auto hidden = makeWeeklyReceipt(figures, std::nullopt, kNoSummary, utc);
    EXPECT_TRUE(hidden.subjects.empty());
    EXPECT_EQ(hidden.branding, std::nullopt);
}

TEST(WeeklyReceipt, ActivityListsAreCutToThreeLargestFirst) {
    auto figures = weekOf({}, "2026-11-25T12:00:00Z", LocalCalendar::utc());
    for (int index = 1; index <= 5; ++index) {
        figures.topFocused.push_back({"Site " + std::to_string(index), 600.0 * (6 - index)});
    }
    const auto receipt =
        makeWeeklyReceipt(figures, std::nullopt, kEverything, LocalCalendar::utc());
    EXPECT_THAT(receipt.topFocused, ElementsAre(Field(&ReceiptLine::name, "Site 1"),
                                                Field(&ReceiptLine::name, "Site 2"),
                                                Field(&ReceiptLine::name, "Site 3")));
}

TEST(WeeklyReceipt, StreakIsShownFromTwoDays) {
    const auto utc = LocalCalendar::utc();
    const auto figures = weekOf({}, "2026-11-25T12:00:00Z", utc);
    EXPECT_EQ(makeWeeklyReceipt(figures, 1, kEverything, utc).streakText, std::nullopt);
    EXPECT_EQ(makeWeeklyReceipt(figures, 2, kEverything, utc).streakText, "2-day streak");
    EXPECT_EQ(makeWeeklyReceipt(figures, std::nullopt, kEverything, utc).streakText, std::nullopt);
}

}  // namespace
}  // namespace lumenote::ui::models
