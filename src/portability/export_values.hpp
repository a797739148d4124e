// The value rules every export format shares: text made valid UTF-8, the
// seconds rule, the timestamp rule and the number forms. Pure functions.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include "foundation/dates.hpp"
#include "portability/export_output.hpp"

namespace lumenote::portability {

// What replaces bytes that are not UTF-8: U+FFFD REPLACEMENT CHARACTER.
inline constexpr std::string_view kReplacementCharacter = "\xEF\xBF\xBD";

// `text` when it is valid UTF-8 (the common case, checked in one pass);
// otherwise a copy in `scratch` where each maximal ill-formed subpart (the
// longest start of a well-formed sequence, or one stray byte) became U+FFFD,
// as Unicode recommends and as Python's "replace" decoding does. Overlong
// forms, surrogates and code points above U+10FFFF are ill-formed. The
// result views `text` or `scratch`.
std::string_view validUtf8(std::string_view text, std::string& scratch);

// The seconds rule: not finite -> 0; negative (and -0) -> 0; otherwise the
// value itself.
double exportSeconds(double seconds);

// Appends exportSeconds(seconds) with exactly three decimals, as "%.3f"
// writes it (1500 -> "1500.000").
void appendFixedThreeDecimals(ExportOutput& output, double value);

// Appends the shortest decimal form that reads back as the same double
// ("1500", "0.1", "1e+300"); `value` must be finite.
void appendShortestDouble(ExportOutput& output, double value);

void appendInteger(ExportOutput& output, long long value);

// The timestamp rule: "2026-11-16T08:00:00Z", ISO 8601 in UTC with whole
// seconds, character for character as formatIso8601 writes it with its
// default options (rounded to the millisecond, then the whole second), but
// without an allocation or a format string: an export writes millions. A
// date outside the years 0000 to 9999 (only a damaged record holds one) is
// written as the nearest instant of those years, and a NaN as the reference
// date 2001-01-01T00:00:00Z, which the store also reads for a date it could
// not hold.
class ExportTimestamp {
  public:
    static constexpr std::size_t kLength = 20;

    explicit ExportTimestamp(Date date);
    std::string_view text() const { return {characters_.data(), characters_.size()}; }

  private:
    std::array<char, kLength> characters_{};
};

}  // namespace lumenote::portability
