// Numeric rules shared by every total: rounding, the duration clamp and percentages.
#pragma once

namespace lumenote {
inline namespace foundation {

// One hundred years of 365.25 days, in seconds: the upper bound of every total.
inline constexpr double kMaximumDurationSeconds = 3155760000.0;

// Rounds half away from zero: 49.5 -> 50, -49.5 -> -50, 49.4999 -> 49.
double roundHalfAwayFromZero(double value);

// Clamps a duration in seconds to 0 ... 3155760000; NaN and infinities become 0.
double clampDuration(double seconds);

// Adds two durations and clamps the sum as clampDuration does.
double addClampedDuration(double sum, double seconds);

// numerator / denominator * 100 clamped to 0 ... 100; 0 when the denominator is
// below one second or either operand is not finite.
double percentRatio(double numerator, double denominator);

}  // namespace foundation
}  // namespace lumenote
