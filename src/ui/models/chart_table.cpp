#include "ui/models/chart_table.hpp"

#include <algorithm>

#include "shell/duration_text.hpp"
#include "shell/panel_model.hpp"

namespace lumenote::ui::models {

ChartTable barChartTable(const BarChartData& data) {
    ChartTable table{{"Day", "Study time"}, {}};
    for (const BarChartDay& day : data.days) {
        table.rows.push_back({day.label, shell::durationText(drawableSeconds(day.seconds))});
    }
    if (data.goalSeconds && drawableSeconds(*data.goalSeconds) > 0.0) {
        table.rows.push_back({"Daily goal", shell::durationText(*data.goalSeconds)});
    }
    return table;
}

ChartTable stackedBarChartTable(const StackedBarChartData& data) {
    ChartTable table;
    table.header.push_back("Day");
    for (const auto classification : kStackedClassOrder) {
        table.header.emplace_back(shell::classificationChipText(classification));
    }
    table.header.push_back("Total");
    for (const StackedBarDay& day : data.days) {
        std::vector<std::string> row{day.label};
        for (double part : day.seconds) {
            row.push_back(shell::durationText(drawableSeconds(part)));
        }
        row.push_back(shell::durationText(day.total()));
        table.rows.push_back(std::move(row));
    }
    return table;
}

ChartTable lineChartTable(const LineChartData& data) {
    ChartTable table{{"Week", "Focus score"}, {}};
    for (const LinePoint& point : data.points) {
        table.rows.push_back({point.label, point.value && std::isfinite(*point.value)
                                               ? percentText(*point.value)
                                               : std::string("No score")});
    }
    return table;
}

ChartTable ringTable(const RingData& data) {
    return {{data.caption, "Reached"},
            {{data.caption, percentText(clampedProgress(data.progress) * 100.0)}}};
}

std::string percentText(double percent) {
    const double shown = std::isfinite(percent) ? std::clamp(percent, 0.0, 100.0) : 0.0;
    return std::to_string(static_cast<int>(std::lround(shown))) + "%";
}

double clampedProgress(double progress) {
    return std::isfinite(progress) ? std::clamp(progress, 0.0, 1.0) : 0.0;
}

std::string tableText(const ChartTable& table) {
    const auto line = [](const std::vector<std::string>& cells) {
        std::string text;
        for (std::size_t i = 0; i < cells.size(); ++i) {
            text += (i == 0 ? "" : "\t") + cells[i];
        }
        return text + "\n";
    };
    std::string text = line(table.header);
    if (table.rows.empty()) {
        return text + "No data\n";
    }
    for (const auto& row : table.rows) {
        text += line(row);
    }
    return text;
}

}  // namespace lumenote::ui::models
