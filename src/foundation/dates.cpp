#include "foundation/dates.hpp"

#include <date/date.h>
#include <date/tz.h>
#include <fmt/format.h>

#include <cctype>
#include <cmath>
#include <cstdint>
#include <cstdlib>

namespace lumenote {
inline namespace foundation {

namespace {

using SystemSeconds = date::sys_time<std::chrono::duration<double>>;

// Whole seconds since 1970 at or before `date`, and the milliseconds after them.
struct SplitTime {
    std::int64_t wholeSeconds;
    int milliseconds;
};

SplitTime split(Date date) {
    const double totalMilliseconds = std::round(date.unixSeconds() * 1000.0);
    auto whole = static_cast<std::int64_t>(std::floor(totalMilliseconds / 1000.0));
    auto millis = static_cast<int>(totalMilliseconds - static_cast<double>(whole) * 1000.0);
    return {whole, millis};
}

std::string formatCivil(std::int64_t localSeconds, int milliseconds, bool fractional) {
    const date::sys_seconds point{std::chrono::seconds{localSeconds}};
    const auto day = date::floor<date::days>(point);
    const date::year_month_day ymd{day};
    const date::hh_mm_ss<std::chrono::seconds> time{point - day};
    std::string text = fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}", int(ymd.year()),
                                   unsigned(ymd.month()), unsigned(ymd.day()), time.hours().count(),
                                   time.minutes().count(), time.seconds().count());
    if (fractional) {
        text += fmt::format(".{:03}", milliseconds);
    }
    return text;
}

std::string formatOffset(std::optional<int> offsetSeconds) {
    if (!offsetSeconds) {
        return "Z";
    }
    const int offset = *offsetSeconds;
    const int magnitude = std::abs(offset) / 60;
    return fmt::format("{}{:02}:{:02}", offset < 0 ? '-' : '+', magnitude / 60, magnitude % 60);
}

// A cursor over the text being parsed.
struct Reader {
    std::string_view text;
    std::size_t position = 0;

    bool atEnd() const { return position == text.size(); }
    bool take(char expected) {
        if (!atEnd() && text[position] == expected) {
            ++position;
            return true;
        }
        return false;
    }
    std::optional<int> digits(std::size_t count) {
        if (text.size() - position < count) {
            return std::nullopt;
        }
        int value = 0;
        for (std::size_t i = 0; i < count; ++i) {
            const char c = text[position + i];
            if (!std::isdigit(static_cast<unsigned char>(c))) {
                return std::nullopt;
            }
            value = value * 10 + (c - '0');
        }
        position += count;
        return value;
    }
};

// Whole seconds since 1970 at the start of year 0000 and of year 10000: the
// instants whose written form has the four-digit year parseIso8601 reads.
constexpr std::int64_t kFirstWritableSecond =
    std::chrono::seconds(date::sys_days{date::year{0} / 1 / 1}.time_since_epoch()).count();
constexpr std::int64_t kEndOfWritableSeconds =
    std::chrono::seconds(date::sys_days{date::year{10000} / 1 / 1}.time_since_epoch()).count();

// Whether formatIso8601 writes `date` (in UTC, rounded to the millisecond)
// with a four-digit year, so that the text reads back.
bool hasFourDigitYear(Date date) {
    const std::int64_t seconds = split(date).wholeSeconds;
    return seconds >= kFirstWritableSecond && seconds < kEndOfWritableSeconds;
}

std::optional<int> parseZone(Reader& reader) {
    if (reader.atEnd()) {
        return 0;
    }
    if (reader.take('Z') || reader.take('z')) {
        return reader.atEnd() ? std::optional<int>(0) : std::nullopt;
    }
    int sign = 0;
    if (reader.take('+')) {
        sign = 1;
    } else if (reader.take('-')) {
        sign = -1;
    } else {
        return std::nullopt;
    }
    const auto hours = reader.digits(2);
    if (!hours || *hours > 23) {
        return std::nullopt;
    }
    int minutes = 0;
    if (!reader.atEnd()) {
        reader.take(':');
        const auto parsed = reader.digits(2);
        if (!parsed || *parsed > 59) {
            return std::nullopt;
        }
        minutes = *parsed;
    }
    if (!reader.atEnd()) {
        return std::nullopt;
    }
    return sign * (*hours * 3600 + minutes * 60);
}

}  // namespace

