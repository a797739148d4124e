#include "cli/session_listing_query.hpp"

#include <fmt/format.h>

#include <charconv>

namespace lumenote::cli {

Result<recording::SessionQuery, std::string> sessionListingQuery(
    const SessionListingOptions& options, const LocalCalendar& calendar) {
    recording::SessionQuery query{.newestFirst = true};
    if (options.limit) {
        const std::string& text = *options.limit;
        std::size_t limit = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), limit);
        if (text.empty() || error != std::errc() || end != text.data() + text.size() || limit < 1) {
            return fail(fmt::format(
                "\"{}\" is not a number of sessions. Give --limit a whole number, 1 or more.",
                text));
        }
        query.limit = limit;
    }
    if (options.since) {
        const auto start = calendar.startOfDayKey(*options.since);
        if (!start) {
            return fail(fmt::format(
                "\"{}\" is not a day. Give --since a day as YYYY-MM-DD, such as 2026-11-16.",
                *options.since));
        }
        query.startingAtOrAfter = *start;
    }
    return query;
}

}  // namespace lumenote::cli
