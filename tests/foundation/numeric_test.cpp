#include "foundation/numeric.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace lumenote {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(RoundingTest, HalvesGoAwayFromZero) {
    struct Case {
        double input;
        double expected;
    };
    for (const Case& c : {Case{49.5, 50}, Case{49.4999, 49}, Case{-49.5, -50}, Case{0.5, 1},
                          Case{-0.5, -1}, Case{2.5, 3}, Case{0.49999999999999994, 0}}) {
        EXPECT_EQ(roundHalfAwayFromZero(c.input), c.expected) << c.input;
    }
}

TEST(DurationClampTest, BoundsAndNonFiniteValues) {
    EXPECT_EQ(clampDuration(-1.0), 0.0);
    EXPECT_EQ(clampDuration(3155760000.0), 3155760000.0);
    EXPECT_EQ(clampDuration(3155760000.5), 3155760000.0);
    EXPECT_EQ(clampDuration(kInfinity), 0.0);
    EXPECT_EQ(clampDuration(-kInfinity), 0.0);
    EXPECT_EQ(clampDuration(kNaN), 0.0);
    EXPECT_EQ(clampDuration(12.25), 12.25);
}

TEST(DurationClampTest, SumsStayInRange) {
    EXPECT_EQ(addClampedDuration(3155759999.0, 10.0), 3155760000.0);
    EXPECT_EQ(addClampedDuration(10.0, kNaN), 10.0);
    EXPECT_EQ(addClampedDuration(10.0, -5.0), 10.0);
    EXPECT_EQ(addClampedDuration(kInfinity, 5.0), 5.0);
}

TEST(PercentRatioTest, NeedsOneSecondOfDenominatorAndStaysWithinBounds) {
    EXPECT_EQ(percentRatio(30, 60), 50.0);
    EXPECT_EQ(percentRatio(1, 1), 100.0);
    EXPECT_EQ(percentRatio(0.5, 0.999), 0.0);
    EXPECT_EQ(percentRatio(120, 60), 100.0);
    EXPECT_EQ(percentRatio(-5, 60), 0.0);
    EXPECT_EQ(percentRatio(kNaN, 60), 0.0);
    EXPECT_EQ(percentRatio(5, kInfinity), 0.0);
}

}  // namespace
}  // namespace lumenote
