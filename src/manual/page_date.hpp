// The date printed on the manual pages, chosen so that two builds of the same
// source write the same pages.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace lumenote::manual {

// The UTC calendar day ("YYYY-MM-DD") of `sourceDateEpoch`, a count of seconds
// since 1970-01-01 as the reproducible-builds SOURCE_DATE_EPOCH variable gives
// it; `fallback` when the variable is unset (nullptr) or empty. Nothing when
// it is set but not a plain decimal count up to the end of the year 9999: a
// build asked to be reproducible must not quietly print another date.
std::optional<std::string> pageDate(const char* sourceDateEpoch, std::string_view fallback);

}  // namespace lumenote::manual
