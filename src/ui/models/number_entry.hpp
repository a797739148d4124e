// A number typed into a settings field: its reading, and the sentence shown
// when the preferences store does not keep it as typed (it clamps values to
// its ranges instead of refusing them).
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace lumenote::ui::models {

// The number typed into a field: decimal, surrounded by blanks or not;
// nullopt for an empty text, words, or a value that is not finite.
std::optional<double> parsedNumber(std::string_view text);

// A number field's range as its sentence says it: "Allowed range: 90–1800
// seconds."
struct NumberRange {
    double lower;
    double upper;
    std::string_view unit;  // "seconds", "minutes"
};
std::string allowedRangeText(const NumberRange& range);

inline constexpr std::string_view kEnterNumberText = "Enter a number.";

// The sentence beside a number field once the store was given `typed` (nullopt
// when the text was no number, and nothing was given) and now holds `held`:
// empty when the store kept the value as typed, the range when it clamped it.
std::string numberFieldSentence(std::optional<double> typed, double held, const NumberRange& range);

}  // namespace lumenote::ui::models
