#include "manual/page_date.hpp"

#include <date/date.h>

#include <charconv>
#include <chrono>
#include <cstdint>

namespace lumenote::manual {

std::optional<std::string> pageDate(const char* sourceDateEpoch, std::string_view fallback) {
    if (sourceDateEpoch == nullptr || *sourceDateEpoch == '\0') {
        return std::string(fallback);
    }
    const std::string_view text(sourceDateEpoch);
    std::int64_t seconds = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), seconds);
    // 253402300799 is 9999-12-31T23:59:59Z, the last second with a four-digit year.
    if (error != std::errc{} || end != text.data() + text.size() || seconds < 0 ||
        seconds > 253402300799) {
        return std::nullopt;
    }
    const auto day = date::floor<date::days>(date::sys_seconds{std::chrono::seconds{seconds}});
    return date::format("%F", day);
}

}  // namespace lumenote::manual
