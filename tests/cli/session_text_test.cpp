#include "cli/session_text.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace lumenote::cli {
namespace {

TEST(SessionTextTest, ClockDurationsDropFractionsAndNeverGoNegative) {
    const std::pair<double, const char*> cases[] = {
        {0.0, "0:00:00"},
        {59.999, "0:00:59"},
        {60.0, "0:01:00"},
        {3599.5, "0:59:59"},
        {3600.0, "1:00:00"},
        {36061.0, "10:01:01"},
        {-5.0, "0:00:00"},
        {std::nan(""), "0:00:00"},
        {std::numeric_limits<double>::infinity(), "0:00:00"},
    };
    for (const auto& [seconds, text] : cases) {
        EXPECT_EQ(recording::clockDurationText(seconds), text) << seconds;
    }
}

TEST(SessionTextTest, CoverageCountsEvidenceAgainstAccountedTimeOnly) {
    recording::StudySession session;
    session.focusedDuration = 0.25;
    session.neutralDuration = 0.5;
    EXPECT_EQ(recording::storedCoverage(session), std::nullopt);  // under one second accounted

    session.focusedDuration = 30.0;
    session.distractedDuration = 30.0;
    session.neutralDuration = 20.0;
    session.setUnclassifiedDuration(10.0);
    session.inactiveDuration = 30.0;
    // Ignored and system-excluded time are no part of the accounted time.
    session.setIgnoredDuration(500.0);
    session.setSystemExcludedDuration(500.0);
    ASSERT_TRUE(recording::storedCoverage(session).has_value());
    EXPECT_DOUBLE_EQ(*recording::storedCoverage(session), 50.0);
}

TEST(SessionTextTest, LongOrMultiLineSubjectsStayOnOneLineOfTheTable) {
    recording::StudySession session(Uuid{}, std::string(38, 'x') + "\nÜberlang und mehr", "", 600,
                                    Date{800000000});
    session.setStatus(recording::StudySessionStatus::completed);
    const std::string table = sessionTableText({session}, LocalCalendar::utc());
    const auto firstBreak = table.find('\n');
    ASSERT_NE(firstBreak, std::string::npos);
    const std::string row = table.substr(firstBreak + 1);
    EXPECT_EQ(std::count(row.begin(), row.end(), '\n'), 1) << row;
    // 38 characters, the space that replaced the line break, then the cut.
    EXPECT_NE(row.find(std::string(38, 'x') + " …  completed"), std::string::npos) << row;
    EXPECT_TRUE(row.starts_with("2026-05-09 06:13:20  ")) << row;
}

bool contains(const std::string& text, std::string_view part) {
    return text.find(part) != std::string::npos;
}

// A finished session with one no-input stretch of `quietSeconds` between two
// minutes of activity.
recording::StudySession sessionWithQuiet(double quietSeconds,
                                         recording::TrackingCalculationVersion version) {
    recording::StudySession session(Uuid::generate(), "Reading", "", 3600, Date{1000});
    session.setStatus(recording::StudySessionStatus::completed);
    session.endDate = Date{1000 + 240 + quietSeconds};
    session.setCalculationVersion(version);
    const double times[][2] = {{0, 120}, {120, quietSeconds}, {120 + quietSeconds, 120}};
    for (int i = 0; i < 3; ++i) {
        recording::ActivitySegment segment(Uuid::generate(), Date{1000 + times[i][0]},
                                           Date{1000 + times[i][0] + times[i][1]}, times[i][1],
                                           "Editor", "org.example.Editor",
                                           classification::ActivityClassification::focused, i == 1);
        segment.session = session.id;
        session.segments.push_back(segment);
    }
    return session;
}

TEST(SessionTextTest, DetailCountsShortGapsAgainstTheUsersThresholds) {
    const LocalCalendar utc = LocalCalendar::utc();
    // 60 recorded seconds of no input began 90 seconds after the last input:
    // 150 seconds, short of a 300-second prompt threshold, long for a 120-second one.
    const recording::StudySession session =
        sessionWithQuiet(60, recording::TrackingCalculationVersion::v3);
    EXPECT_TRUE(contains(sessionDetailText(session, utc, {300, 90}), "1 short unconfirmed gap."));
    EXPECT_FALSE(contains(sessionDetailText(session, utc, {120, 90}), "short unconfirmed"));
}

TEST(SessionTextTest, DetailExplainsTheCalculationItWasComputedUnder) {
    const LocalCalendar utc = LocalCalendar::utc();
    const std::string current =
        sessionDetailText(sessionWithQuiet(600, recording::TrackingCalculationVersion::v3), utc);
    EXPECT_TRUE(contains(current, "Calculation v3 keeps the v2 computer focus score unchanged"));
    EXPECT_FALSE(contains(current, "recorded before confirmed off-Mac study existed"));
    const std::string older =
        sessionDetailText(sessionWithQuiet(600, recording::TrackingCalculationVersion::v2), utc);
    EXPECT_TRUE(contains(older, "Calculation v2 reconciles overlapping activity"));
    EXPECT_TRUE(
        contains(older, "This session was recorded before confirmed off-Mac study existed"));
}

}  // namespace
}  // namespace lumenote::cli
