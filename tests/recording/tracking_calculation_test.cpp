#include "recording/tracking_calculation.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "foundation/numeric.hpp"

namespace lumenote::recording::TrackingCalculationService {
namespace {

using AS = AccountedState;
using V = TrackingCalculationVersion;

const Date kStart = Date::fromUnixSeconds(1'800'000'000.0);
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

Date at(double offset) {
    return kStart.addingSeconds(offset);
}

SessionAccountingSample sample(double from, double length,
                               classification::ActivityClassification classification,
                               std::string id = "com.example.editor") {
    return SessionAccountingSample{at(from),     at(from + length),
                                   length,       classification,
                                   false,        ActivitySourceType::application,
                                   std::move(id)};
}

SessionAccountingSample focused(double from, double length) {
    return sample(from, length, classification::ActivityClassification::focused);
}
SessionAccountingSample distracting(double from, double length) {
    return sample(from, length, classification::ActivityClassification::distracting,
                  "com.example.video");
}
SessionAccountingSample neutral(double from, double length) {
    return sample(from, length, classification::ActivityClassification::neutral,
                  "com.example.files");
}
SessionAccountingSample inactive(double from, double length) {
    auto s = sample(from, length, classification::ActivityClassification::focused);
    s.isInactive = true;
    return s;
}
SessionAccountingSample asleep(double from, double length) {
    auto s = sample(from, length, classification::ActivityClassification::ignored,
                    "com.apple.system.sleep");
    s.source = ActivitySourceType::system;
    return s;
}

ConfirmedStudyInterval confirmed(double from, double length, ConfirmedStudyState state) {
    return ConfirmedStudyInterval{Uuid::generate(), at(from), at(from + length), state,
                                  ConfirmedStudyStateSource::returnPrompt};
}

// The session ends after every sample, so only the accountable duration
// limits the totals.
TrackingCalculationResult calculate(const std::vector<SessionAccountingSample>& samples,
                                    V version = V::v2, double accountable = 1e6,
                                    const std::vector<ConfirmedStudyInterval>& confirmations = {}) {
    return calculateTotals(samples, confirmations, kStart, at(1e13), accountable, version);
}

// --- evidence and the score ---------------------------------------------------

struct ScoreCase {
    const char* name;
    double focusedSeconds;
    double distractedSeconds;
    std::optional<double> score;

    friend void PrintTo(const ScoreCase& c, std::ostream* os) { *os << c.name; }
};

class TrackingScoreEvidence : public ::testing::TestWithParam<std::tuple<ScoreCase, V>> {};

TEST_P(TrackingScoreEvidence, ScoreExistsFromOneMinuteOfFocusedPlusDistracted) {
    const auto& [c, version] = GetParam();
    std::vector<SessionAccountingSample> samples;
    if (c.focusedSeconds > 0) {
        samples.push_back(focused(0, c.focusedSeconds));
    }
    if (c.distractedSeconds > 0) {
        samples.push_back(distracting(c.focusedSeconds, c.distractedSeconds));
    }
    // Neutral time is not evidence: it must not lift 59 s over the line.
    samples.push_back(neutral(c.focusedSeconds + c.distractedSeconds, 600));
    const auto result = calculate(samples, version);
    EXPECT_EQ(result.focusScore, c.score) << c.name;
}

INSTANTIATE_TEST_SUITE_P(
    AllVersions, TrackingScoreEvidence,
    ::testing::Combine(::testing::Values(ScoreCase{"59 s focused", 59, 0, std::nullopt},
                                         ScoreCase{"60 s focused", 60, 0, 100.0},
                                         ScoreCase{"30 / 30", 30, 30, 50.0},
                                         ScoreCase{"just under a minute", 29.9995, 30,
                                                   std::nullopt},
                                         ScoreCase{"60 s distracted", 0, 60, 0.0},
                                         ScoreCase{"nothing", 0, 0, std::nullopt}),
                       ::testing::Values(V::v1, V::v2, V::v3)));

TEST(TrackingCalculation, ScoreIsKeptUnrounded) {
    const auto result = calculate({focused(0, 99), distracting(99, 101)});
    ASSERT_TRUE(result.focusScore);
    EXPECT_DOUBLE_EQ(*result.focusScore, 49.5);
}

// --- coverage -------------------------------------------------------------------

struct CoverageCase {
    const char* name;
    std::vector<SessionAccountingSample> samples;
    std::optional<double> coverage;
    bool low;

    friend void PrintTo(const CoverageCase& c, std::ostream* os) { *os << c.name; }
};

class TrackingCoverage : public ::testing::TestWithParam<CoverageCase> {};

TEST_P(TrackingCoverage, EvidenceShareOfAccountedTime) {
    const auto& c = GetParam();
    const auto result = calculate(c.samples);
    ASSERT_EQ(result.coverage.has_value(), c.coverage.has_value()) << c.name;
    if (c.coverage) {
        EXPECT_DOUBLE_EQ(*result.coverage, *c.coverage) << c.name;
    }
    EXPECT_EQ(result.isLowCoverage(), c.low) << c.name;
}

INSTANTIATE_TEST_SUITE_P(
    Cases, TrackingCoverage,
    ::testing::Values(
        CoverageCase{"exactly half is not low", {focused(0, 60), neutral(60, 60)}, 50.0, false},
        CoverageCase{
            "just under half is low", {focused(0, 60), neutral(60, 61)}, 6000.0 / 121, true},
        CoverageCase{
            "no input counts in the denominator", {focused(0, 60), inactive(60, 180)}, 25.0, true},
        CoverageCase{
            "unclassified counts in the denominator",
            {focused(0, 90), sample(90, 10, classification::ActivityClassification::unclassified)},
            90.0,
            false},
        CoverageCase{
            "ignored and system time are left out",
            {focused(0, 60), sample(60, 500, classification::ActivityClassification::ignored),
             asleep(560, 900)},
            100.0,
            false},
        CoverageCase{"nothing accounted", {asleep(0, 60)}, std::nullopt, false},
        CoverageCase{"under a second accounted", {focused(0, 0.5)}, std::nullopt, false}));

// --- v3 confirmed time ------------------------------------------------------------

TEST(TrackingCalculation, ConfirmedTimeChangesNeitherScoreNorCoverage) {
    const std::vector<SessionAccountingSample> samples{focused(0, 600), distracting(600, 200),
                                                       inactive(800, 1800), neutral(2600, 100)};
    const std::vector<ConfirmedStudyInterval> confirmations{
        confirmed(800, 1800, ConfirmedStudyState::passiveStudy)};
    const auto v2 = calculate(samples, V::v2, 1e6, confirmations);
    const auto v3 = calculate(samples, V::v3, 1e6, confirmations);
    EXPECT_EQ(v2.focusScore, v3.focusScore);
    EXPECT_EQ(v2.coverage, v3.coverage);
    EXPECT_DOUBLE_EQ(v3.inactiveDuration, v2.inactiveDuration);
    EXPECT_DOUBLE_EQ(v3.passiveStudyDuration, 1800);
    EXPECT_DOUBLE_EQ(v2.passiveStudyDuration, 0) << "v2 does not read confirmations";
}

struct ShareCase {
    const char* name;
    std::vector<ConfirmedStudyInterval> confirmations;
    double passive;
    double breakTime;
    double share;

    friend void PrintTo(const ShareCase& c, std::ostream* os) { *os << c.name; }
};

class TrackingStudyShare : public ::testing::TestWithParam<ShareCase> {};

TEST_P(TrackingStudyShare, PassiveShareOfConfirmedTime) {
    const auto& c = GetParam();
    const auto result = calculate({focused(0, 60)}, V::v3, 1e6, c.confirmations);
    // Sub-second lengths are differences of dates near 8e8 s: micro-second precise.
    EXPECT_NEAR(result.passiveStudyDuration, c.passive, 1e-6) << c.name;
    EXPECT_NEAR(result.confirmedBreakDuration, c.breakTime, 1e-6) << c.name;
    EXPECT_DOUBLE_EQ(result.studyShare, c.share) << c.name;
    EXPECT_EQ(result.focusScore, 100.0) << c.name;
}

INSTANTIATE_TEST_SUITE_P(
    Cases, TrackingStudyShare,
    ::testing::Values(
        ShareCase{"30 min study, 10 min break",
                  {confirmed(60, 1800, ConfirmedStudyState::passiveStudy),
                   confirmed(1860, 600, ConfirmedStudyState::confirmedBreak)},
                  1800,
                  600,
                  75},
        ShareCase{"under a second of confirmed time",
                  {confirmed(60, 0.4, ConfirmedStudyState::passiveStudy),
                   confirmed(61, 0.5, ConfirmedStudyState::confirmedBreak)},
                  0.4,
                  0.5,
                  0},
        ShareCase{
            "exactly one second", {confirmed(60, 1, ConfirmedStudyState::passiveStudy)}, 1, 0, 100},
        ShareCase{"backwards interval counts nothing",
                  {confirmed(60, -300, ConfirmedStudyState::passiveStudy),
                   confirmed(60, 100, ConfirmedStudyState::confirmedBreak)},
                  0,
                  100,
                  0},
        ShareCase{"a non-finite end counts nothing",
                  {ConfirmedStudyInterval{Uuid::generate(), at(0), Date{kInf},
                                          ConfirmedStudyState::passiveStudy,
                                          ConfirmedStudyStateSource::replayEdit},
                   confirmed(0, 300, ConfirmedStudyState::passiveStudy)},
                  300,
                  0,
                  100}));

// --- v2 reconciliation -----------------------------------------------------------

TEST(TrackingCalculation, OverlapsCountEachMomentOnce) {
    struct Case {
        const char* picture;
        std::vector<SessionAccountingSample> samples;
        double focused, distracted, neutral, inactive, system;
    };
    // clang-format off
    const std::vector<Case> cases{
        {"F |==========|            0-100\n"
         "D      |=========|       50-150   later start keeps 50-100",
         {focused(0, 100), distracting(50, 100)}, 50, 100, 0, 0, 0},
        {"F |====================|  0-100\n"
         "D      |====|            10-20    F resumes after D ends",
         {focused(0, 100), distracting(10, 10)}, 90, 10, 0, 0, 0},
        {"F |==========|            0-100   the same record twice\n"
         "F |==========|            0-100",
         {focused(0, 100), focused(0, 100)}, 100, 0, 0, 0, 0},
        {"F |==========|            0-100   equal starts: Distracting first\n"
         "D |=====|                 0-50",
         {focused(0, 100), distracting(0, 50)}, 50, 50, 0, 0, 0},
        {"I |==========|            0-100   equal starts: activity before no input\n"
         "N |==========|            0-100",
         {inactive(0, 100), neutral(0, 100)}, 0, 0, 100, 0, 0},
        {"S |==========|            0-100   asleep: nothing else counts\n"
         "F     |==========|       40-140",
         {asleep(0, 100), focused(40, 100)}, 40, 0, 0, 0, 100},
        {"F |==|   |==|             0-30, 60-90   a gap is nobody's time",
         {focused(0, 30), focused(60, 30)}, 60, 0, 0, 0, 0},
    };
    // clang-format on
    for (const auto& c : cases) {
        const auto result = calculate(c.samples, V::v2);
        EXPECT_DOUBLE_EQ(result.focusedDuration, c.focused) << c.picture;
        EXPECT_DOUBLE_EQ(result.distractedDuration, c.distracted) << c.picture;
        EXPECT_DOUBLE_EQ(result.neutralDuration, c.neutral) << c.picture;
        EXPECT_DOUBLE_EQ(result.inactiveDuration, c.inactive) << c.picture;
        EXPECT_DOUBLE_EQ(result.systemExcludedDuration, c.system) << c.picture;
    }
}

TEST(TrackingCalculation, ContributionsFollowTheReconciledTimeLine) {
    const auto result = calculate({focused(0, 100), distracting(10, 10)});
    ASSERT_EQ(result.contributions.size(), 3u);
    EXPECT_EQ(result.contributions[0].classification, AS::focused);
    EXPECT_EQ(result.contributions[0].endDate, at(10));
    EXPECT_EQ(result.contributions[1].stableIdentifier, "com.example.video");
    EXPECT_DOUBLE_EQ(result.contributions[1].duration, 10);
    EXPECT_EQ(result.contributions[2].startDate, at(20));
    EXPECT_EQ(result.contributions[2].endDate, at(100));
}

TEST(TrackingCalculation, UncutStretchesKeepTheirMeasuredLengthExactly) {
    // Dates near 8e8 s hold only ~1e-7 s; a stretch that loses no time must
    // not come back rounded through them.
    const auto result = calculate({focused(0.3, 12.3456789), distracting(12.6456789, 47.6543211)});
    ASSERT_EQ(result.contributions.size(), 2u);
    EXPECT_EQ(result.contributions[0].duration, 12.3456789);
    EXPECT_EQ(result.contributions[1].duration, 47.6543211);
    EXPECT_EQ(result.focusedDuration, 12.3456789);
    EXPECT_EQ(result.evidenceDuration(), 12.3456789 + 47.6543211);
}

// --- the accountable duration ------------------------------------------------------

TEST(TrackingCalculation, OverlappingSamplesNeverExceedTheAccountableDuration) {
    // Three records of the same hour, each counted once, then limited to the
    // 40 minutes the timer counted (the rest was paused).
    const auto result =
        calculate({focused(0, 3600), focused(0, 3600), focused(600, 3000)}, V::v2, 2400);
    EXPECT_DOUBLE_EQ(result.focusedDuration, 2400);
    EXPECT_LE(result.classTotalDuration(), 2400);
}

TEST(TrackingCalculation, ExcessIsCutFromNonEvidenceFirstThenEvidenceProportionally) {
    // 300 F + 100 D + 50 N + 40 U + 30 I + 20 ignored = 540
    const std::vector<SessionAccountingSample> samples{
        focused(0, 300),   distracting(300, 100),
        neutral(400, 50),  sample(450, 40, classification::ActivityClassification::unclassified),
        inactive(490, 30), sample(520, 20, classification::ActivityClassification::ignored)};
    struct Step {
        double limit;
        double f, d, n, u, i, ign;
    };
    for (const Step& s : {Step{540, 300, 100, 50, 40, 30, 20}, Step{530, 300, 100, 50, 40, 30, 10},
                          Step{500, 300, 100, 50, 40, 10, 0}, Step{450, 300, 100, 50, 0, 0, 0},
                          Step{420, 300, 100, 20, 0, 0, 0}, Step{200, 150, 50, 0, 0, 0, 0},
                          Step{0, 0, 0, 0, 0, 0, 0}}) {
        const auto r = calculate(samples, V::v2, s.limit);
        EXPECT_DOUBLE_EQ(r.focusedDuration, s.f) << s.limit;
        EXPECT_DOUBLE_EQ(r.distractedDuration, s.d) << s.limit;
        EXPECT_DOUBLE_EQ(r.neutralDuration, s.n) << s.limit;
        EXPECT_DOUBLE_EQ(r.unclassifiedDuration, s.u) << s.limit;
        EXPECT_DOUBLE_EQ(r.inactiveDuration, s.i) << s.limit;
        EXPECT_DOUBLE_EQ(r.ignoredDuration, s.ign) << s.limit;
        if (s.limit >= 60) {
            ASSERT_TRUE(r.focusScore) << s.limit;
            EXPECT_DOUBLE_EQ(*r.focusScore, 75) << "cutting evidence keeps the score";
        }
        double contributed = 0;
        for (const auto& c : r.contributions) {
            contributed += c.duration;
        }
        EXPECT_NEAR(contributed, s.limit, 1e-9) << "contributions follow the cut totals";
    }
}

TEST(TrackingCalculation, SystemTimeIsNotLimitedByTheTimer) {
    // A long sleep rolled back out of the timer still shows as excluded time.
    const auto result = calculate({focused(0, 600), asleep(600, 3600)}, V::v2, 600);
    EXPECT_DOUBLE_EQ(result.focusedDuration, 600);
    EXPECT_DOUBLE_EQ(result.systemExcludedDuration, 3600);
}

TEST(TrackingCalculation, TimeAfterTheSessionEndIsCutFirstLatestFirst) {
    // A session ended where a long run without input began, at 500 with a
    // timer of 500; what was recorded after that end stays in the samples.
    //   F |====================|        0-590 (input stopped at 500)
    //   I                      |=====|  590-3300
    //   D                            |=| 3300-3310
    const std::vector<SessionAccountingSample> samples{focused(0, 590), inactive(590, 2710),
                                                       distracting(3300, 10)};
    for (V version : {V::v2, V::v3}) {
        const auto r = calculateTotals(samples, {}, kStart, at(500), 500, version);
        EXPECT_DOUBLE_EQ(r.focusedDuration, 500);
        EXPECT_DOUBLE_EQ(r.inactiveDuration, 0);
        EXPECT_DOUBLE_EQ(r.distractedDuration, 0);
        ASSERT_TRUE(r.focusScore);
        EXPECT_DOUBLE_EQ(*r.focusScore, 100) << "activity after the end never scores";
        ASSERT_EQ(r.contributions.size(), 1u) << "pieces cut to nothing are dropped";
        EXPECT_EQ(r.contributions[0].endDate, at(500));
        EXPECT_DOUBLE_EQ(r.contributions[0].duration, 500);
    }
    // Only the excess goes: with a timer of 3000 the latest 310 s are cut,
    // from the Distracting stretch and then the no-input one.
    const auto partly = calculateTotals(samples, {}, kStart, at(500), 3000, V::v2);
    EXPECT_DOUBLE_EQ(partly.distractedDuration, 0);
    EXPECT_DOUBLE_EQ(partly.inactiveDuration, 2410);
    EXPECT_DOUBLE_EQ(partly.focusedDuration, 590);
    // Within the timer, time after the end date is not touched (a wall clock
    // set back during the session puts stretches after its end date).
    const auto within = calculateTotals(samples, {}, kStart, at(500), 3310, V::v2);
    EXPECT_DOUBLE_EQ(within.classTotalDuration(), 3310);
}

// --- clock jumps -----------------------------------------------------------------

TEST(TrackingCalculation, MeasuredDurationWinsOverWallClockDates) {
    // The wall clock jumped back an hour during the first stretch: its end
    // date lies before its start, but it lasted 600 s on the monotonic clock.
    SessionAccountingSample jumpedBack = focused(0, 600);
    jumpedBack.endDate = at(600 - 3600);
    // The wall clock jumped forward an hour during the second stretch.
    SessionAccountingSample jumpedForward = distracting(600, 300);
    jumpedForward.endDate = at(600 + 300 + 3600);
    for (V version : {V::v1, V::v2, V::v3}) {
        const auto result = calculate({jumpedBack, jumpedForward}, version, 900);
        EXPECT_DOUBLE_EQ(result.focusedDuration, 600);
        EXPECT_DOUBLE_EQ(result.distractedDuration, 300);
    }
}

TEST(TrackingCalculation, StretchesPlacedEarlierByABackwardJumpCountOnce) {
    // After a backward jump of 300 s the next stretch's dates fall over the
    // previous one:  F |======|          0-600
    //                D     |======|    300-900 (really 600-1200)
    const auto result = calculate({focused(0, 600), distracting(300, 600)}, V::v2, 1200);
    EXPECT_DOUBLE_EQ(result.focusedDuration, 300);
    EXPECT_DOUBLE_EQ(result.distractedDuration, 600);
    EXPECT_LE(result.classTotalDuration(), 1200);
}

// --- bad numbers -------------------------------------------------------------------

TEST(TrackingCalculation, NonFiniteAndOutOfRangeInputsCountZeroOrClamp) {
    SessionAccountingSample nanDuration = focused(0, 100);
    nanDuration.duration = kNaN;
    SessionAccountingSample infDuration = focused(100, 100);
    infDuration.duration = kInf;
    SessionAccountingSample negative = focused(200, 100);
    negative.duration = -50;
    SessionAccountingSample nanStart = focused(300, 100);
    nanStart.startDate = Date{kNaN};
    const std::vector<SessionAccountingSample> samples{nanDuration, infDuration, negative, nanStart,
                                                       distracting(400, 120)};
    for (V version : {V::v2, V::v3}) {
        const auto result = calculate(samples, version);
        EXPECT_DOUBLE_EQ(result.focusedDuration, 0);
        EXPECT_DOUBLE_EQ(result.distractedDuration, 120);
        EXPECT_EQ(result.focusScore, 0.0);
    }
    const auto v1 = calculate(samples, V::v1);
    EXPECT_DOUBLE_EQ(v1.focusedDuration, 100)
        << "v1 counts the measured 100 s of the stretch it cannot place";
    EXPECT_DOUBLE_EQ(v1.distractedDuration, 120);
}

TEST(TrackingCalculation, HugeDurationsAreClampedToOneHundredYears) {
    const auto result = calculate({focused(0, 1e12), focused(1e12, 1e12)}, V::v1);
    EXPECT_DOUBLE_EQ(result.focusedDuration, kMaximumDurationSeconds);
    const auto v2 = calculate({focused(0, 1e12)}, V::v2, 1e12);
    EXPECT_DOUBLE_EQ(v2.focusedDuration, kMaximumDurationSeconds);
}

TEST(TrackingCalculation, NonFiniteAccountableDurationFallsBackToTheSessionSpan) {
    const std::vector<SessionAccountingSample> samples{focused(0, 500), focused(500, 500)};
    const auto spanned = calculateTotals(samples, {}, kStart, at(700), kNaN, V::v2);
    EXPECT_DOUBLE_EQ(spanned.focusedDuration, 700);
    const auto nothing = calculateTotals(samples, {}, kStart, Date{kInf}, kInf, V::v2);
    EXPECT_DOUBLE_EQ(nothing.focusedDuration, 0);
    EXPECT_FALSE(nothing.focusScore);
}

TEST(TrackingCalculation, OverlappingConfirmationsCountTheirUnionOnce) {
    //   passive A   100 |==============| 400
    //   passive B        150 |=========| 400
    //   passive C                          450 |==| 500
    const auto passive = ConfirmedStudyState::passiveStudy;
    const auto result = calculate({}, V::v3, 1e6,
                                  {confirmed(100, 300, passive), confirmed(150, 250, passive),
                                   confirmed(450, 50, passive), confirmed(120, 10, passive)});
    EXPECT_DOUBLE_EQ(result.passiveStudyDuration, 350);
    EXPECT_DOUBLE_EQ(result.confirmedBreakDuration, 0);
}

TEST(TrackingCalculation, TheNewestOfOverlappingConfirmationsHoldsTheSharedTime) {
    //   passive (older) 0 |==========| 600
    //   break   (newer)      200 |========| 800
    const auto older = confirmed(0, 600, ConfirmedStudyState::passiveStudy);
    const auto newer = confirmed(200, 600, ConfirmedStudyState::confirmedBreak);
    const auto result = calculate({}, V::v3, 1e6, {older, newer});
    EXPECT_DOUBLE_EQ(result.passiveStudyDuration, 200);
    EXPECT_DOUBLE_EQ(result.confirmedBreakDuration, 600);
    const auto reversed = calculate({}, V::v3, 1e6, {newer, older});
    EXPECT_DOUBLE_EQ(reversed.passiveStudyDuration, 600);
    EXPECT_DOUBLE_EQ(reversed.confirmedBreakDuration, 200);
    EXPECT_DOUBLE_EQ(result.studyShare, 25);
}

// --- v1 ------------------------------------------------------------------------------

TEST(TrackingCalculation, VersionOneSumsSamplesAsRecorded) {
    const std::vector<SessionAccountingSample> samples{focused(0, 100), focused(50, 100),
                                                       asleep(150, 40)};
    const auto result =
        calculate(samples, V::v1, 60, {confirmed(0, 60, ConfirmedStudyState::passiveStudy)});
    EXPECT_DOUBLE_EQ(result.focusedDuration, 200) << "no reconciliation, no limit";
    EXPECT_DOUBLE_EQ(result.systemExcludedDuration, 40);
    EXPECT_DOUBLE_EQ(result.passiveStudyDuration, 0);
    EXPECT_EQ(result.contributions.size(), 3u);
}

// --- records ---------------------------------------------------------------------------

TEST(TrackingCalculation, StableIdentifierFollowsTheSource) {
    const Uuid pdf = *Uuid::parse("e621e1f8-c36c-495a-93fc-0c247a3e6e5f");
    ActivitySegment segment(Uuid::generate(), at(0), at(10), 10, "Browser", "org.example.browser",
                            classification::ActivityClassification::focused, false);
    segment.hostname = "docs.example.org";
    segment.pdfIdentifier = pdf;

    segment.setActivitySource(ActivitySourceType::website);
    EXPECT_EQ(makeAccountingSample(segment).stableIdentifier, "docs.example.org");
    segment.setActivitySource(ActivitySourceType::localPDF);
    EXPECT_EQ(makeAccountingSample(segment).stableIdentifier,
              "E621E1F8-C36C-495A-93FC-0C247A3E6E5F");
    segment.setActivitySource(ActivitySourceType::browserFallback);
    EXPECT_EQ(makeAccountingSample(segment).stableIdentifier, "org.example.browser");
    segment.activitySourceRawValue = "fromALaterRelease";
    EXPECT_EQ(makeAccountingSample(segment).source, ActivitySourceType::application);
    segment.setActivitySource(ActivitySourceType::website);
    segment.hostname.reset();
    EXPECT_EQ(makeAccountingSample(segment).stableIdentifier, "org.example.browser");
}

StudySession sessionWithActivity() {
    StudySession session(Uuid::generate(), "Chemistry", "", 3600, kStart);
    session.timerDuration = 900;
    session.segments.emplace_back(Uuid::generate(), at(0), at(600), 600, "Editor", "com.ed",
                                  classification::ActivityClassification::focused, false);
    session.segments.emplace_back(Uuid::generate(), at(600), at(900), 300, "Video", "com.video",
                                  classification::ActivityClassification::distracting, false);
    ConfirmedNoInputInterval old(Uuid::generate(), at(900), at(1500),
                                 ConfirmedStudyState::passiveStudy,
                                 ConfirmedStudyStateSource::returnPrompt, at(1600));
    old.supersededAt = at(1700);
    session.confirmedNoInputIntervals.push_back(old);
    session.confirmedNoInputIntervals.emplace_back(Uuid::generate(), at(900), at(1500),
                                                   ConfirmedStudyState::confirmedBreak,
                                                   ConfirmedStudyStateSource::replayEdit, at(1700));
    return session;
}

TEST(TrackingCalculation, SessionTotalsCountOnlyConfirmationsInForceAndApplyBack) {
    StudySession session = sessionWithActivity();
    const auto result = calculateSessionTotals(session, at(2000), V::v3);
    EXPECT_DOUBLE_EQ(result.passiveStudyDuration, 0);
    EXPECT_DOUBLE_EQ(result.confirmedBreakDuration, 600);

    applyTotals(result, session);
    EXPECT_DOUBLE_EQ(session.focusedDuration, 600);
    EXPECT_DOUBLE_EQ(session.distractedDuration, 300);
    EXPECT_EQ(session.unclassifiedDurationStorage, 0.0);
    EXPECT_EQ(session.ignoredDurationStorage, 0.0);
    EXPECT_EQ(session.systemExcludedDurationStorage, 0.0);
    EXPECT_EQ(session.passiveStudyDurationStorage, 0.0);
    EXPECT_EQ(session.confirmedBreakDurationStorage, 600.0);
    ASSERT_TRUE(session.focusScore);
    EXPECT_DOUBLE_EQ(*session.focusScore, 200.0 / 3);
    EXPECT_EQ(session.calculationVersion(), V::v3);
    EXPECT_EQ(effectiveCalculationVersion(session), V::v3);
}

TEST(TrackingCalculation, ApplyingAnOlderVersionClearsConfirmedTimeAndAbsentScore) {
    StudySession session = sessionWithActivity();
    session.segments.resize(1);
    session.segments[0].duration = 30;
    applyTotals(calculateSessionTotals(session, at(2000), V::v3), session);
    ASSERT_TRUE(session.confirmedBreakDurationStorage);

    applyTotals(calculateSessionTotals(session, at(2000), V::v2), session);
    EXPECT_FALSE(session.passiveStudyDurationStorage);
    EXPECT_FALSE(session.confirmedBreakDurationStorage);
    EXPECT_FALSE(session.focusScore) << "30 s of evidence stores no score";
    EXPECT_EQ(session.calculationVersionStorage, 2);
}

TEST(TrackingCalculation, UnversionedSessionsAreReadAsVersionOne) {
    StudySession session = sessionWithActivity();
    EXPECT_EQ(effectiveCalculationVersion(session), V::v1);
    session.calculationVersionStorage = 9;
    EXPECT_EQ(effectiveCalculationVersion(session), V::v1);
}

TEST(TrackingCalculation, SessionConfirmationsAreReadOldestFirst) {
    StudySession session = sessionWithActivity();
    // Stored newest first: the older passive answer must still lose the overlap.
    session.confirmedNoInputIntervals.insert(
        session.confirmedNoInputIntervals.begin(),
        ConfirmedNoInputInterval(Uuid::generate(), at(1000), at(1200),
                                 ConfirmedStudyState::passiveStudy,
                                 ConfirmedStudyStateSource::sessionControl, at(1000)));
    std::swap(session.confirmedNoInputIntervals[0], session.confirmedNoInputIntervals[2]);
    const auto result = calculateSessionTotals(session, at(2000), V::v3);
    EXPECT_DOUBLE_EQ(result.passiveStudyDuration, 0);
    EXPECT_DOUBLE_EQ(result.confirmedBreakDuration, 600);
}

}  // namespace
}  // namespace lumenote::recording::TrackingCalculationService
