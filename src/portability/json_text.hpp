// Writing JSON text by hand, for documents streamed piece by piece: strings,
// numbers and dates appended to a buffer.
#pragma once

#include <string>
#include <string_view>

#include "foundation/dates.hpp"

namespace lumenote::portability::json_text {

// Appends `text` as a JSON string: quotes, backslashes and control
// characters escaped; each byte that is not part of a valid UTF-8 sequence
// replaced by U+FFFD, so that the document is always valid UTF-8.
void appendString(std::string& out, std::string_view text);

// Appends the shortest text that reads back as exactly `value`; `null` for a
// value that JSON cannot hold (infinite or NaN), which a reader refuses.
void appendNumber(std::string& out, double value);
void appendInteger(std::string& out, long long value);

// A date as its stored form: seconds since 2001-01-01T00:00:00Z, a number
// that reads back as exactly the same date.
inline void appendDate(std::string& out, Date date) {
    appendNumber(out, date.secondsSinceReferenceDate);
}

}  // namespace lumenote::portability::json_text
