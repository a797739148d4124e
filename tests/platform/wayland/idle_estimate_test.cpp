#include "platform/wayland/idle_estimate.hpp"

#include <gtest/gtest.h>

#include <optional>
#include <ostream>
#include <vector>

namespace lumenote::platform::wayland {
namespace {

// An idle report at `time`, or input again (resumed) when `idled` is false.
struct Report {
    double time;
    bool idled;
};

struct Reading {
    double now;
    double idleSeconds;
};

struct IdleCase {
    const char* label;
    double threshold;
    std::vector<Report> reports;
    std::vector<Reading> readings;  // taken after all reports
};

void PrintTo(const IdleCase& test, std::ostream* stream) {
    *stream << test.label;
}

class IdleEstimateTest : public testing::TestWithParam<IdleCase> {};

TEST_P(IdleEstimateTest, DerivesSecondsSinceTheLastInput) {
    const IdleCase& test = GetParam();
    IdleEstimate estimate(test.threshold);
    for (const Report& report : test.reports) {
        if (report.idled) {
            estimate.idled(report.time);
        } else {
            estimate.resumed();
        }
    }
    for (const Reading& reading : test.readings) {
        EXPECT_DOUBLE_EQ(estimate.idleSeconds(reading.now), reading.idleSeconds)
            << "at " << reading.now;
    }
}

//  input ---|        idle report at 10 (threshold 1: last input at 9)
//           |<- 1 ->|<- grows with the clock ->
INSTANTIATE_TEST_SUITE_P(
    Reports, IdleEstimateTest,
    testing::Values(
        IdleCase{"active until the first report", 1.0, {}, {{0.0, 0.0}, {500.0, 0.0}}},
        IdleCase{"the threshold at the report, then the clock",
                 1.0,
                 {{10.0, true}},
                 {{10.0, 1.0}, {10.25, 1.25}, {70.0, 61.0}}},
        IdleCase{"a reading timed before the report is not below the threshold",
                 1.0,
                 {{10.0, true}},
                 {{9.5, 1.0}}},
        IdleCase{"input resets to 0", 1.0, {{10.0, true}, {12.0, false}}, {{13.0, 0.0}}},
        IdleCase{
            "a repeated report keeps the first", 1.0, {{10.0, true}, {11.0, true}}, {{12.0, 3.0}}},
        IdleCase{"input without a report before is harmless", 1.0, {{5.0, false}}, {{6.0, 0.0}}},
        IdleCase{"a second idle period counts from its own report",
                 1.0,
                 {{10.0, true}, {12.0, false}, {20.0, true}},
                 {{21.0, 2.0}}},
        IdleCase{"another threshold", 0.5, {{3.0, true}}, {{4.0, 1.5}}}));

}  // namespace
}  // namespace lumenote::platform::wayland
