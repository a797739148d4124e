// What the Insights page shows, read from a real store in a temporary folder
// through the same calls the page makes: the locked state of an empty
// history, weeks across both daylight-saving changes in Europe/Berlin, the
// cards and their dismissal through the real dismissal file, the focus-score
// trend, and how evidence values read.
#include "ui/models/insights_view.hpp"

#include <gtest/gtest.h>

#include "insights/file_insight_dismissal_repository.hpp"
#include "insights/insight_dismissal_store.hpp"
#include "store/sqlite_recording_store.hpp"
#include "support/stored_sessions.hpp"
#include "support/temporary_home.hpp"
#include "ui/models/insights_source.hpp"
#include "ui/models/receipt_test_sessions.hpp"

namespace lumenote::ui::models {
namespace {

using lumenote::testing::SessionPlan;
using testing::at;

constexpr unsigned kMonday = 1;

class InsightsViewTest : public ::testing::Test {
  protected:
    void SetUp() override {
        auto opened = store::SqliteRecordingStore::open(home_.root() / "lumenote.sqlite");
        ASSERT_TRUE(opened.ok());
        store_ = std::move(*opened);
    }

    // A session at the local wall time `iso` ("2026-11-23T09:00:00+01:00").
    static SessionPlan session(const char* iso, double focused, double distracted = 0.0,
                               std::string subject = "Biology") {
        return {.start = at(iso),
                .subject = std::move(subject),
                .focusedRuns = {focused},
                .distracted = distracted};
    }

    InsightsView viewOf(Date weekDate, Date now, long long goalMinutes = 0) {
        const InsightsRequest request{weekDate, now, kMonday, goalMinutes};
        auto data = readInsightsData(*store_, *store_, calendar_, request, dismissals_.records());
        EXPECT_TRUE(data.ok());
        return data.ok() ? makeInsightsView(*data, calendar_) : InsightsView{};
    }

    InsightsData dataOf(Date weekDate, Date now) {
        auto data = readInsightsData(*store_, *store_, calendar_, {weekDate, now, kMonday, 0},
                                     dismissals_.records());
        EXPECT_TRUE(data.ok());
        return data.ok() ? *data : InsightsData{};
    }

    // Four sessions on three days of the week of 23 November 2026 and two in
    // the week before, so that insights unlock and the trend compares.
    void fillTwoWeeks() {
        lumenote::testing::storeSessions(
            *store_, {session("2026-11-16T09:00:00+01:00", 1800, 600),
                      session("2026-11-18T09:00:00+01:00", 1200, 900),
                      session("2026-11-23T09:00:00+01:00", 3000, 300),
                      session("2026-11-24T09:00:00+01:00", 2400, 300, "Chemistry"),
                      session("2026-11-24T15:00:00+01:00", 1800, 120),
                      session("2026-11-25T09:00:00+01:00", 2700, 200)});
    }

    static std::vector<std::string> titles(const InsightsView& view) {
        std::vector<std::string> result;
        for (const InsightCard& card : view.cards) {
            result.push_back(card.title);
        }
        return result;
    }

