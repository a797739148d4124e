#include "portability/export_values.hpp"

#include <cmath>
#include <cstdio>
#include <limits>
#include <random>

#include <gtest/gtest.h>

#include "export_test_support.hpp"

namespace lumenote::portability {
namespace {

using testing::writtenBy;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(ValidUtf8Test, WellFormedTextIsKeptAndEachIllFormedPartBecomesOneReplacement) {
    const std::string fffd = "\xEF\xBF\xBD";
    // The expectations are what Python's bytes.decode("utf-8", "replace")
    // gives: one U+FFFD per maximal ill-formed subpart.
    const struct {
        const char* name;
        std::string bytes;
        std::string expected;
    } cases[] = {
        {"empty", "", ""},
        {"ASCII with controls", std::string("a\0b\x7F", 4), std::string("a\0b\x7F", 4)},
        {"two, three and four bytes", "\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80",
         "\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80"},
        {"highest code point", "\xF4\x8F\xBF\xBF", "\xF4\x8F\xBF\xBF"},
        {"stray continuation byte", "a\x80z", "a" + fffd + "z"},
        {"lead byte at the end", "ab\xC3", "ab" + fffd},
        {"truncated three-byte sequence is one part", "\xE2\x82z", fffd + "z"},
        {"truncated four-byte sequence is one part", "\xF0\x9F\x98", fffd},
        {"overlong two-byte form", "\xC0\xAF", fffd + fffd},
        {"overlong three-byte form", "\xE0\x80\xAF", fffd + fffd + fffd},
        {"surrogate", "\xED\xA0\x80", fffd + fffd + fffd},
        {"above U+10FFFF", "\xF4\x90\x80\x80", fffd + fffd + fffd + fffd},
        {"bytes that never occur", "\xFE\xFF", fffd + fffd},
        {"valid text after a repair is kept", "\xFF\xC3\xA9", fffd + "\xC3\xA9"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        std::string scratch;
        EXPECT_EQ(std::string(validUtf8(c.bytes, scratch)), c.expected);
    }
}

TEST(SecondsRuleTest, ThreeDecimalsAsPrintfWritesThemAfterRaisingBadValuesToZero) {
    const struct {
        double value;
        const char* expected;
    } cases[] = {
        {1500.0, "1500.000"}, {0.0, "0.000"},
        {-0.0, "0.000"},      {-5.0, "0.000"},
        {-0.0004, "0.000"},   {kNaN, "0.000"},
        {kInfinity, "0.000"}, {-kInfinity, "0.000"},
        {0.0005, "0.001"},    {0.0004999, "0.000"},
        {2.675, "2.675"},     {1.0005, "1.000"},
        {59.9995, "59.999"},  {3155760000.0, "3155760000.000"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.value);
        EXPECT_EQ(writtenBy([&](ExportOutput& out) { appendFixedThreeDecimals(out, c.value); }),
                  c.expected);
    }
    // Any finite non-negative value reads as "%.3f" writes it, huge ones too.
    std::mt19937_64 random(7);
    std::uniform_real_distribution<double> exponent(-12.0, 300.0);
    for (int i = 0; i < 2000; ++i) {
        const double value = std::pow(10.0, exponent(random)) * 1.2345678901234;
        char expected[512];
        std::snprintf(expected, sizeof expected, "%.3f", value);
        ASSERT_EQ(writtenBy([&](ExportOutput& out) { appendFixedThreeDecimals(out, value); }),
                  expected);
    }
}

TEST(ShortestDoubleTest, ReadsBackAsTheSameDouble) {
    for (const double value : {0.0, 1500.0, 0.1, 83.33333333333333, 1e300, 5e-324, 3155760000.0}) {
        const std::string text =
            writtenBy([&](ExportOutput& out) { appendShortestDouble(out, value); });
        EXPECT_EQ(std::strtod(text.c_str(), nullptr), value) << text;
    }
    EXPECT_EQ(writtenBy([](ExportOutput& out) { appendShortestDouble(out, 1500.0); }), "1500");
}

TEST(ExportTimestampTest, WritesWhatTheSystemsIsoFormatterWrites) {
    std::vector<Date> dates{
        Date{0.0},
        Date::fromUnixSeconds(0.0),
        Date::fromUnixSeconds(-1.5),             // before 1970, with a fraction
        Date::fromUnixSeconds(-0.0004),          // rounds to 1970 exactly
        Date::fromUnixSeconds(1793491199.9996),  // rounds into the next second
        Date::fromUnixSeconds(1793491199.9994),  // stays in its second
        Date::fromUnixSeconds(951782400.0),      // 2000-02-29, a leap day
        Date::fromUnixSeconds(4107542399.0),     // 2100-02-28T23:59:59Z, no leap day after
        Date::fromUnixSeconds(-62167219200.0),   // 0000-01-01T00:00:00Z
        Date::fromUnixSeconds(253402300799.0),   // 9999-12-31T23:59:59Z
    };
    std::mt19937_64 random(11);
    std::uniform_real_distribution<double> seconds(-62167219200.0, 253402300799.0);
    for (int i = 0; i < 20000; ++i) {
        dates.push_back(Date::fromUnixSeconds(seconds(random)));
    }
    for (const Date date : dates) {
        ASSERT_EQ(std::string(ExportTimestamp(date).text()), formatIso8601(date))
            << date.secondsSinceReferenceDate;
    }
}

TEST(ExportTimestampTest, DatesNoFormatterCanWriteBecomeTheNearestWritableOne) {
    const struct {
        const char* name;
        double unixSeconds;
        const char* expected;
    } cases[] = {
        {"year 10000", 253402300800.0, "9999-12-31T23:59:59Z"},
        {"infinitely late", kInfinity, "9999-12-31T23:59:59Z"},
        {"before year 0", -62167219201.0, "0000-01-01T00:00:00Z"},
        {"infinitely early", -kInfinity, "0000-01-01T00:00:00Z"},
        {"not a number", kNaN, "2001-01-01T00:00:00Z"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(ExportTimestamp(Date::fromUnixSeconds(c.unixSeconds)).text(), c.expected);
    }
}

TEST(ExportOutputTest, HandsOnBlocksInOrderAndKeepsTheFirstFailure) {
    testing::StringSink sink;
    {
        ExportOutput output(sink);
        const std::string piece(1000, 'x');
        for (int i = 0; i < 3000; ++i) {
            output.append(piece);
            output.append(static_cast<char>('a' + i % 26));
        }
        EXPECT_GE(sink.writes, 2u);  // blocks went out before the end
        ASSERT_TRUE(output.flush().ok());
    }
    ASSERT_EQ(sink.text.size(), 3000u * 1001u);
    EXPECT_EQ(sink.text.substr(1000, 1), "a");
    EXPECT_EQ(sink.text.substr(3000 * 1001 - 1), std::string(1, 'a' + 2999 % 26));

    testing::StringSink failing(2);
    ExportOutput output(failing);
    for (int i = 0; i < 3000 && output.ok(); ++i) {
        output.append(std::string(1000, 'y'));
    }
    EXPECT_FALSE(output.ok());
    const auto flushed = output.flush();
    ASSERT_FALSE(flushed.ok());
    EXPECT_EQ(flushed.error().message(),
              "Lumenote could not write the export (No space left on device).");
    EXPECT_EQ(failing.writes, 2u);  // nothing more was tried after the failure
}

}  // namespace
}  // namespace lumenote::portability
