// Dates: absolute points in time stored as seconds since 2001-01-01T00:00:00Z,
// their ISO 8601 text forms and the local-calendar helpers built on them.
#pragma once

#include <chrono>
#include <compare>
#include <optional>
#include <string>
#include <string_view>

namespace date {
class time_zone;
}

namespace lumenote {
inline namespace foundation {

// Seconds between 1970-01-01 and the reference epoch 2001-01-01 (UTC).
inline constexpr double kReferenceEpochUnixSeconds = 978307200.0;

// An absolute point in time: 64-bit floating seconds since the reference
// epoch, the stored form of every date of the system.
struct Date {
    double secondsSinceReferenceDate = 0.0;

    static Date fromUnixSeconds(double unixSeconds) {
        return Date{unixSeconds - kReferenceEpochUnixSeconds};
    }
    static Date fromMillisecondsSince1970(double milliseconds) {
        return fromUnixSeconds(milliseconds / 1000.0);
    }
    static Date fromSystemClock(std::chrono::system_clock::time_point point);

    double unixSeconds() const { return secondsSinceReferenceDate + kReferenceEpochUnixSeconds; }
    // Milliseconds since 1970, rounded to the nearest millisecond (the form of
    // dates in checkpoints and browser events).
    double millisecondsSince1970() const;

    Date addingSeconds(double seconds) const { return Date{secondsSinceReferenceDate + seconds}; }
    // Seconds from `earlier` to this date (negative when this is earlier).
    double secondsSince(Date earlier) const {
        return secondsSinceReferenceDate - earlier.secondsSinceReferenceDate;
    }

    friend auto operator<=>(const Date&, const Date&) = default;
};

// The system clock's date now. Only the edges of a program (its main, a
// command's handler) read it: everything below them is given its time.
Date systemNow();

struct Iso8601Options {
    bool fractionalSeconds = false;  // ".SSS" milliseconds
    // Offset east of UTC in seconds; nullopt writes "Z".
    std::optional<int> utcOffsetSeconds;
};

// "2026-11-16T08:00:00Z", "2026-11-16T08:00:00.250Z" or "2026-11-16T09:00:00+01:00".
// Fractions are rounded to the nearest millisecond.
std::string formatIso8601(Date date, Iso8601Options options = {});

// Parses "YYYY-MM-DDTHH:MM:SS" with optional fractional seconds (any number of
// digits) and a zone designator "Z", "+HH:MM", "+HHMM" or "+HH" (or "-").
// Without a designator the text is read as UTC. Returns nullopt for anything
// else, including out-of-range fields (month 13, minute 60) and instants that
// formatIso8601 could not write back: outside the years 0000 to 9999 in UTC
// once rounded to the millisecond ("9999-12-31T23:59:59-01:00").
std::optional<Date> parseIso8601(std::string_view text);

// The calendar of one time zone: local days and weeks, which may be 23 or 25
// hours long across a daylight-saving change.
class LocalCalendar {
  public:
    // The machine's zone (TZ, else /etc/localtime), UTC when none can be read.
    static LocalCalendar current();
    // A named IANA zone ("Europe/Berlin"); nullopt when unknown.
    static std::optional<LocalCalendar> named(std::string_view zoneName);
    static LocalCalendar utc();

    std::string zoneName() const;
    // Offset of local time from UTC at `date`, in seconds.
    int utcOffsetSeconds(Date date) const;
    // The first instant of the local day containing `date`.
    Date startOfDay(Date date) const;
    // The first instant of the local day written "YYYY-MM-DD" (as dayKey()
    // writes it); nullopt for any other text or a day the calendar lacks
    // ("2026-02-30").
    std::optional<Date> startOfDayKey(std::string_view dayKey) const;
    // The same local wall time `days` days later (or earlier), so that adding
    // one day across a daylight-saving change keeps the time of day.
    Date addingDays(Date date, int days) const;
    // The first instant of the week containing `date`; `firstWeekday` 0 is
    // Sunday, 1 Monday ... 6 Saturday.
    Date startOfWeek(Date date, unsigned firstWeekday) const;
    // Local "YYYY-MM-DD" of the day containing `date`.
    std::string dayKey(Date date) const;
    // Local weekday of `date`, 0 Sunday ... 6 Saturday.
    unsigned weekday(Date date) const;
    // ISO 8601 with the local offset, e.g. "2026-11-16T09:00:00+01:00".
    std::string formatIso8601(Date date, bool fractionalSeconds = false) const;
    // Local "2026-11-25 10:04:12", as reports and checks show a moment.
    std::string formatDateTime(Date date) const;

  private:
    explicit LocalCalendar(const date::time_zone* zone) : zone_(zone) {}
    const date::time_zone* zone_;  // owned by the date library's database
};

}  // namespace foundation
}  // namespace lumenote
