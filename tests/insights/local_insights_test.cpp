#include "insights/local_insights.hpp"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "insight_test_support.hpp"
#include "insights/insight_text.hpp"
#include "insights/insights_availability.hpp"

namespace lumenote::insights {
namespace {

using recording::TrackingCalculationVersion;
using recording::TrackingCalculationService::AccountedState;
using testing::at;
using testing::snapshot;

class LocalInsightsTest : public ::testing::Test {
  protected:
    const LocalCalendar calendar = LocalCalendar::utc();
    const WeekPeriod week = weekContaining(at("2026-11-18T12:00:00Z"), calendar, 1);
    const WeekPeriod before = previousWeek(week, calendar, 1);

    std::vector<LocalInsightFact> build(const std::vector<SessionSnapshot>& selected,
                                        const std::vector<SessionSnapshot>& previous = {},
                                        const std::vector<InsightDismissalRecord>& dismissed = {}) {
        return buildLocalInsights(selected, previous, week, before, calendar, dismissed);
    }

    static const LocalInsightFact* find(const std::vector<LocalInsightFact>& facts,
                                        LocalInsightKind kind) {
        for (const LocalInsightFact& fact : facts) {
            if (fact.kind == kind) {
                return &fact;
            }
        }
        return nullptr;
    }

    // Two sessions in each week whose scores are `previousScore` and
    // `currentScore`, from 1000 seconds of evidence per week.
    std::vector<LocalInsightFact> trend(double previousScore, double currentScore) {
        const double current = currentScore * 10;
        const double previous = previousScore * 10;
        return build({snapshot(at("2026-11-16T09:00:00Z"), current / 2, (1000 - current) / 2),
                      snapshot(at("2026-11-17T09:00:00Z"), current / 2, (1000 - current) / 2)},
                     {snapshot(at("2026-11-09T09:00:00Z"), previous / 2, (1000 - previous) / 2),
                      snapshot(at("2026-11-10T09:00:00Z"), previous / 2, (1000 - previous) / 2)});
    }
};

TEST(InsightsAvailabilityTest, UnlocksAtThreeActiveDaysAndCountsDaysNotSessions) {
    const LocalCalendar calendar = LocalCalendar::utc();
    const WeekPeriod week = weekContaining(at("2026-11-18T12:00:00Z"), calendar, 1);
    const std::string start =
        "Insights compare one week against another, so they need at least 3 days of study before "
        "they can say anything true. Nothing is uploaded, and nothing is inferred from sparse "
        "data. You have studied on ";
    const std::string end =
        ". Below that, a comparison would be describing noise, so Lumenote waits rather than "
        "guessing.";
    struct Row {
        std::vector<const char*> starts;
        const char* title;
        std::string message;
    };
    const std::vector<Row> rows{
        {{}, "Not enough study days yet", start + "0 days" + end},
        {{"2026-11-16T09:00:00Z", "2026-11-16T20:00:00Z"},
         "Not enough study days yet",
         start + "1 day" + end},
        {{"2026-11-16T09:00:00Z", "2026-11-22T23:59:59Z", "2026-11-15T09:00:00Z"},
         "Not enough study days yet",
         start + "2 days" + end},
        {{"2026-11-16T09:00:00Z", "2026-11-17T09:00:00Z", "2026-11-22T09:00:00Z"},
         "Insights are ready",
         "Lumenote has enough local study data to describe patterns."}};
    for (const Row& row : rows) {
        std::vector<SessionSnapshot> sessions;
        for (const char* startText : row.starts) {
            sessions.push_back(snapshot(at(startText), 600));
        }
        const InsightsAvailability availability = insightsAvailability(sessions, week);
        EXPECT_EQ(availability.title(), row.title);
        EXPECT_EQ(availability.message(), row.message);
    }
}

TEST_F(LocalInsightsTest, FocusTrendHasAOnePointSimilarBandAndRoundsHalfAwayFromZero) {
    struct Row {
        double previous;
        double current;
        InsightLanguageDirection direction;
        const char* statement;
    };
    for (const Row& row : {
             Row{50, 51, InsightLanguageDirection::similar,
                 "Your weekly focus score was similar to the previous week."},
             Row{51, 50, InsightLanguageDirection::similar,
                 "Your weekly focus score was similar to the previous week."},
             Row{50, 51.2, InsightLanguageDirection::higher,
                 "Your weekly focus score was 1 points higher than the previous week."},
             Row{51.2, 50, InsightLanguageDirection::lower,
                 "Your weekly focus score was 1 points lower than the previous week."},
             Row{50, 52.5, InsightLanguageDirection::higher,
                 "Your weekly focus score was 3 points higher than the previous week."},
             Row{52.5, 50, InsightLanguageDirection::lower,
                 "Your weekly focus score was 3 points lower than the previous week."},
         }) {
        const auto facts = trend(row.previous, row.current);
        const LocalInsightFact* fact = find(facts, LocalInsightKind::focusTrend);
        ASSERT_NE(fact, nullptr) << row.previous << " " << row.current;
        EXPECT_EQ(fact->languageDirection, row.direction) << row.previous << " " << row.current;
        EXPECT_EQ(fact->statement, row.statement);
        EXPECT_EQ(fact->sampleSize, 4);
        EXPECT_EQ(fact->title, "Focus score trend");
    }
}

TEST(PrintedPoints, RoundHalfAwayFromZero) {
    for (const auto& [difference, printed] : std::vector<std::pair<double, long long>>{
             {1.2, 1}, {-1.2, 1}, {2.5, 3}, {-2.5, 3}, {1.4999, 1}, {0, 0}}) {
        EXPECT_EQ(printedPoints(difference), printed) << difference;
    }
}

TEST_F(LocalInsightsTest, FocusTrendNeedsTwoSessionsAndAMinuteOfEvidenceInEachWeek) {
    const std::vector<SessionSnapshot> enough{snapshot(at("2026-11-16T09:00:00Z"), 40, 20),
                                              snapshot(at("2026-11-17T09:00:00Z"), 300)};
    // 59 seconds of Focused + Distracted time in two sessions.
    EXPECT_EQ(find(build(enough, {snapshot(at("2026-11-09T09:00:00Z"), 30, 9),
                                  snapshot(at("2026-11-10T09:00:00Z"), 20)}),
                   LocalInsightKind::focusTrend),
              nullptr);
    // One session only, however long.
    EXPECT_EQ(find(build(enough, {snapshot(at("2026-11-09T09:00:00Z"), 3000, 100)}),
                   LocalInsightKind::focusTrend),
              nullptr);
    // A session of the previous week started in the selected one does not count for it.
    EXPECT_EQ(find(build(enough, {snapshot(at("2026-11-09T09:00:00Z"), 300),
                                  snapshot(at("2026-11-16T00:00:00Z"), 300)}),
                   LocalInsightKind::focusTrend),
              nullptr);
    // Unversioned sessions are not read by the trend.
    SessionSnapshot unversioned = snapshot(at("2026-11-10T09:00:00Z"), 300);
    unversioned.calculationVersion.reset();
    EXPECT_EQ(find(build(enough, {snapshot(at("2026-11-09T09:00:00Z"), 300), unversioned}),
                   LocalInsightKind::focusTrend),
              nullptr);
    // Exactly one minute in two sessions is enough.
    EXPECT_NE(find(build(enough, {snapshot(at("2026-11-09T09:00:00Z"), 30, 10),
                                  snapshot(at("2026-11-10T09:00:00Z"), 20)}),
                   LocalInsightKind::focusTrend),
              nullptr);
}

TEST_F(LocalInsightsTest, EachKindAppearsFromItsMinimumAndInKindOrder) {
    SessionSnapshot monday = snapshot(at("2026-11-16T09:00:00Z"), 1200, 0, "Physics");
    monday.activities = {{"news.example", AccountedState::distracting, 40, 1}};
    SessionSnapshot tuesday = snapshot(at("2026-11-17T09:00:00Z"), 3000, 0, "Physics");
    tuesday.activities = {{"news.example", AccountedState::distracting, 20, 1},
                          {"Chat", AccountedState::distracting, 30, 1}};
    SessionSnapshot tuesdayLate = snapshot(at("2026-11-17T20:00:00Z"), 600, 0, "Biology");
    const auto facts = build({monday, tuesday, tuesdayLate});
    std::vector<LocalInsightKind> kinds;
    for (const LocalInsightFact& fact : facts) {
        kinds.push_back(fact.kind);
    }
    EXPECT_EQ(kinds, (std::vector<LocalInsightKind>{
                         LocalInsightKind::averageSessionLength,
                         LocalInsightKind::strongestStudyDay, LocalInsightKind::longestFocusBlock,
                         LocalInsightKind::topSubject, LocalInsightKind::commonDistraction}));
    EXPECT_EQ(facts[0].statement, "Your completed sessions averaged 27 min.");
    EXPECT_EQ(facts[1].statement, "Your strongest study day this week was Tuesday.");
    EXPECT_EQ(facts[2].statement, "Your longest recorded Focused run was 50 min.");
    EXPECT_EQ(facts[3].statement, "Physics had the most recorded study time this week.");
    EXPECT_EQ(facts[3].privacyClassification, InsightPrivacyClassification::includesLocalLabel);
    EXPECT_EQ(facts[4].statement, "news.example had the most recorded Distracted time this week.");
    EXPECT_EQ(facts[0].id, "averageSessionLength-2026-11-16");
    EXPECT_EQ(facts[0].privacyClassification, InsightPrivacyClassification::aggregateOnly);
    EXPECT_EQ(facts[0].evidenceQuality, InsightEvidenceQuality::limited);
    EXPECT_EQ(facts[0].minimumDataRule.explanation,
              "At least three completed sessions in the selected week.");

    // Below each minimum: two sessions on one day, one subject, one interval.
    SessionSnapshot single = snapshot(at("2026-11-16T10:00:00Z"), 59);
    single.activities = {{"news.example", AccountedState::distracting, 600, 1}};
    const auto sparse = build({single, snapshot(at("2026-11-16T12:00:00Z"), 50)});
    EXPECT_TRUE(sparse.empty());
}

TEST_F(LocalInsightsTest, ADismissalHoldsOnlyForTheSameEvidence) {
    const std::vector<SessionSnapshot> sessions{snapshot(at("2026-11-16T09:00:00Z"), 600),
                                                snapshot(at("2026-11-17T09:00:00Z"), 1200),
                                                snapshot(at("2026-11-18T09:00:00Z"), 1800)};
    const LocalInsightFact first = build(sessions).front();
    const std::vector<InsightDismissalRecord> dismissed{
        {{first.id, first.evidenceRevision}, at("2026-11-18T10:00:00Z")}};
    EXPECT_TRUE(build(sessions, {}, dismissed).front().isDismissed);

    std::vector<SessionSnapshot> changed = sessions;
    changed.push_back(snapshot(at("2026-11-19T09:00:00Z"), 1200));
    const LocalInsightFact again = build(changed, {}, dismissed).front();
    EXPECT_EQ(again.id, first.id);
    EXPECT_NE(again.evidenceRevision, first.evidenceRevision);
    EXPECT_FALSE(again.isDismissed);
}

TEST_F(LocalInsightsTest, ThePreviousWeekCountsByItsTotalsAlone) {
    // The previous week read without its segments (SnapshotDetail::totals)
    // must give the same facts as read in full.
    std::vector<SessionSnapshot> selected;
    std::vector<SessionSnapshot> previousFull;
    for (const char* day : {"16", "17", "18"}) {
        SessionSnapshot session =
            snapshot(at(fmt::format("2026-11-{}T09:00:00Z", day).c_str()), 1800, 600);
        session.activities = {{"news.example", AccountedState::distracting, 600, 2}};
        selected.push_back(session);
    }
    for (const char* day : {"09", "10", "11"}) {
        SessionSnapshot session =
            snapshot(at(fmt::format("2026-11-{}T09:00:00Z", day).c_str()), 3600, 300, "Physics");
        session.longestFocusedRun = 3600;
        session.activities = {{"Chat", AccountedState::distracting, 300, 1}};
        previousFull.push_back(session);
    }
    std::vector<SessionSnapshot> previousTotals = previousFull;
    for (SessionSnapshot& session : previousTotals) {
        session.longestFocusedRun = 0;
        session.activities.clear();
    }
    const auto full = build(selected, previousFull);
    ASSERT_NE(find(full, LocalInsightKind::focusTrend), nullptr);
    EXPECT_EQ(build(selected, previousTotals), full);
}

TEST(EvidenceRevision, ChangesWithEveryPartOfEveryValue) {
    const InsightEvidenceValue base{
        "completedSessions", "Completed sessions",       3.0,
        std::nullopt,        InsightEvidenceUnit::count, InsightEvidencePrivacy::aggregate};
    const std::string revision = evidenceRevision({base});
    EXPECT_EQ(revision.size(), 16U);
    EXPECT_EQ(revision, evidenceRevision({base}));
    std::vector<InsightEvidenceValue> variants(7, base);
    variants[0].key = "completedSession";
    variants[1].label = "Sessions that day";
    variants[2].numericValue = 3.0000000001;
    variants[3].numericValue.reset();
    variants[4].textValue = "";
    variants[5].unit = InsightEvidenceUnit::seconds;
    variants[6].privacy = InsightEvidencePrivacy::localLabel;
    for (const InsightEvidenceValue& variant : variants) {
        EXPECT_NE(evidenceRevision({variant}), revision) << variant.key;
    }
    EXPECT_NE(evidenceRevision({base, base}), revision);
}

TEST(InsightText, DurationsAndIDs) {
    for (const auto& [seconds, text] :
         std::vector<std::pair<double, const char*>>{{0, "0 s"},
                                                     {-5, "0 s"},
                                                     {40.4, "40 s"},
                                                     {59.4, "59 s"},
                                                     {59.5, "1 min"},
                                                     {89.9, "1 min"},
                                                     {90, "2 min"},
                                                     {3599, "1 h"},
                                                     {5100, "1 h 25 min"},
                                                     {7200, "2 h"}}) {
        EXPECT_EQ(insightDurationText(seconds), text) << seconds;
    }
    const auto parsed = parseLocalInsightID("commonDistraction-2026-11-16");
    ASSERT_TRUE(parsed.has_value());
    EXPECT_EQ(parsed->kind, LocalInsightKind::commonDistraction);
    EXPECT_EQ(parsed->weekStartDayKey, "2026-11-16");
    EXPECT_FALSE(parseLocalInsightID("focusTrends-2026-11-16").has_value());
    EXPECT_FALSE(parseLocalInsightID("focusTrend").has_value());
}

TEST_F(LocalInsightsTest, MixedAndMissingCalculationVersionsAreEvidence) {
    SessionSnapshot v2 = snapshot(at("2026-11-16T09:00:00Z"), 600);
    v2.calculationVersion = TrackingCalculationVersion::v2;
    SessionSnapshot none = snapshot(at("2026-11-17T09:00:00Z"), 600);
    none.calculationVersion.reset();
    const auto facts = build({v2, none, snapshot(at("2026-11-18T09:00:00Z"), 600)});
    const LocalInsightFact& average = facts.front();
    EXPECT_EQ(average.calculationVersions,
              (std::set<TrackingCalculationVersion>{TrackingCalculationVersion::v1,
                                                    TrackingCalculationVersion::v2,
                                                    TrackingCalculationVersion::v3}));
    std::vector<std::string> labels;
    for (const InsightEvidenceValue& value : average.evidenceValues) {
        labels.push_back(value.label);
    }
    EXPECT_NE(std::find(labels.begin(), labels.end(), "Mixed calculation versions"), labels.end());
    EXPECT_NE(std::find(labels.begin(), labels.end(), "Calculation method unavailable"),
              labels.end());
}

}  // namespace
}  // namespace lumenote::insights
