// Study time and the breakdown every command prints: what counts as study,
// what does not, and that the parts never add up to more than the session.
#include "recording/study_time.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numeric>

#include "recording/no_input_prompt.hpp"

namespace lumenote::recording {
namespace {

// A 1:40:00 session: 58 min Focused, 10 Distracting, 5 Neutral, 5
// Unclassified, 20 without input (12 confirmed as away study, 3 as a break,
// 5 unconfirmed), 2 of the recorder itself and 3 asleep.
StudySession typicalSession() {
    StudySession session(Uuid::generate(), "Biology", "", 6000, Date{0});
    session.timerDuration = 6000;
    session.focusedDuration = 3480;
    session.distractedDuration = 600;
    session.neutralDuration = 300;
    session.setUnclassifiedDuration(300);
    session.inactiveDuration = 1200;
    session.setPassiveStudyDuration(720);
    session.setConfirmedBreakDuration(180);
    session.setIgnoredDuration(120);
    session.setSystemExcludedDuration(180);
    return session;
}

double secondsOf(const std::vector<TotalsLine>& lines, std::string_view name) {
    for (const TotalsLine& line : lines) {
        if (line.name == name) {
            return line.seconds;
        }
    }
    ADD_FAILURE() << "no line " << name;
    return -1;
}

TEST(StudyTime, CountsComputerStudyAndConfirmedAwayStudyOnly) {
    const StudySession session = typicalSession();
    EXPECT_DOUBLE_EQ(computerStudyTime(session), 4680);
    EXPECT_DOUBLE_EQ(unconfirmedNoInputTime(session), 300);
    EXPECT_DOUBLE_EQ(studyTime(session), 5400);
}

TEST(StudyTime, ConfirmedTimeBeyondTheRecordedNoInputLeavesNothingUnconfirmed) {
    StudySession session = typicalSession();
    session.inactiveDuration = 600;  // a live away period also covered input
    EXPECT_DOUBLE_EQ(unconfirmedNoInputTime(session), 0);
    EXPECT_DOUBLE_EQ(studyTime(session), 5400);
}

TEST(StudyTime, DamagedTotalsCountAsNothing) {
    StudySession session = typicalSession();
    session.focusedDuration = std::numeric_limits<double>::quiet_NaN();
    session.setPassiveStudyDuration(std::numeric_limits<double>::infinity());
    session.inactiveDuration = -50;
    EXPECT_TRUE(std::isfinite(studyTime(session)));
    EXPECT_GE(unconfirmedNoInputTime(session), 0);
    for (const TotalsLine& line : totalsBreakdown(session)) {
        EXPECT_TRUE(std::isfinite(line.seconds)) << line.name;
    }
}

TEST(TotalsBreakdown, HeadingsAreTheSumsOfTheLinesUnderThem) {
    const auto lines = totalsBreakdown(typicalSession());
    ASSERT_EQ(lines.front().name, kStudyTimeName);
    // Each heading equals the sum of the lines one level below it, up to the next heading.
    for (std::size_t i = 0; i < lines.size(); ++i) {
        double children = 0;
        bool any = false;
        for (std::size_t j = i + 1; j < lines.size() && lines[j].depth > lines[i].depth; ++j) {
            if (lines[j].depth == lines[i].depth + 1) {
                children += lines[j].seconds;
                any = true;
            }
        }
        if (any) {
            EXPECT_DOUBLE_EQ(lines[i].seconds, children) << lines[i].name;
        }
    }
    // Every recorded second is counted once: as study or as not counted.
    EXPECT_DOUBLE_EQ(secondsOf(lines, kStudyTimeName) + secondsOf(lines, kNotCountedName),
                     4680 + 1200 + 120 + 180);
}

TEST(TotalsBreakdown, TextSkipsEmptyLinesButKeepsHeadingsAndExplainsOnlyTimeThatExists) {
    StudySession session(Uuid::generate(), "Biology", "", 1500, Date{0});
    session.timerDuration = 1500;
    session.focusedDuration = 1200;
    session.setPassiveStudyDuration(300);
    const std::string full = totalsBreakdownText(session, {.explain = true});
    EXPECT_NE(full.find("    Neutral                   0:00:00\n"), std::string::npos) << full;
    EXPECT_NE(full.find(std::string(kPassiveStudyStateDescription)), std::string::npos) << full;
    EXPECT_EQ(full.find(std::string(kConfirmedBreakStateDescription)), std::string::npos) << full;

    const std::string brief = totalsBreakdownText(session, {.skipEmpty = true, .indent = 2});
    EXPECT_EQ(brief,
              "  Study time                    0:25:00\n"
              "    Computer study              0:20:00\n"
              "      Focused                   0:20:00\n"
              "    Studying away from Mac      0:05:00\n"
              "  Not counted as study          0:00:00\n");
}

}  // namespace
}  // namespace lumenote::recording
