#include "insights/session_snapshot.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "insight_test_support.hpp"
#include "insights/first_weekday.hpp"

namespace lumenote::insights {
namespace {

using classification::ActivityClassification;
using recording::StudySession;
using recording::StudySessionStatus;
using recording::TrackingCalculationService::AccountedState;
using testing::at;

const Date kNow = at("2026-11-18T12:00:00Z");

StudySession finished(Date start, double timerSeconds, StudySessionStatus status) {
    StudySession session(Uuid::generate(), "Maths", "", timerSeconds, start);
    session.timerDuration = timerSeconds;
    session.setStatus(status);
    if (status == StudySessionStatus::completed || status == StudySessionStatus::interrupted) {
        session.endDate = start.addingSeconds(timerSeconds);
    }
    return session;
}

TEST(AnalyticsCountRule, OnlyFinishedStartedSessionsWithAMinuteOfTimerTimeCount) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    struct Row {
        const char* name;
        double startOffset;  // seconds before now
        double timer;
        StudySessionStatus status;
        bool counts;
    };
    for (const Row& row : {
             Row{"completed", 3600, 1800, StudySessionStatus::completed, true},
             Row{"interrupted", 3600, 1800, StudySessionStatus::interrupted, true},
             Row{"running", 3600, 1800, StudySessionStatus::running, false},
             Row{"paused", 3600, 1800, StudySessionStatus::paused, false},
             Row{"exactly a minute", 3600, 60, StudySessionStatus::completed, true},
             Row{"just under a minute", 3600, 59.9, StudySessionStatus::completed, false},
             Row{"timer not a number", 3600, nan, StudySessionStatus::completed, false},
             Row{"started exactly 300 s ago", 300, 60, StudySessionStatus::completed, true},
             Row{"started 299.9 s ago", 299.9, 60, StudySessionStatus::completed, false},
             Row{"start in the future", -60, 60, StudySessionStatus::completed, false},
         }) {
        const StudySession session =
            finished(kNow.addingSeconds(-row.startOffset), row.timer, row.status);
        EXPECT_EQ(countsForAnalytics(session, kNow, {}), row.counts) << row.name;
    }
    StudySession notFinite =
        finished(kNow.addingSeconds(-3600), 1800, StudySessionStatus::completed);
    notFinite.startDate = Date{std::numeric_limits<double>::infinity() * -1};
    EXPECT_FALSE(countsForAnalytics(notFinite, kNow, {}));
    const StudySession setupTest =
        finished(kNow.addingSeconds(-3600), 1800, StudySessionStatus::completed);
    EXPECT_FALSE(countsForAnalytics(setupTest, kNow,
                                    [&](const StudySession& s) { return s.id == setupTest.id; }));
}

recording::ActivitySegment segment(Date start, double seconds, const char* name,
                                   ActivityClassification classification) {
    return recording::ActivitySegment(Uuid::generate(), start, start.addingSeconds(seconds),
                                      seconds, name, std::string("org.example.") + name,
                                      classification, false);
}

TEST(SessionSnapshotTest, ActivitiesAreNamedByApplicationHostnameOrPdfLabel) {
    const Date start = at("2026-11-16T09:00:00Z");
    StudySession session = finished(start, 700, StudySessionStatus::completed);
    session.setCalculationVersion(recording::TrackingCalculationVersion::v3);
    session.focusedDuration = 500;
    session.distractedDuration = 200;
    session.segments = {
        segment(start, 300, "Editor", ActivityClassification::focused),
        segment(start.addingSeconds(300), 100, "Browser", ActivityClassification::distracting),
        segment(start.addingSeconds(400), 100, "Browser", ActivityClassification::distracting),
        segment(start.addingSeconds(500), 200, "Viewer", ActivityClassification::focused)};
    session.segments[1].setActivitySource(recording::ActivitySourceType::website);
    session.segments[1].hostname = "news.example";
    session.segments[2].setActivitySource(recording::ActivitySourceType::website);
    session.segments[2].hostname = "news.example";
    session.segments[3].setActivitySource(recording::ActivitySourceType::localPDF);
    session.segments[3].pdfIdentifier = Uuid::generate();
    session.segments[3].setPdfDisplayLabel("Atlas.pdf");
    const SessionSnapshot snapshot = makeSessionSnapshot(session);
    EXPECT_EQ(snapshot.studyTime, 700);
    EXPECT_EQ(snapshot.longestFocusedRun, 300);
    EXPECT_EQ(snapshot.activities,
              (std::vector<ActivityTime>{{"Editor", AccountedState::focused, 300, 1},
                                         {"Atlas.pdf", AccountedState::focused, 200, 1},
                                         {"news.example", AccountedState::distracting, 200, 2}}));
}

TEST(SessionSnapshotTest, TotalsDetailKeepsTheTotalsAndLeavesOutWhatNeedsSegments) {
    const Date start = at("2026-11-16T09:00:00Z");
    StudySession session = finished(start, 700, StudySessionStatus::completed);
    session.setCalculationVersion(recording::TrackingCalculationVersion::v3);
    session.focusedDuration = 500;
    session.distractedDuration = 200;
    session.segments = {
        segment(start, 500, "Editor", ActivityClassification::focused),
        segment(start.addingSeconds(500), 200, "Game", ActivityClassification::distracting)};
    SessionSnapshot expected = makeSessionSnapshot(session);
    ASSERT_EQ(expected.longestFocusedRun, 500);
    ASSERT_EQ(expected.activities.size(), 2u);
    expected.longestFocusedRun = 0;
    expected.activities.clear();
    EXPECT_EQ(makeSessionSnapshot(session, SnapshotDetail::totals), expected);
}

TEST(FirstWeekday, FromTheLocaleValuesWithMondayWhenUnknown) {
    struct Row {
        std::optional<long> week1stDay;
        std::optional<int> number;
        unsigned first;
    };
    for (const Row& row : {Row{19971130, 1, 0},                       // en_US: Sunday
                           Row{19971130, 2, 1},                       // de_DE: Monday
                           Row{19971201, 1, 1},                       // Monday-based table
                           Row{19971130, 7, 6},                       // Saturday
                           Row{19971130, 0, 1},                       // out of range
                           Row{19971130, 8, 1}, Row{19971332, 1, 1},  // not a date
                           Row{std::nullopt, 1, 1}, Row{19971130, std::nullopt, 1}}) {
        EXPECT_EQ(firstWeekdayFromLocaleValues(row.week1stDay, row.number), row.first)
            << row.week1stDay.value_or(0) << " " << row.number.value_or(0);
    }
}

}  // namespace
}  // namespace lumenote::insights
