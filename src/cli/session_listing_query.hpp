// Which sessions `lumenote-cli sessions` lists: the --limit and --since
// options as typed, and the store query they make.
#pragma once

#include <optional>
#include <string>

#include "foundation/dates.hpp"
#include "foundation/result.hpp"
#include "recording/recording_store.hpp"

namespace lumenote::cli {

struct SessionListingOptions {
    std::optional<std::string> limit;  // the most sessions to list, a whole number from 1
    std::optional<std::string> since;  // the first local day listed, "YYYY-MM-DD"
};

// The newest-first query of the sessions `options` asks for: at most `limit`
// of them, started at or after the first instant of the local day `since` in
// `calendar`. Fails with the sentence to show for a limit that is not a whole
// number of at least 1 or a day that is not a calendar day written
// YYYY-MM-DD.
Result<recording::SessionQuery, std::string> sessionListingQuery(
    const SessionListingOptions& options, const LocalCalendar& calendar);

}  // namespace lumenote::cli
