// The text alternative of the charts: the figures as a table of strings.
#include "ui/models/chart_table.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace lumenote::ui::models {
namespace {

using Rows = std::vector<std::vector<std::string>>;

TEST(ChartTable, EmptyChartsKeepTheirHeaderAndSayNoData) {
    const ChartTable bars = barChartTable({});
    EXPECT_EQ(bars.header, (std::vector<std::string>{"Day", "Study time"}));
    EXPECT_TRUE(bars.rows.empty());
    EXPECT_EQ(tableText(bars), "Day\tStudy time\nNo data\n");
    EXPECT_EQ(stackedBarChartTable({}).header.size(), kStackedClassOrder.size() + 2);
    EXPECT_TRUE(lineChartTable({}).rows.empty());
}

TEST(ChartTable, StudyTimePerDayInWordsWithTheGoalLast) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const BarChartData data{{{"Mon", 3900.0}, {"Tue", 0.0}, {"Wed", -20.0}, {"Thu", nan}}, 5400.0};
    EXPECT_EQ(barChartTable(data).rows, (Rows{{"Mon", "1 h 05 min"},
                                              {"Tue", "0 s"},
                                              {"Wed", "0 s"},
                                              {"Thu", "0 s"},
                                              {"Daily goal", "1 h 30 min"}}));
}

TEST(ChartTable, ClassesPerDayInStackOrderWithTheirTotal) {
    StackedBarDay day{"Mon", {}};
    day.seconds[0] = 1800.0;  // focused
    day.seconds[2] = 600.0;   // distracting
    day.seconds[4] = -5.0;    // a broken figure counts as nothing
    const ChartTable table = stackedBarChartTable({{day}});
    EXPECT_EQ(table.header, (std::vector<std::string>{"Day", "Focused", "Neutral", "Distracting",
                                                      "Unclassified", "Ignored", "Total"}));
    EXPECT_EQ(table.rows, (Rows{{"Mon", "30 min", "0 s", "10 min", "0 s", "0 s", "40 min"}}));
}

TEST(ChartTable, WeeksWithoutAScoreSaySoInsteadOfZero) {
    const LineChartData data{{{"3 Nov", 81.6},
                              {"10 Nov", std::nullopt},
                              {"17 Nov", 0.0},
                              {"24 Nov", std::numeric_limits<double>::infinity()}}};
    EXPECT_EQ(
        lineChartTable(data).rows,
        (Rows{{"3 Nov", "82%"}, {"10 Nov", "No score"}, {"17 Nov", "0%"}, {"24 Nov", "No score"}}));
}

TEST(ChartTable, RingProgressIsClampedToAWholePercentage) {
    EXPECT_EQ(ringTable({0.425, "Daily goal"}).rows, (Rows{{"Daily goal", "43%"}}));
    EXPECT_EQ(ringTable({1.7, "Daily goal"}).rows, (Rows{{"Daily goal", "100%"}}));
    EXPECT_EQ(ringTable({std::nan(""), "Daily goal"}).rows, (Rows{{"Daily goal", "0%"}}));
    EXPECT_EQ(percentText(-3.0), "0%");
    EXPECT_EQ(percentText(99.5), "100%");
}

}  // namespace
}  // namespace lumenote::ui::models
