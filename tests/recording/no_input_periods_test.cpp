#include "recording/no_input_periods.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <ostream>

#include "no_input_test_support.hpp"

namespace lumenote::recording {
namespace {

using namespace lumenote::testing;
using S = recording::ConfirmedStudyState;

struct RunsCase {
    const char* name;
    std::vector<recording::ActivitySegment> segments;
    std::vector<recording::DateSpan> expected;
};

void PrintTo(const RunsCase& testCase, std::ostream* out) {
    *out << testCase.name;
}

class NoInputRunsTest : public ::testing::TestWithParam<RunsCase> {};

TEST_P(NoInputRunsTest, JoinsAndPlacesInactiveSegments) {
    EXPECT_EQ(recording::noInputRuns(GetParam().segments), GetParam().expected);
}

recording::ActivitySegment jumped(recording::ActivitySegment segment, double wallEnd) {
    segment.endDate = at(wallEnd);
    return segment;
}

recording::ActivitySegment withDuration(recording::ActivitySegment segment, double duration) {
    segment.duration = duration;
    return segment;
}

INSTANTIATE_TEST_SUITE_P(
    Cases, NoInputRunsTest,
    ::testing::Values(
        //  idle |====|====|        two adjacent idle stretches are one run
        //       0   100  250
        RunsCase{"adjacent", {idleAt(0, 100), idleAt(100, 150)}, {{at(0), at(250)}}},
        //  idle |====|  active |==|  idle |====|
        RunsCase{"separatedByActivity",
                 {idleAt(0, 100), focusedAt(100, 50), idleAt(150, 50)},
                 {{at(0), at(100)}, {at(150), at(200)}}},
        // Out of order in the list, overlapping on the time line.
        RunsCase{"unorderedOverlap", {idleAt(50, 100), idleAt(0, 80)}, {{at(0), at(150)}}},
        // A boundary read from two clocks may be off by a rounding error.
        RunsCase{"roundingGap",
                 {idleAt(0, 100), idleAt(100.00048828125, 50)},
                 {{at(0), at(150.00048828125)}}},
        RunsCase{"realGap",
                 {idleAt(0, 100), idleAt(100.5, 50)},
                 {{at(0), at(100)}, {at(100.5), at(150.5)}}},
        // The wall clock jumped: the measured duration places the stretch.
        RunsCase{"wallClockJump", {jumped(idleAt(0, 100), 3700)}, {{at(0), at(100)}}},
        // Sleep is system time, not time without input.
        RunsCase{"sleepIsNotNoInput",
                 {idleAt(0, 100), asleepAt(100, 300), idleAt(400, 10)},
                 {{at(0), at(100)}, {at(400), at(410)}}},
        RunsCase{"unplaceable",
                 {withDuration(idleAt(0, 10), 0), withDuration(idleAt(20, 10), -5),
                  withDuration(idleAt(40, 10), std::numeric_limits<double>::quiet_NaN())},
                 {}}),
    [](const auto& testCase) { return std::string(testCase.param.name); });

TEST(NoInputPeriodsTest, RunsAreCutAtConfirmationBoundaries) {
    //  run         |==============================|
    //  passive         |======|
    //  break                          |==============|   (ends after the run)
    //              0   100    200     400        600  700
    const auto session = sessionWith(
        {idleAt(0, 600)}, 700,
        {confirmationAt(100, 200, S::passiveStudy), confirmationAt(400, 700, S::confirmedBreak)});
    const auto periods = recording::noInputPeriods(session);
    ASSERT_EQ(periods.size(), 4u);
    const auto& passive = session.confirmedNoInputIntervals[0];
    const auto& pause = session.confirmedNoInputIntervals[1];
    EXPECT_EQ(periods[0],
              (recording::NoInputPeriod{at(0), at(100), std::nullopt, std::nullopt, std::nullopt}));
    EXPECT_EQ(periods[1], (recording::NoInputPeriod{
                              at(100), at(200), S::passiveStudy,
                              recording::ConfirmedStudyStateSource::returnPrompt, passive.id}));
    EXPECT_EQ(periods[2], (recording::NoInputPeriod{at(200), at(400), std::nullopt, std::nullopt,
                                                    std::nullopt}));
    EXPECT_EQ(periods[3].startDate, at(400));
    EXPECT_EQ(periods[3].endDate, at(600));
    EXPECT_EQ(periods[3].confirmationID, pause.id);
}

TEST(NoInputPeriodsTest, LaterConfirmationCoversWhereConfirmationsOverlap) {
    //  run      |====================|
    //  older    |====================|   created at 1000
    //  newer          |======|           created at 2000
    auto older = confirmationAt(0, 300, S::passiveStudy, 1000);
    auto newer = confirmationAt(100, 200, S::confirmedBreak, 2000);
    const auto session = sessionWith({idleAt(0, 300)}, 300, {newer, older});
    const auto periods = recording::noInputPeriods(session);
    ASSERT_EQ(periods.size(), 3u);
    EXPECT_EQ(periods[0].confirmationID, older.id);
    EXPECT_EQ(periods[1].confirmationID, newer.id);
    EXPECT_EQ(periods[2].confirmationID, older.id);
}

TEST(NoInputPeriodsTest, SupersededConfirmationsAndSliversDoNotLabel) {
    auto superseded = confirmationAt(0, 300, S::passiveStudy);
    superseded.supersededAt = at(5000);
    // Ends a rounding error after the run starts: no time of its own.
    auto sliver = confirmationAt(-50, 0.0005, S::confirmedBreak);
    const auto session = sessionWith({idleAt(0, 300)}, 300, {superseded, sliver});
    const auto periods = recording::noInputPeriods(session);
    ASSERT_EQ(periods.size(), 1u);
    EXPECT_FALSE(periods[0].confirmedState);
    EXPECT_EQ(periods[0].endDate, at(300));
}

TEST(NoInputPeriodsTest, OneConfirmationOverTwoRunsGivesTwoPeriods) {
    auto confirmation = confirmationAt(0, 500, S::passiveStudy);
    const auto session =
        sessionWith({idleAt(0, 100), focusedAt(100, 100), idleAt(200, 100)}, 500, {confirmation});
    const auto periods = recording::noInputPeriods(session);
    ASSERT_EQ(periods.size(), 2u);
    EXPECT_EQ(periods[0].endDate, at(100));
    EXPECT_EQ(periods[1].startDate, at(200));
    EXPECT_EQ(periods[1].confirmationID, confirmation.id);
}

}  // namespace
}  // namespace lumenote::recording
