// The parts both receipts are made of: the split of computer study into the
// four classes, a named duration and the fixed sentences they print.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace lumenote::ui::models {

// The branding line, printed only when the branding option is on.
inline constexpr std::string_view kReceiptBrandingText = "Made with Lumenote";

// The most lines of a session receipt's activities and of a weekly
// receipt's subjects; a weekly receipt lists fewer activities per class, as
// it shows two such lists beside its chart of the days.
inline constexpr std::size_t kReceiptActivityCount = 5;
inline constexpr std::size_t kWeeklyReceiptActivityCount = 3;

// Computer study split by class, in seconds, as the core stored or summed
// it. The receipt's bar shows each class's share of their sum.
struct ClassSplit {
    double focused = 0.0;
    double distracting = 0.0;
    double neutral = 0.0;
    double unclassified = 0.0;

    double total() const { return focused + distracting + neutral + unclassified; }
    friend bool operator==(const ClassSplit&, const ClassSplit&) = default;
};

// One line of a list: a name as the app shows it and its duration.
struct ReceiptLine {
    std::string name;
    std::string duration;  // "1 h 05 min"
    double seconds = 0.0;

    friend bool operator==(const ReceiptLine&, const ReceiptLine&) = default;
};

// The line for `seconds` under `name`, its duration in words.
ReceiptLine receiptLine(std::string name, double seconds);

}  // namespace lumenote::ui::models
