// The text alternative of every chart: the same figures as a table of
// strings, for a screen reader and for "Show as table".
#pragma once

#include <string>
#include <vector>

#include "ui/models/chart_data.hpp"

namespace lumenote::ui::models {

struct ChartTable {
    std::vector<std::string> header;
    std::vector<std::vector<std::string>> rows;

    friend bool operator==(const ChartTable&, const ChartTable&) = default;
};

// {"Day", "Study time"}, one row a day ("1 h 05 min"), then the goal as a
// last row {"Daily goal", ...} when one is set.
ChartTable barChartTable(const BarChartData& data);
// {"Day", "Focused", "Neutral", "Distracting", "Unclassified", "Ignored",
// "Total"}, one row a day.
ChartTable stackedBarChartTable(const StackedBarChartData& data);
// {"Week", "Focus score"}, "82%" or "No score" for a week without one.
ChartTable lineChartTable(const LineChartData& data);
// {caption, "Reached"} with one row: the whole percentage reached.
ChartTable ringTable(const RingData& data);

// A focus score or a progress as a whole percentage ("82%"), rounded to the
// nearest; values outside 0 ... 100 are clamped, a value that is not a
// number reads "0%".
std::string percentText(double percent);
// A ring's progress, 0 ... 1, clamped; not a number counts as 0.
double clampedProgress(double progress);

// The table as lines of tab-separated cells, the header first; empty rows
// read "No data" below the header.
std::string tableText(const ChartTable& table);

}  // namespace lumenote::ui::models
