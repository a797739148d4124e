#include "cli/duration_argument.hpp"

#include <gtest/gtest.h>

#include <cmath>

namespace lumenote::cli {
namespace {

TEST(DurationArgumentTest, ReadsUnitsAndBareSeconds) {
    const std::vector<std::pair<const char*, double>> cases{
        {"25m", 1500},     {"90m", 5400},
        {"1h30m", 5400},   {"1500", 1500},
        {"45s", 45},       {"1h", 3600},
        {"2h5m10s", 7510}, {"1H30M", 5400},
        {"0", 0},          {"5400s", 5400},
        {"0h1m", 60},      {"1m0s", 60},
        {"007m", 420},     {"999999999s", 999999999},
    };
    for (const auto& [text, seconds] : cases) {
        SCOPED_TRACE(text);
        const auto parsed = parseDurationArgument(text);
        ASSERT_TRUE(parsed.ok());
        EXPECT_EQ(parsed.value(), seconds);
    }
}

TEST(DurationArgumentTest, RefusesAnythingElse) {
    for (const char* text : {"", "m", "25x", "1m1h", "1h1h", "30m5", "1.5h", "-5", "25 m", " 25m",
                             "25m ", "1h-30m", "1000000000", "1e3", "h30m"}) {
        SCOPED_TRACE(text);
        const auto parsed = parseDurationArgument(text);
        ASSERT_FALSE(parsed.ok());
        EXPECT_EQ(message(parsed.error()),
                  "Give a duration such as 25m, 90m, 1h30m or a number of seconds such as 1500.");
    }
}

TEST(DurationArgumentTest, FormatsWholeSecondsInTheSameNotation) {
    const std::vector<std::pair<double, const char*>> cases{
        {1500, "25m"}, {5400, "1h30m"}, {45, "45s"},  {3605, "1h0m5s"},
        {0, "0s"},     {3600, "1h"},    {59.6, "1m"}, {43200, "12h"},
    };
    for (const auto& [seconds, text] : cases) {
        EXPECT_EQ(formatDurationArgument(seconds), text) << seconds;
        EXPECT_EQ(parseDurationArgument(text).value(), std::round(seconds)) << text;
    }
}

TEST(DurationArgumentTest, SpellsRangesOutInTheLargestWholeUnits) {
    const std::vector<std::pair<double, const char*>> cases{
        {1, "1 second"},
        {90, "90 seconds"},
        {60, "1 minute"},
        {3600, "1 hour"},
        {86400, "24 hours"},
        {5400, "1 hour 30 minutes"},
        {7260, "2 hours 1 minute"},
        {3601, "3601 seconds"},
        {2.5, "2.5 seconds"},
    };
    for (const auto& [seconds, text] : cases) {
        EXPECT_EQ(readableDuration(seconds), text) << seconds;
    }
}

}  // namespace
}  // namespace lumenote::cli
