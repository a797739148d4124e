#include "insights/insight_text.hpp"

#include <fmt/format.h>

#include <array>
#include <cmath>

#include "foundation/numeric.hpp"

namespace lumenote::insights {

std::string insightDurationText(double seconds) {
    const double clamped = clampDuration(seconds);
    if (clamped < 59.5) {
        return fmt::format("{} s", static_cast<long long>(roundHalfAwayFromZero(clamped)));
    }
    const auto minutes = static_cast<long long>(roundHalfAwayFromZero(clamped / 60.0));
    const long long hours = minutes / 60;
    const long long rest = minutes % 60;
    if (hours == 0) {
        return fmt::format("{} min", rest);
    }
    if (rest == 0) {
        return fmt::format("{} h", hours);
    }
    return fmt::format("{} h {} min", hours, rest);
}

std::string_view weekdayName(unsigned weekday) {
    static constexpr std::array<std::string_view, 7> names{
        "Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"};
    return names[weekday % names.size()];
}

long long printedPoints(double difference) {
    return static_cast<long long>(roundHalfAwayFromZero(std::fabs(difference)));
}

}  // namespace lumenote::insights
