#include "foundation/dates.hpp"

#include <gtest/gtest.h>

#include <cstdlib>

namespace lumenote {
namespace {

TEST(DateTest, ReferenceEpochIsTheFirstSecondOf2001) {
    EXPECT_EQ(formatIso8601(Date{0.0}), "2001-01-01T00:00:00Z");
    EXPECT_DOUBLE_EQ(Date{0.0}.millisecondsSince1970(), 978307200000.0);
    EXPECT_DOUBLE_EQ(Date::fromMillisecondsSince1970(978307200500.0).secondsSinceReferenceDate,
                     0.5);
}

TEST(DateTest, MillisecondsRoundToTheNearestMillisecond) {
    EXPECT_DOUBLE_EQ(Date{0.0004}.millisecondsSince1970(), 978307200000.0);
    EXPECT_DOUBLE_EQ(Date{0.0006}.millisecondsSince1970(), 978307200001.0);
    EXPECT_DOUBLE_EQ(Date{-0.25}.millisecondsSince1970(), 978307199750.0);
}

TEST(Iso8601Test, FormatsUtcOffsetsAndFractions) {
    const Date date = *parseIso8601("2026-11-16T08:00:00Z");
    EXPECT_EQ(formatIso8601(date), "2026-11-16T08:00:00Z");
    EXPECT_EQ(formatIso8601(date.addingSeconds(0.25), {.fractionalSeconds = true}),
              "2026-11-16T08:00:00.250Z");
    EXPECT_EQ(formatIso8601(date, {.utcOffsetSeconds = 3600}), "2026-11-16T09:00:00+01:00");
    EXPECT_EQ(formatIso8601(date, {.utcOffsetSeconds = -(9 * 3600 + 30 * 60)}),
              "2026-11-15T22:30:00-09:30");
    // 999.6 ms rounds up into the next second rather than printing ".1000".
    EXPECT_EQ(formatIso8601(date.addingSeconds(0.9996), {.fractionalSeconds = true}),
              "2026-11-16T08:00:01.000Z");
}

TEST(Iso8601Test, FormatsDatesBeforeTheReferenceEpochAnd1970) {
    EXPECT_EQ(formatIso8601(Date::fromUnixSeconds(-1.5), {.fractionalSeconds = true}),
              "1969-12-31T23:59:58.500Z");
}

TEST(Iso8601Test, ParsesEveryZoneDesignatorToTheSameInstant) {
    const Date expected = *parseIso8601("2026-11-16T08:00:00Z");
    for (const char* text :
         {"2026-11-16T09:00:00+01:00", "2026-11-16T09:00:00+0100", "2026-11-16T09:00:00+01",
          "2026-11-16T03:00:00-05:00", "2026-11-16T08:00:00", "2026-11-16T08:00:00.000Z",
          "2026-11-16t08:00:00z"}) {
        const auto parsed = parseIso8601(text);
        ASSERT_TRUE(parsed) << text;
        EXPECT_DOUBLE_EQ(parsed->secondsSinceReferenceDate, expected.secondsSinceReferenceDate)
            << text;
    }
}

TEST(Iso8601Test, KeepsFractionalSecondsOfAnyPrecision) {
    const Date base = *parseIso8601("2026-11-16T08:00:00Z");
    EXPECT_NEAR(parseIso8601("2026-11-16T08:00:00.5Z")->secondsSince(base), 0.5, 1e-9);
    EXPECT_NEAR(parseIso8601("2026-11-16T08:00:00.123456Z")->secondsSince(base), 0.123456, 1e-6);
}

TEST(Iso8601Test, RoundTripsThroughFormatting) {
    for (double seconds : {-1e9, -0.001, 0.0, 12345.678, 817000000.125, 3e9}) {
        const Date date{seconds};
        const auto parsed = parseIso8601(formatIso8601(date, {.fractionalSeconds = true}));
        ASSERT_TRUE(parsed) << seconds;
        EXPECT_NEAR(parsed->secondsSinceReferenceDate, seconds, 0.0005);
    }
}

TEST(Iso8601Test, RefusesMalformedAndOutOfRangeText) {
    for (const char* text :
         {"", "2026-11-16", "2026-13-01T00:00:00Z", "2026-02-30T00:00:00Z", "2026-11-16T24:00:00Z",
          "2026-11-16T08:60:00Z", "2026-11-16T08:00:60Z", "2026-11-16T08:00:00.Z",
          "2026-11-16T08:00:00+25:00", "2026-11-16T08:00:00Zjunk", "26-11-16T08:00:00Z",
          "2026-11-16T08:00:00 +01:00", "2026/11/16T08:00:00Z"}) {
        EXPECT_FALSE(parseIso8601(text)) << text;
    }
}

// The written form has a four-digit year in UTC: text whose instant falls
// outside it once the offset is applied and the fraction rounded to the
// millisecond is refused, since it could never be written back.
TEST(Iso8601Test, AcceptsOnlyInstantsWhoseWrittenFormHasFourDigitYears) {
    for (const char* text : {"0000-01-01T00:00:00+00:01", "0000-01-01T00:59:59.999+01:00",
                             "9999-12-31T23:59:59-00:01", "9999-12-31T23:59:59.9996Z"}) {
        EXPECT_FALSE(parseIso8601(text)) << text;
    }
    const struct {
        const char* text;
        const char* written;
    } kept[] = {
        {"0000-01-01T00:00:00Z", "0000-01-01T00:00:00.000Z"},
        {"0000-01-01T01:00:00+01:00", "0000-01-01T00:00:00.000Z"},
        {"9999-12-31T23:59:59.9994Z", "9999-12-31T23:59:59.999Z"},
        {"9999-12-31T22:59:59+01:00", "9999-12-31T21:59:59.000Z"},
    };
    for (const auto& c : kept) {
        const auto parsed = parseIso8601(c.text);
        ASSERT_TRUE(parsed) << c.text;
        EXPECT_EQ(formatIso8601(*parsed, {.fractionalSeconds = true}), c.written);
        EXPECT_TRUE(parseIso8601(c.written)) << c.written;
    }
}

TEST(Iso8601Test, AcceptsTheLeapDayOnlyInLeapYears) {
    EXPECT_TRUE(parseIso8601("2028-02-29T12:00:00Z"));
    EXPECT_FALSE(parseIso8601("2027-02-29T12:00:00Z"));
}

class LocalCalendarTest : public ::testing::Test {
  protected:
    LocalCalendar berlin = *LocalCalendar::named("Europe/Berlin");
};

TEST_F(LocalCalendarTest, UnknownZoneIsRefused) {
    EXPECT_FALSE(LocalCalendar::named("Mars/Olympus_Mons"));
}

TEST_F(LocalCalendarTest, DayStartsAtLocalMidnight) {
    const Date lateEvening = *parseIso8601("2026-11-16T23:30:00+01:00");
    EXPECT_EQ(berlin.formatIso8601(berlin.startOfDay(lateEvening)), "2026-11-16T00:00:00+01:00");
    EXPECT_EQ(berlin.dayKey(lateEvening), "2026-11-16");
    EXPECT_EQ(LocalCalendar::utc().dayKey(lateEvening), "2026-11-16");
    EXPECT_EQ(berlin.dayKey(*parseIso8601("2026-11-16T23:30:00Z")), "2026-11-17");
}

TEST_F(LocalCalendarTest, DaylightSavingDaysAreTwentyThreeAndTwentyFiveHoursLong) {
    const Date springForward = berlin.startOfDay(*parseIso8601("2026-03-29T12:00:00+02:00"));
    EXPECT_DOUBLE_EQ(berlin.addingDays(springForward, 1).secondsSince(springForward), 23 * 3600.0);
    const Date fallBack = berlin.startOfDay(*parseIso8601("2026-10-25T12:00:00+01:00"));
    EXPECT_DOUBLE_EQ(berlin.addingDays(fallBack, 1).secondsSince(fallBack), 25 * 3600.0);
}

TEST_F(LocalCalendarTest, AddingDaysKeepsTheWallTimeAcrossAChange) {
    const Date saturdayNine = *parseIso8601("2026-03-28T09:00:00+01:00");
    EXPECT_EQ(berlin.formatIso8601(berlin.addingDays(saturdayNine, 1)),
              "2026-03-29T09:00:00+02:00");
    EXPECT_EQ(berlin.formatIso8601(berlin.addingDays(saturdayNine, -7)),
              "2026-03-21T09:00:00+01:00");
}

TEST_F(LocalCalendarTest, WeekStartsOnTheChosenWeekday) {
    const Date wednesday = *parseIso8601("2026-11-18T15:00:00+01:00");
    EXPECT_EQ(berlin.weekday(wednesday), 3u);
    EXPECT_EQ(berlin.formatIso8601(berlin.startOfWeek(wednesday, 1)), "2026-11-16T00:00:00+01:00");
    EXPECT_EQ(berlin.formatIso8601(berlin.startOfWeek(wednesday, 0)), "2026-11-15T00:00:00+01:00");
    // A Monday is its own week's start.
    const Date monday = *parseIso8601("2026-11-16T00:00:00+01:00");
    EXPECT_EQ(berlin.startOfWeek(monday, 1), monday);
}

TEST_F(LocalCalendarTest, MidnightSkippedByAChangeStartsTheDayAtTheChange) {
    // Santiago moves clocks forward at midnight: 2026-09-06 has no 00:00.
    const auto santiago = LocalCalendar::named("America/Santiago");
    ASSERT_TRUE(santiago);
    const Date noon = *parseIso8601("2026-09-06T12:00:00-03:00");
    EXPECT_EQ(santiago->formatIso8601(santiago->startOfDay(noon)), "2026-09-06T01:00:00-03:00");
}

TEST_F(LocalCalendarTest, ADayKeyNamesTheFirstInstantOfThatLocalDay) {
    const auto santiago = LocalCalendar::named("America/Santiago");
    const auto kiritimati = LocalCalendar::named("Pacific/Kiritimati");
    ASSERT_TRUE(santiago && kiritimati);
    struct Case {
        const LocalCalendar& calendar;
        const char* day;
        const char* start;
    };
    const Case cases[] = {
        {berlin, "2026-11-16", "2026-11-16T00:00:00+01:00"},
        {berlin, "2026-03-29", "2026-03-29T00:00:00+01:00"},
        {berlin, "2028-02-29", "2028-02-29T00:00:00+01:00"},
        {*santiago, "2026-09-06", "2026-09-06T01:00:00-03:00"},
        {*kiritimati, "2026-11-16", "2026-11-16T00:00:00+14:00"},
    };
    for (const Case& c : cases) {
        const auto start = c.calendar.startOfDayKey(c.day);
        ASSERT_TRUE(start) << c.day;
        EXPECT_EQ(c.calendar.formatIso8601(*start), c.start) << c.day;
        EXPECT_EQ(c.calendar.dayKey(*start), c.day);
    }
}

TEST_F(LocalCalendarTest, AnythingButAWholeExistingDayKeyIsRefused) {
    for (const char* text : {"", "2026-02-30", "2027-02-29", "2026-13-01", "2026-00-10",
                             "2026-11-00", "2026-1-16", "26-11-16", "2026/11/16", "2026-11-16T",
                             " 2026-11-16", "-026-11-16", "2026-1a-16", "16.11.2026"}) {
        EXPECT_FALSE(berlin.startOfDayKey(text)) << text;
    }
}

TEST(LocalCalendarCurrentTest, FollowsTheTzVariable) {
    const char* previous = std::getenv("TZ");
    const std::string saved = previous ? previous : "";
    setenv("TZ", "Asia/Tokyo", 1);
    EXPECT_EQ(LocalCalendar::current().zoneName(), "Asia/Tokyo");
    setenv("TZ", "Not/A_Zone", 1);
    EXPECT_FALSE(LocalCalendar::current().zoneName().empty());
    if (previous) {
        setenv("TZ", saved.c_str(), 1);
    } else {
        unsetenv("TZ");
    }
}

}  // namespace
}  // namespace lumenote