    lumenote::testing::TemporaryHome home_;
    LocalCalendar calendar_ = testing::calendarNamed("Europe/Berlin");
    std::unique_ptr<store::SqliteRecordingStore> store_;
    insights::FileInsightDismissalRepository repository_{
        insights::FileInsightDismissalRepository::pathFor(home_.paths()),
        [] { return at("2026-11-26T10:00:00Z"); }};
    insights::InsightDismissalStore dismissals_{repository_,
                                                [] { return at("2026-11-26T10:00:00Z"); }};
};

TEST_F(InsightsViewTest, AnEmptyHistoryIsLockedAndSaysHowManyDaysAreNeeded) {
    const Date now = at("2026-11-26T10:00:00+01:00");
    const InsightsView view = viewOf(now, now);
    EXPECT_EQ(view.weekTitle, "23 – 29 November 2026");
    EXPECT_TRUE(view.isCurrentWeek);
    EXPECT_TRUE(view.locked);
    EXPECT_EQ(view.availabilityTitle, "Not enough study days yet");
    EXPECT_NE(view.availabilityMessage.find("You have studied on 0 days."), std::string::npos);
    EXPECT_EQ(view.daysNeeded, "Study on 3 more days this week to unlock insights.");
    EXPECT_TRUE(view.cards.empty());
    EXPECT_FALSE(view.noCards.has_value());
    EXPECT_EQ(view.emptyWeek, "No study sessions this week.");
    EXPECT_EQ(view.sessions.value, "0");
    EXPECT_EQ(view.focusScore.unavailable,
              "Not enough Focused + Distracted time to show a focus score.");
    ASSERT_EQ(view.studyTimePerDay.days.size(), 7U);
    EXPECT_EQ(view.studyTimePerDay.days.front().label, "Mon");
    ASSERT_EQ(view.focusTrend.points.size(), 8U);
    EXPECT_EQ(view.focusTrend.points.front().label, "5 Oct");
    EXPECT_EQ(view.focusTrend.points.back().label, "23 Nov");
    for (const LinePoint& point : view.focusTrend.points) {
        EXPECT_FALSE(point.value.has_value()) << point.label;
    }
    EXPECT_TRUE(view.personalBests.empty());
    EXPECT_EQ(view.noPersonalBests, kNoPersonalBestsText);
    EXPECT_EQ(view.year.summaryText, "No study in the last 12 months");
    EXPECT_EQ(view.year.streakText, "No current streak");
    EXPECT_TRUE(view.year.table.rows.empty());
}

TEST_F(InsightsViewTest, TheDaysNeededCountDownWithEachActiveDay) {
    const Date now = at("2026-11-29T20:00:00+01:00");
    const struct {
        std::vector<SessionPlan> added;
        std::string needed;
        bool locked;
    } steps[] = {
        {{session("2026-11-23T09:00:00+01:00", 900)},
         "Study on 2 more days this week to unlock insights.",
         true},
        // A second session on the same day is no new active day.
        {{session("2026-11-23T18:00:00+01:00", 900)},
         "Study on 2 more days this week to unlock insights.",
         true},
        {{session("2026-11-26T09:00:00+01:00", 900)},
         "Study on 1 more day this week to unlock insights.",
         true},
        {{session("2026-11-29T09:00:00+01:00", 900)}, "", false},
    };
    for (const auto& step : steps) {
        lumenote::testing::storeSessions(*store_, step.added);
        const InsightsView view = viewOf(now, now);
        EXPECT_EQ(view.daysNeeded, step.needed);
        EXPECT_EQ(view.locked, step.locked);
    }
}

struct DaylightSavingWeek {
    const char* name;
    const char* monday;
    const char* title;
    // A session late on the short or long Sunday, and one just after the
    // week ends.
    const char* lateSunday;
    const char* nextMonday;
};

class InsightsDaylightSavingTest : public InsightsViewTest,
                                   public ::testing::WithParamInterface<DaylightSavingWeek> {};

TEST_P(InsightsDaylightSavingTest, TheWeekKeepsSevenDaysEachWithItsOwnTotal) {
    const DaylightSavingWeek& week = GetParam();
    const Date monday = at(week.monday);
    // One session a day at 00:30 local time (before the change on Sunday),
    // of (day + 1) * 10 minutes, plus the late Sunday and the next Monday.
    std::vector<SessionPlan> plans;
    for (int day = 0; day < 7; ++day) {
        plans.push_back({.start = calendar_.addingDays(monday.addingSeconds(1800.0), day),
                         .focusedRuns = {(day + 1) * 600.0}});
    }
    plans.push_back(session(week.lateSunday, 60));
    plans.push_back(session(week.nextMonday, 5000));
    lumenote::testing::storeSessions(*store_, plans);

    const Date now = calendar_.addingDays(monday, 20);
    const InsightsView view = viewOf(monday.addingSeconds(3600.0 * 30), now);
    EXPECT_EQ(view.weekTitle, week.title);
    EXPECT_FALSE(view.isCurrentWeek);
    ASSERT_EQ(view.studyTimePerDay.days.size(), 7U);
    ASSERT_EQ(view.classesPerDay.days.size(), 7U);
    const char* names[] = {"Mon", "Tue", "Wed", "Thu", "Fri", "Sat", "Sun"};
    for (std::size_t day = 0; day < 7; ++day) {
        const double expected = static_cast<double>(day + 1) * 600.0 + (day == 6 ? 60.0 : 0.0);
        EXPECT_EQ(view.studyTimePerDay.days[day].label, names[day]);
        EXPECT_EQ(view.studyTimePerDay.days[day].seconds, expected) << names[day];
        EXPECT_EQ(view.classesPerDay.days[day].seconds[0], expected) << names[day];
    }
    EXPECT_EQ(view.studyTime.value, "4 h 41 min");
    EXPECT_EQ(view.activeDays.value, "7 of 7");
    // The year calendar holds the week's days once each, with the same totals.
    int found = 0;
    for (const YearCalendarWeek& column : view.year.weeks) {
        for (const YearCalendarDay& day : column.days) {
            if (day.dayKey == calendar_.dayKey(calendar_.addingDays(monday, 6))) {
                ++found;
                EXPECT_EQ(day.seconds, 7 * 600.0 + 60.0);
            }
        }
    }
    EXPECT_EQ(found, 1);
}

INSTANTIATE_TEST_SUITE_P(
    EuropeBerlin, InsightsDaylightSavingTest,
    ::testing::Values(DaylightSavingWeek{"spring", "2026-03-23T00:00:00+01:00",
                                         "23 – 29 March 2026", "2026-03-29T23:30:00+02:00",
                                         "2026-03-30T00:00:00+02:00"},
                      DaylightSavingWeek{"autumn", "2026-10-19T00:00:00+02:00",
                                         "19 – 25 October 2026", "2026-10-25T23:30:00+01:00",
                                         "2026-10-26T00:00:00+01:00"}),
    [](const auto& parameter) { return std::string(parameter.param.name); });

TEST_F(InsightsViewTest, AFilledWeekShowsItsFiguresListsAndCards) {
    fillTwoWeeks();
    const Date now = at("2026-11-26T10:00:00+01:00");
    const InsightsView view = viewOf(now, now, 60);
    EXPECT_FALSE(view.locked);
    EXPECT_EQ(view.availabilityTitle, "Insights are ready");
    EXPECT_EQ(view.sessions.value, "4");
    EXPECT_EQ(view.studyTimePerDay.goalSeconds, 3600.0);
    EXPECT_FALSE(view.focusScore.unavailable.has_value());
    ASSERT_EQ(view.subjects.size(), 2U);
    EXPECT_EQ(view.subjects[0].name, "Biology");
    ASSERT_FALSE(view.topFocused.empty());
    EXPECT_EQ(view.topFocused[0].name, "Editor");
    ASSERT_FALSE(view.topDistracting.empty());
    EXPECT_EQ(view.topDistracting[0].name, "Game");
    // The trend's last two weeks both have a score; the rest none.
    EXPECT_TRUE(view.focusTrend.points[6].value.has_value());
    EXPECT_TRUE(view.focusTrend.points[7].value.has_value());
    EXPECT_FALSE(view.focusTrend.points[5].value.has_value());
    EXPECT_EQ(titles(view),
              (std::vector<std::string>{"Focus score trend", "Typical session length",
                                        "Strongest study day", "Longest focus block",
                                        "Most-studied subject", "Most common distraction"}));
    const InsightCard& average = view.cards[1];
    EXPECT_EQ(average.evidenceQuality, "Limited evidence · 4 sessions on 3 days");
    ASSERT_FALSE(average.evidence.empty());
    EXPECT_EQ(average.evidence[0].label, "Average session duration");
    EXPECT_EQ(average.evidence[0].value, "45 min");
    // The trend rests on both weeks' sessions, enough for a better grade.
    EXPECT_EQ(view.cards[0].evidenceQuality, "Moderate evidence · 6 sessions on 3 days");
    ASSERT_EQ(view.personalBests.size(), 3U);
    EXPECT_EQ(view.personalBests[0].title, "Longest session");
    EXPECT_EQ(view.personalBests[0].value, "55 min");
    EXPECT_EQ(view.personalBests[0].day, "Monday 23 November 2026");
    EXPECT_EQ(view.year.streakText, "3-day streak");
    EXPECT_EQ(view.year.summaryText, "Studied on 5 days in the last 12 months");
    EXPECT_EQ(view.year.table.rows.size(), 5U);
}

TEST_F(InsightsViewTest, DismissingAnInsightHidesItUntilItsEvidenceChanges) {
    fillTwoWeeks();
    const Date now = at("2026-11-26T10:00:00+01:00");
    const InsightsData data = dataOf(now, now);
    ASSERT_FALSE(data.week.facts.empty());
    ASSERT_EQ(data.week.facts[1].title, "Typical session length");
    ASSERT_TRUE(dismissals_.dismiss(data.week.facts[1]));

    const std::vector<std::string> remaining{"Focus score trend", "Strongest study day",
                                             "Longest focus block", "Most-studied subject",
                                             "Most common distraction"};
    EXPECT_EQ(titles(viewOf(now, now)), remaining);
    // The dismissal is in the file: a store opened afresh reads it.
    insights::InsightDismissalStore reopened(repository_, [] { return Date{}; });
    auto again =
        readInsightsData(*store_, *store_, calendar_, {now, now, kMonday, 0}, reopened.records());
    ASSERT_TRUE(again.ok());
    EXPECT_EQ(titles(makeInsightsView(*again, calendar_)), remaining);
    // Another session changes the average: the statement comes back.
    lumenote::testing::storeSessions(*store_, {session("2026-11-26T08:00:00+01:00", 600)});
    EXPECT_EQ(viewOf(now, now).cards.size(), 6U);
}

TEST_F(InsightsViewTest, EveryInsightDismissedSaysSoInsteadOfAnEmptyCard) {
    fillTwoWeeks();
    const Date now = at("2026-11-26T10:00:00+01:00");
    for (const insights::LocalInsightFact& fact : dataOf(now, now).week.facts) {
        ASSERT_TRUE(dismissals_.dismiss(fact));
    }
    const InsightsView view = viewOf(now, now);
    EXPECT_TRUE(view.cards.empty());
    EXPECT_EQ(view.noCards, kAllInsightsDismissedText);
}

TEST(EvidenceValueText, ReadsEachUnitInWords) {
    using insights::InsightEvidenceUnit;
    const struct {
        std::optional<double> number;
        std::optional<std::string> text;
        InsightEvidenceUnit unit;
        const char* expected;
    } rows[] = {
        {5100, {}, InsightEvidenceUnit::seconds, "1 h 25 min"},
        {40, {}, InsightEvidenceUnit::seconds, "40 s"},
        {81.6, {}, InsightEvidenceUnit::percent, "82%"},
        {4.4, {}, InsightEvidenceUnit::percentagePoints, "+4 points"},
        {-1.2, {}, InsightEvidenceUnit::percentagePoints, "−1 point"},
        {0.3, {}, InsightEvidenceUnit::percentagePoints, "0 points"},
        {3, {}, InsightEvidenceUnit::count, "3"},
        {{}, "Wednesday", InsightEvidenceUnit::text, "Wednesday"},
    };
    for (const auto& row : rows) {
        insights::InsightEvidenceValue value;
        value.numericValue = row.number;
        value.textValue = row.text;
        value.unit = row.unit;
        EXPECT_EQ(evidenceValueText(value), row.expected);
    }
}

}  // namespace
}  // namespace lumenote::ui::models
