#include "recording/focus_runs.hpp"

#include <gtest/gtest.h>

#include "recording/tracking_calculation.hpp"

namespace lumenote::recording::TrackingCalculationService {
namespace {

using AS = AccountedState;

const Date kStart = Date::fromUnixSeconds(1'800'000'000.0);

// One piece per step, each starting where the previous ended plus `gapBefore`.
struct Step {
    AS state;
    double seconds;
    double gapBefore = 0;
};

std::vector<TrackingActivityContribution> timeline(const std::vector<Step>& steps) {
    std::vector<TrackingActivityContribution> pieces;
    Date cursor = kStart;
    for (const auto& step : steps) {
        const Date from = cursor.addingSeconds(step.gapBefore);
        cursor = from.addingSeconds(step.seconds);
        pieces.push_back(TrackingActivityContribution{"com.example", from, cursor, step.seconds,
                                                      step.state, ActivitySourceType::application});
    }
    return pieces;
}

struct RunCase {
    const char* name;
    std::vector<Step> steps;
    double longestFocused;
    int interruptions;

    friend void PrintTo(const RunCase& c, std::ostream* os) { *os << c.name; }
};

class FocusRunTable : public ::testing::TestWithParam<RunCase> {};

TEST_P(FocusRunTable, LongestRunAndInterruptions) {
    const auto& c = GetParam();
    const auto pieces = timeline(c.steps);
    EXPECT_DOUBLE_EQ(longestFocusedRun(pieces), c.longestFocused) << c.name;
    EXPECT_EQ(meaningfulInterruptionCount(pieces), c.interruptions) << c.name;
}

INSTANTIATE_TEST_SUITE_P(
    Cases, FocusRunTable,
    ::testing::Values(
        RunCase{"empty", {}, 0, 0},
        RunCase{"adjacent focused pieces join", {{AS::focused, 60}, {AS::focused, 90}}, 150, 0},
        RunCase{"any other piece breaks the run",
                {{AS::focused, 60},
                 {AS::noInput, 5},
                 {AS::focused, 50},
                 {AS::neutral, 1},
                 {AS::focused, 40}},
                60,
                0},
        RunCase{
            "tick jitter of a second joins", {{AS::focused, 60}, {AS::focused, 60, 1.0}}, 120, 0},
        RunCase{
            "a longer gap (a pause) breaks", {{AS::focused, 60}, {AS::focused, 70, 1.5}}, 70, 0},
        RunCase{
            "30 s of distraction after focus", {{AS::focused, 120}, {AS::distracting, 30}}, 120, 1},
        RunCase{"29.9 s is a glance, not an interruption",
                {{AS::focused, 120}, {AS::distracting, 29.9}, {AS::focused, 10}},
                120,
                0},
        RunCase{"adjacent distractions add up",
                {{AS::focused, 120}, {AS::distracting, 20}, {AS::distracting, 15}},
                120,
                1},
        RunCase{
            "separated short distractions do not",
            {{AS::focused, 120}, {AS::distracting, 20}, {AS::neutral, 5}, {AS::distracting, 15}},
            120,
            0},
        RunCase{"distraction before any focus", {{AS::distracting, 300}, {AS::focused, 60}}, 60, 0},
        RunCase{"focus, a neutral step, then distraction",
                {{AS::focused, 60}, {AS::neutral, 10}, {AS::distracting, 40}},
                60,
                1},
        RunCase{
            "drifting between distractions is one interruption",
            {{AS::focused, 60}, {AS::distracting, 40}, {AS::neutral, 10}, {AS::distracting, 40}},
            60,
            1},
        RunCase{"each return to focus can be interrupted again",
                {{AS::focused, 60},
                 {AS::distracting, 40},
                 {AS::focused, 60},
                 {AS::distracting, 40, 30}},
                60,
                2}));

TEST(FocusRuns, ReadTheReconciledTimeLine) {
    // F |=====================|   0-300
    // D          |===|            100-140: splits the Focused stretch
    const auto start = [](double offset) { return kStart.addingSeconds(offset); };
    const std::vector<SessionAccountingSample> samples{
        {start(0), start(300), 300, classification::ActivityClassification::focused, false,
         ActivitySourceType::application, "com.example.editor"},
        {start(100), start(140), 40, classification::ActivityClassification::distracting, false,
         ActivitySourceType::website, "video.example.com"}};
    const auto result =
        calculateTotals(samples, {}, kStart, start(300), 300, TrackingCalculationVersion::v3);
    EXPECT_DOUBLE_EQ(longestFocusedRun(result.contributions), 160);
    EXPECT_EQ(meaningfulInterruptionCount(result.contributions), 1);
}

}  // namespace
}  // namespace lumenote::recording::TrackingCalculationService
