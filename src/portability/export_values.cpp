#include "portability/export_values.hpp"

#include <algorithm>
#include <array>
#include <cassert>
#include <charconv>
#include <cmath>
#include <cstdint>

namespace lumenote::portability {

namespace {

// The instants formatIso8601 writes with a four-digit year, in Unix seconds:
// 0000-01-01T00:00:00Z and 9999-12-31T23:59:59Z.
constexpr double kFirstWritableUnixSeconds = -62167219200.0;
constexpr double kLastWritableUnixSeconds = 253402300799.0;

// Room for any double in fixed notation with three decimals (at most 309
// integer digits) or in its shortest form.
constexpr std::size_t kNumberCharacters = 352;

// How many bytes starting at `at` form one well-formed UTF-8 sequence (the
// ranges of Unicode's table of well-formed byte sequences); when they do
// not, the negative of the maximal ill-formed subpart's length (at least 1).
int sequenceLength(std::string_view text, std::size_t at) {
    const auto byte = [&](std::size_t index) { return static_cast<unsigned char>(text[index]); };
    const unsigned char lead = byte(at);
    if (lead < 0x80) {
        return 1;
    }
    int length = 0;
    unsigned char secondLow = 0x80;
    unsigned char secondHigh = 0xBF;
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        secondLow = lead == 0xE0 ? 0xA0 : 0x80;
        secondHigh = lead == 0xED ? 0x9F : 0xBF;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        secondLow = lead == 0xF0 ? 0x90 : 0x80;
        secondHigh = lead == 0xF4 ? 0x8F : 0xBF;
    } else {
        return -1;
    }
    for (int index = 1; index < length; ++index) {
        const std::size_t position = at + static_cast<std::size_t>(index);
        if (position >= text.size()) {
            return -index;
        }
        const unsigned char low = index == 1 ? secondLow : 0x80;
        const unsigned char high = index == 1 ? secondHigh : 0xBF;
        if (byte(position) < low || byte(position) > high) {
            return -index;
        }
    }
    return length;
}

constexpr std::int64_t kSecondsPerDay = 86400;

// "00" "01" ... "99": two digits at a time, a timestamp being mostly pairs.
constexpr std::array<char, 200> kTwoDigitPairs = [] {
    std::array<char, 200> pairs{};
    for (std::size_t value = 0; value < 100; ++value) {
        pairs[value * 2] = static_cast<char>('0' + value / 10);
        pairs[value * 2 + 1] = static_cast<char>('0' + value % 10);
    }
    return pairs;
}();

struct CivilDate {
    std::int64_t year;
    std::int64_t month;  // 1 ... 12
    std::int64_t day;    // 1 ... 31
};

// The proleptic Gregorian date `days` days after 1970-01-01 (Howard
// Hinnant's civil_from_days, which the date library also uses).
CivilDate civilFromDays(std::int64_t days) {
    days += 719468;
    const std::int64_t era = (days >= 0 ? days : days - 146096) / 146097;
    const std::int64_t dayOfEra = days - era * 146097;
    const std::int64_t yearOfEra =
        (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const std::int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const std::int64_t shiftedMonth = (5 * dayOfYear + 2) / 153;
    const std::int64_t day = dayOfYear - (153 * shiftedMonth + 2) / 5 + 1;
    const std::int64_t month = shiftedMonth < 10 ? shiftedMonth + 3 : shiftedMonth - 9;
    return {yearOfEra + era * 400 + (month <= 2 ? 1 : 0), month, day};
}

template <typename... Format>
void appendNumber(ExportOutput& output, double value, Format... format) {
    std::array<char, kNumberCharacters> characters{};
    const auto [end, error] =
        std::to_chars(characters.data(), characters.data() + characters.size(), value, format...);
    assert(error == std::errc());
    output.append(
        std::string_view(characters.data(), static_cast<std::size_t>(end - characters.data())));
}

}  // namespace

std::string_view validUtf8(std::string_view text, std::string& scratch) {
    std::size_t at = 0;
    while (at < text.size()) {
        const int length = sequenceLength(text, at);
        if (length < 0) {
            break;
        }
        at += static_cast<std::size_t>(length);
    }
    if (at == text.size()) {
        return text;
    }
    scratch.assign(text.substr(0, at));
    while (at < text.size()) {
        const int length = sequenceLength(text, at);
        if (length > 0) {
            scratch.append(text.substr(at, static_cast<std::size_t>(length)));
            at += static_cast<std::size_t>(length);
        } else {
            scratch.append(kReplacementCharacter);
            at += static_cast<std::size_t>(-length);
        }
    }
    return scratch;
}

double exportSeconds(double seconds) {
    if (!std::isfinite(seconds) || !(seconds > 0.0)) {
        return 0.0;
    }
    return seconds;
}

void appendFixedThreeDecimals(ExportOutput& output, double value) {
    appendNumber(output, exportSeconds(value), std::chars_format::fixed, 3);
}

void appendShortestDouble(ExportOutput& output, double value) {
    assert(std::isfinite(value));
    appendNumber(output, value);
}

void appendInteger(ExportOutput& output, long long value) {
    std::array<char, 24> characters{};
    const auto [end, error] =
        std::to_chars(characters.data(), characters.data() + characters.size(), value);
    assert(error == std::errc());
    output.append(
        std::string_view(characters.data(), static_cast<std::size_t>(end - characters.data())));
}

ExportTimestamp::ExportTimestamp(Date date) {
    // The same arithmetic as formatIso8601: the instant rounded to the
    // millisecond, then its whole second.
    double unixSeconds = date.unixSeconds();
    if (std::isnan(unixSeconds)) {
        unixSeconds = Date{}.unixSeconds();
    }
    unixSeconds = std::clamp(unixSeconds, kFirstWritableUnixSeconds, kLastWritableUnixSeconds);
    const double milliseconds = std::round(unixSeconds * 1000.0);
    const auto whole = static_cast<std::int64_t>(std::floor(milliseconds / 1000.0));
    const std::int64_t days =
        whole >= 0 ? whole / kSecondsPerDay : (whole - (kSecondsPerDay - 1)) / kSecondsPerDay;
    const std::int64_t secondOfDay = whole - days * kSecondsPerDay;
    const CivilDate civil = civilFromDays(days);

    char* out = characters_.data();
    const auto twoDigits = [&out](std::int64_t value) {
        const std::size_t at = static_cast<std::size_t>(value) * 2;
        *out++ = kTwoDigitPairs[at];
        *out++ = kTwoDigitPairs[at + 1];
    };
    twoDigits(civil.year / 100);
    twoDigits(civil.year % 100);
    *out++ = '-';
    twoDigits(civil.month);
    *out++ = '-';
    twoDigits(civil.day);
    *out++ = 'T';
    twoDigits(secondOfDay / 3600);
    *out++ = ':';
    twoDigits(secondOfDay / 60 % 60);
    *out++ = ':';
    twoDigits(secondOfDay % 60);
    *out = 'Z';
}

}  // namespace lumenote::portability