Date Date::fromSystemClock(std::chrono::system_clock::time_point point) {
    const auto since = std::chrono::duration<double>(point.time_since_epoch());
    return fromUnixSeconds(since.count());
}

Date systemNow() {
    return Date::fromSystemClock(std::chrono::system_clock::now());
}

double Date::millisecondsSince1970() const {
    return std::round(unixSeconds() * 1000.0);
}

std::string formatIso8601(Date date, Iso8601Options options) {
    const SplitTime time = split(date);
    const std::int64_t local = time.wholeSeconds + options.utcOffsetSeconds.value_or(0);
    return formatCivil(local, time.milliseconds, options.fractionalSeconds) +
           formatOffset(options.utcOffsetSeconds);
}

std::optional<Date> parseIso8601(std::string_view text) {
    Reader reader{text};
    const auto year = reader.digits(4);
    if (!year || !reader.take('-')) {
        return std::nullopt;
    }
    const auto month = reader.digits(2);
    if (!month || !reader.take('-')) {
        return std::nullopt;
    }
    const auto day = reader.digits(2);
    if (!day || !(reader.take('T') || reader.take('t') || reader.take(' '))) {
        return std::nullopt;
    }
    const auto hour = reader.digits(2);
    if (!hour || !reader.take(':')) {
        return std::nullopt;
    }
    const auto minute = reader.digits(2);
    if (!minute || !reader.take(':')) {
        return std::nullopt;
    }
    const auto second = reader.digits(2);
    if (!second) {
        return std::nullopt;
    }
    double fraction = 0.0;
    if (reader.take('.') || reader.take(',')) {
        double scale = 0.1;
        std::size_t count = 0;
        while (auto digit = reader.digits(1)) {
            fraction += *digit * scale;
            scale /= 10.0;
            ++count;
        }
        if (count == 0) {
            return std::nullopt;
        }
    }
    const auto offset = parseZone(reader);
    if (!offset) {
        return std::nullopt;
    }
    const date::year_month_day ymd{date::year{*year}, date::month(unsigned(*month)),
                                   date::day(unsigned(*day))};
    // A leap second (":60") is not representable in the stored form.
    if (!ymd.ok() || *hour > 23 || *minute > 59 || *second > 59) {
        return std::nullopt;
    }
    const auto days = date::sys_days{ymd}.time_since_epoch();
    const double unix = static_cast<double>(std::chrono::seconds(days).count()) + *hour * 3600.0 +
                        *minute * 60.0 + *second + fraction - *offset;
    // A zone offset or a rounded fraction can carry the instant out of the
    // years the written form holds ("0000-01-01T00:00:00+01:00" is in year
    // -1 in UTC); such a date could be read but never written back.
    const Date parsed = Date::fromUnixSeconds(unix);
    if (!hasFourDigitYear(parsed)) {
        return std::nullopt;
    }
    return parsed;
}

LocalCalendar LocalCalendar::current() {
    try {
        if (const char* tz = std::getenv("TZ"); tz != nullptr && *tz != '\0') {
            const std::string_view name = (*tz == ':') ? std::string_view(tz + 1) : tz;
            if (auto calendar = named(name)) {
                return *calendar;
            }
        }
        return LocalCalendar(date::current_zone());
    } catch (const std::exception&) {
        return utc();
    }
}

