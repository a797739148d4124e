// The figures a chart draws, as plain values: study time per day, classes per
// day, the weekly focus score and the progress towards a goal. The windows,
// the PNG and the PDF receipts fill them from the core's own figures; the
// painting code reads them and never computes a total of its own.
#pragma once

#include <array>
#include <cmath>
#include <optional>
#include <string>
#include <vector>

#include "classification/classification_enumerations.hpp"

namespace lumenote::ui::models {

// The classes in the order a stacked bar piles them, bottom first, and its
// table lists them: the study time first, what is left over last.
inline constexpr std::array<classification::ActivityClassification, 5> kStackedClassOrder{
    classification::ActivityClassification::focused,
    classification::ActivityClassification::neutral,
    classification::ActivityClassification::distracting,
    classification::ActivityClassification::unclassified,
    classification::ActivityClassification::ignored};

// A figure a chart can draw: a value that is not a number or below 0 counts
// as 0, so that a broken figure shows as nothing rather than as a bar
// reaching out of the chart.
inline double drawableSeconds(double seconds) {
    return std::isfinite(seconds) && seconds > 0.0 ? seconds : 0.0;
}

// One day's bar: its label ("Mon", "12 Nov") and its study time in seconds.
struct BarChartDay {
    std::string label;
    double seconds = 0.0;
};

// Study time per day, with the daily goal (seconds) drawn as a line when set.
struct BarChartData {
    std::vector<BarChartDay> days;
    std::optional<double> goalSeconds;
};

// One day's stacked bar: seconds per class, indexed as kStackedClassOrder.
struct StackedBarDay {
    std::string label;
    std::array<double, kStackedClassOrder.size()> seconds{};

    double total() const {
        double sum = 0.0;
        for (double part : seconds) {
            sum += drawableSeconds(part);
        }
        return sum;
    }
};

struct StackedBarChartData {
    std::vector<StackedBarDay> days;
};

// One week's point: its label and its focus score, 0 ... 100; nullopt for a
// week without a score (the line leaves a gap there).
struct LinePoint {
    std::string label;
    std::optional<double> value;
};

struct LineChartData {
    std::vector<LinePoint> points;
};

// Progress towards a goal, 0 ... 1 (clamped when drawn), with the words the
// ring's figure stands for ("Daily goal").
struct RingData {
    double progress = 0.0;
    std::string caption = "Daily goal";
};

}  // namespace lumenote::ui::models
