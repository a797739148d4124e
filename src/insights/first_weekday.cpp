#include "insights/first_weekday.hpp"

#include <langinfo.h>
#include <locale.h>

#include <chrono>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace lumenote::insights {

unsigned firstWeekdayFromLocaleValues(std::optional<long> week1stDay,
                                      std::optional<int> firstWeekdayNumber) {
    if (!week1stDay || !firstWeekdayNumber || *firstWeekdayNumber < 1 || *firstWeekdayNumber > 7) {
        return kDefaultFirstWeekday;
    }
    const std::chrono::year_month_day day{
        std::chrono::year{static_cast<int>(*week1stDay / 10000)},
        std::chrono::month{static_cast<unsigned>(*week1stDay / 100 % 100)},
        std::chrono::day{static_cast<unsigned>(*week1stDay % 100)}};
    if (*week1stDay <= 0 || !day.ok()) {
        return kDefaultFirstWeekday;
    }
    const unsigned weekday = std::chrono::weekday{std::chrono::sys_days{day}}.c_encoding();
    return (weekday + static_cast<unsigned>(*firstWeekdayNumber) - 1) % 7;
}

unsigned localeFirstWeekday() {
    const locale_t locale = ::newlocale(LC_TIME_MASK, "", static_cast<locale_t>(nullptr));
    if (locale == static_cast<locale_t>(nullptr)) {
        return kDefaultFirstWeekday;
    }
    const std::string_view name = ::nl_langinfo_l(_NL_LOCALE_NAME(LC_TIME), locale);
    unsigned first = kDefaultFirstWeekday;
    if (name != "C" && name != "POSIX" && !name.starts_with("C.")) {
        // glibc returns the date as an integer stored in the pointer's bits
        // and the weekday number as the first byte of a string.
        const auto week1stDay = static_cast<long>(static_cast<std::uint32_t>(
            reinterpret_cast<std::uintptr_t>(::nl_langinfo_l(_NL_TIME_WEEK_1STDAY, locale))));
        const int number =
            static_cast<unsigned char>(*::nl_langinfo_l(_NL_TIME_FIRST_WEEKDAY, locale));
        first = firstWeekdayFromLocaleValues(week1stDay, number);
    }
    ::freelocale(locale);
    return first;
}

}  // namespace lumenote::insights