std::optional<LocalCalendar> LocalCalendar::named(std::string_view zoneName) {
    try {
        return LocalCalendar(date::locate_zone(zoneName));
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

LocalCalendar LocalCalendar::utc() {
    return LocalCalendar(date::locate_zone("Etc/UTC"));
}

std::string LocalCalendar::zoneName() const {
    return std::string(zone_->name());
}

namespace {

date::sys_seconds toSysSeconds(Date date) {
    return date::sys_seconds{std::chrono::seconds{split(date).wholeSeconds}};
}

double fractionOf(Date date) {
    const double unix = date.unixSeconds();
    return unix - std::floor(unix);
}

Date fromLocal(const date::time_zone* zone, date::local_seconds local) {
    // A local time skipped by a daylight-saving change maps to the instant of
    // the change; an ambiguous one to its first occurrence.
    const date::sys_seconds point = zone->to_sys(local, date::choose::earliest);
    return Date::fromUnixSeconds(static_cast<double>(point.time_since_epoch().count()));
}

}  // namespace

int LocalCalendar::utcOffsetSeconds(Date date) const {
    return static_cast<int>(zone_->get_info(toSysSeconds(date)).offset.count());
}

namespace {

Date firstInstantOf(const date::time_zone* zone, date::local_days day) {
    const date::local_seconds start{day};
    const auto info = zone->get_info(start);
    if (info.result == date::local_info::nonexistent) {
        // Midnight itself was skipped: the day begins at the transition.
        return Date::fromUnixSeconds(
            static_cast<double>(info.second.begin.time_since_epoch().count()));
    }
    return fromLocal(zone, start);
}

// The number written by the digits text[from, from + count); nullopt when
// any of them is not a digit.
std::optional<int> digitsAt(std::string_view text, std::size_t from, std::size_t count) {
    int value = 0;
    for (std::size_t index = from; index < from + count; ++index) {
        if (!std::isdigit(static_cast<unsigned char>(text[index]))) {
            return std::nullopt;
        }
        value = value * 10 + (text[index] - '0');
    }
    return value;
}

}  // namespace

Date LocalCalendar::startOfDay(Date date) const {
    const auto local = zone_->to_local(toSysSeconds(date));
    return firstInstantOf(zone_, date::floor<date::days>(local));
}

std::optional<Date> LocalCalendar::startOfDayKey(std::string_view dayKey) const {
    if (dayKey.size() != 10 || dayKey[4] != '-' || dayKey[7] != '-') {
        return std::nullopt;
    }
    const auto year = digitsAt(dayKey, 0, 4);
    const auto month = digitsAt(dayKey, 5, 2);
    const auto day = digitsAt(dayKey, 8, 2);
    if (!year || !month || !day) {
        return std::nullopt;
    }
    const date::year_month_day civil{date::year{*year}, date::month{static_cast<unsigned>(*month)},
                                     date::day{static_cast<unsigned>(*day)}};
    if (!civil.ok()) {
        return std::nullopt;
    }
    return firstInstantOf(zone_, date::local_days{civil});
}

Date LocalCalendar::addingDays(Date date, int days) const {
    const auto local = zone_->to_local(toSysSeconds(date));
    const date::local_seconds shifted = local + date::days{days};
    return fromLocal(zone_, shifted).addingSeconds(fractionOf(date));
}

Date LocalCalendar::startOfWeek(Date date, unsigned firstWeekday) const {
    const unsigned today = weekday(date);
    const int back = static_cast<int>((today + 7 - (firstWeekday % 7)) % 7);
    return startOfDay(addingDays(startOfDay(date), -back));
}

std::string LocalCalendar::dayKey(Date date) const {
    const auto local = zone_->to_local(toSysSeconds(date));
    const date::year_month_day ymd{date::floor<date::days>(local)};
    return fmt::format("{:04}-{:02}-{:02}", int(ymd.year()), unsigned(ymd.month()),
                       unsigned(ymd.day()));
}

unsigned LocalCalendar::weekday(Date date) const {
    const auto local = zone_->to_local(toSysSeconds(date));
    return date::weekday{date::floor<date::days>(local)}.c_encoding();
}

std::string LocalCalendar::formatIso8601(Date date, bool fractionalSeconds) const {
    return lumenote::formatIso8601(date, {fractionalSeconds, utcOffsetSeconds(date)});
}

std::string LocalCalendar::formatDateTime(Date date) const {
    std::string text = formatIso8601(date).substr(0, 19);
    text[10] = ' ';
    return text;
}

}  // namespace foundation
}  // namespace lumenote
