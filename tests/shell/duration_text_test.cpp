// Durations in words at the edges of each unit, and what a broken figure
// prints as.
#include "shell/duration_text.hpp"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

namespace lumenote::shell {
namespace {

TEST(DurationText, ChangesUnitAtAMinuteAndAnHour) {
    EXPECT_EQ(durationText(0.0), "0 s");
    EXPECT_EQ(durationText(59.4), "59 s");
    // Rounded to the second first: 59.5 s is a whole minute.
    EXPECT_EQ(durationText(59.5), "1 min");
    EXPECT_EQ(durationText(3599.0), "59 min");
    EXPECT_EQ(durationText(3600.0), "1 h 00 min");
    EXPECT_EQ(durationText(3900.0), "1 h 05 min");
    EXPECT_EQ(durationText(100.0 * 3600.0), "100 h 00 min");
}

TEST(DurationText, ANegativeOrBrokenFigureIsNoTime) {
    EXPECT_EQ(durationText(-30.0), "0 s");
    EXPECT_EQ(durationText(std::nan("")), "0 s");
    EXPECT_EQ(durationText(std::numeric_limits<double>::infinity()), "0 s");
    EXPECT_EQ(clockText(std::nan("")), "0:00");
}

}  // namespace
}  // namespace lumenote::shell
