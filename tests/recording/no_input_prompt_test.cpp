#include "recording/no_input_prompt.hpp"

#include <gtest/gtest.h>

#include <limits>

#include "no_input_test_support.hpp"

namespace lumenote::recording {
namespace {

using namespace lumenote::testing;
using S = recording::ConfirmedStudyState;

recording::NoInputClassificationPrompt promptOf(Date start, double seconds) {
    return recording::NoInputClassificationPrompt{Uuid::generate(), Uuid::generate(), start,
                                                  start.addingSeconds(seconds), 120.0};
}

struct MinutesCase {
    double seconds;
    const char* expected;
};

class NoInputPromptMinutesTest : public ::testing::TestWithParam<MinutesCase> {};

TEST_P(NoInputPromptMinutesTest, AsksWhatTheUserWasDoing) {
    const auto prompt = promptOf(kSessionStart, GetParam().seconds);
    EXPECT_FALSE(recording::asksToEndSession(prompt));
    EXPECT_EQ(recording::noInputPromptText(prompt, LocalCalendar::utc()), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Boundaries, NoInputPromptMinutesTest,
    ::testing::Values(
        MinutesCase{20, "You had no computer input for 1 minute. What were you doing?"},
        MinutesCase{0, "You had no computer input for 1 minute. What were you doing?"},
        MinutesCase{-30, "You had no computer input for 1 minute. What were you doing?"},
        MinutesCase{std::numeric_limits<double>::quiet_NaN(),
                    "You had no computer input for 1 minute. What were you doing?"},
        MinutesCase{89, "You had no computer input for 1 minute. What were you doing?"},
        // 1.5 minutes rounds half away from zero.
        MinutesCase{90, "You had no computer input for 2 minutes. What were you doing?"},
        MinutesCase{150, "You had no computer input for 3 minutes. What were you doing?"},
        // 44:59 is still the minutes question, rounded up to 45.
        MinutesCase{2699, "You had no computer input for 45 minutes. What were you doing?"},
        MinutesCase{2699.999, "You had no computer input for 45 minutes. What were you doing?"}));

TEST(NoInputPromptTest, FromFortyFiveMinutesAsksToEndTheSessionAtItsLocalStart) {
    // 2026-11-16 13:05:42 UTC is 14:05 in Berlin (winter time).
    const Date start = *parseIso8601("2026-11-16T13:05:42Z");
    const auto berlin = *LocalCalendar::named("Europe/Berlin");
    for (double seconds : {2700.0, 7200.0, std::numeric_limits<double>::infinity()}) {
        const auto prompt = promptOf(start, seconds);
        EXPECT_TRUE(recording::asksToEndSession(prompt));
        EXPECT_EQ(recording::noInputPromptText(prompt, berlin),
                  "No meaningful activity was recorded after 14:05. End the session there?");
    }
}

TEST(NoInputPromptTest, ShortLocalTimeIsTwentyFourHourAndDropsSeconds) {
    const auto utc = LocalCalendar::utc();
    EXPECT_EQ(recording::shortLocalTime(*parseIso8601("2026-11-16T00:00:00Z"), utc), "00:00");
    EXPECT_EQ(recording::shortLocalTime(*parseIso8601("2026-11-16T09:07:59.999Z"), utc), "09:07");
    EXPECT_EQ(recording::shortLocalTime(*parseIso8601("2026-11-16T23:59:59Z"), utc), "23:59");
    // Summer time in Berlin: two hours ahead, across midnight.
    const auto berlin = *LocalCalendar::named("Europe/Berlin");
    EXPECT_EQ(recording::shortLocalTime(*parseIso8601("2026-07-01T22:30:00Z"), berlin), "00:30");
    // Before 1970: negative Unix seconds still give a time of day.
    EXPECT_EQ(recording::shortLocalTime(*parseIso8601("1969-12-31T23:15:30Z"), utc), "23:15");
}

TEST(NoInputPromptTest, ShortGapsSummaryIsPluralExceptForOne) {
    EXPECT_EQ(recording::shortUnconfirmedGapsSummary(0), "0 short unconfirmed gaps");
    EXPECT_EQ(recording::shortUnconfirmedGapsSummary(1), "1 short unconfirmed gap");
    EXPECT_EQ(recording::shortUnconfirmedGapsSummary(12), "12 short unconfirmed gaps");
}

TEST(ShortUnconfirmedGapsTest, CountsOnlyShortRunsWithoutAnyConfirmation) {
    // Prompt threshold 300 s, inactivity threshold 60 s: a run is short when
    // its recorded stretch is under 240 s.
    //   A  idle 0-100          short, unconfirmed             counted
    //   B  idle 200-439        239 s, unconfirmed             counted
    //   C  idle 500-740        240 s: reached the prompt      not counted
    //   D  idle 800-850        short, partly confirmed        not counted
    //   E  idle 900-950        short, superseded confirmation counted
    //   F  sleep 1000-1100     not a run without input
    auto partly = confirmationAt(840, 860, S::confirmedBreak);
    auto superseded = confirmationAt(900, 950, S::passiveStudy);
    superseded.supersededAt = at(9000);
    const auto session =
        sessionWith({idleAt(0, 100), focusedAt(100, 100), idleAt(200, 239), focusedAt(439, 61),
                     idleAt(500, 240), focusedAt(740, 60), idleAt(800, 50), focusedAt(850, 50),
                     idleAt(900, 50), asleepAt(1000, 100)},
                    1100, {partly, superseded});
    EXPECT_EQ(recording::countShortUnconfirmedGaps(session, 300, 60), 3u);
    // Measured without the lead-in, C is short too.
    EXPECT_EQ(recording::countShortUnconfirmedGaps(session, 300, 0), 4u);
    // A bad inactivity threshold is taken as no lead-in.
    EXPECT_EQ(recording::countShortUnconfirmedGaps(session, 300, -60), 4u);
    EXPECT_EQ(recording::countShortUnconfirmedGaps(session, 300,
                                                   std::numeric_limits<double>::quiet_NaN()),
              4u);
}

}  // namespace
}  // namespace lumenote::recording
