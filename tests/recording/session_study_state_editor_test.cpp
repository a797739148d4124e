#include "recording/session_study_state_editor.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <ostream>

#include "no_input_test_support.hpp"
#include "recording/no_input_periods.hpp"
#include "recording/tracking_calculation.hpp"

namespace lumenote::recording {
namespace {

using namespace lumenote::testing;
using namespace lumenote::recording::SessionStudyStateEditor;
using Error = recording::SessionStudyStateEditError;
using S = recording::ConfirmedStudyState;
using Source = recording::ConfirmedStudyStateSource;

const Date kNow = at(50'000);

//  focused |======|        distracting |===|          focused |======|
//  idle           |=========|               |=====|
//          0     600       900         1100  1300   1500    2000
recording::StudySession typicalSession(
    std::vector<recording::ConfirmedNoInputInterval> confirmations = {}) {
    return sessionWith({focusedAt(0, 600), idleAt(600, 300), distractingAt(900, 200),
                        idleAt(1100, 200), idleAt(1300, 200), focusedAt(1500, 500)},
                       2000, std::move(confirmations));
}

std::vector<const recording::ConfirmedNoInputInterval*> currentAt(
    const recording::StudySession& session, double offset) {
    std::vector<const recording::ConfirmedNoInputInterval*> covering;
    for (const auto& interval : session.confirmedNoInputIntervals) {
        if (interval.isInForce() && interval.startDate <= at(offset) &&
            interval.endDate > at(offset)) {
            covering.push_back(&interval);
        }
    }
    return covering;
}

std::size_t supersededCount(const recording::StudySession& session) {
    return static_cast<std::size_t>(std::count_if(
        session.confirmedNoInputIntervals.begin(), session.confirmedNoInputIntervals.end(),
        [](const auto& interval) { return !interval.isInForce(); }));
}

recording::StudyStateEditOutcome relabel(const recording::StudySession& session, double from,
                                         double to, std::optional<S> state, Date now = kNow,
                                         Source source = Source::replayEdit) {
    auto result = applyEdit(session, at(from), at(to), state, source, now);
    EXPECT_TRUE(result.ok());
    return std::move(result).value();
}

struct RefusalCase {
    const char* name;
    std::optional<recording::StudySession> session;
    double from;
    double to;
    Error expected;
    const char* message;
};

void PrintTo(const RefusalCase& testCase, std::ostream* out) {
    *out << testCase.name;
}

class StudyStateEditRefusalTest : public ::testing::TestWithParam<RefusalCase> {};

TEST_P(StudyStateEditRefusalTest, RefusesWithItsMessage) {
    const auto& param = GetParam();
    const auto result = applyEdit(param.session, at(param.from), at(param.to), S::passiveStudy,
                                  Source::replayEdit, kNow);
    ASSERT_FALSE(result.ok());
    EXPECT_EQ(result.error(), param.expected);
    EXPECT_EQ(recording::sessionFailureMessage(recording::studyStateEditFailure(result.error())),
              param.message);
}

recording::StudySession withVersion(std::optional<long long> raw) {
    auto session = typicalSession();
    session.calculationVersionStorage = raw;
    return session;
}

recording::StudySession liveSession() {
    auto session = typicalSession();
    session.endDate.reset();
    session.setStatus(recording::StudySessionStatus::running);
    return session;
}

constexpr const char* kUnavailable = "This session is no longer available.";
constexpr const char* kOutside = "That time range falls outside this session.";
constexpr const char* kEmpty = "Select a range longer than zero seconds.";
constexpr const char* kNotNoInput =
    "Lumenote only relabels time when this Mac recorded no keyboard or mouse input. Recorded "
    "computer activity is never rewritten.";
constexpr const char* kUnsupported =
    "This session was recorded before confirmed off-Mac study existed, so Lumenote keeps its "
    "original totals rather than reinterpreting them.";
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

INSTANTIATE_TEST_SUITE_P(
    Checks, StudyStateEditRefusalTest,
    ::testing::Values(
        // Each row also breaks every later check, so the order is visible.
        RefusalCase{"missingSession", std::nullopt, 700, 700, Error::sessionUnavailable,
                    kUnavailable},
        RefusalCase{"v2Session", withVersion(2), -10, -10, Error::unsupportedCalculationVersion,
                    kUnsupported},
        RefusalCase{"unversionedSession", withVersion(std::nullopt), 600, 900,
                    Error::unsupportedCalculationVersion, kUnsupported},
        RefusalCase{"laterReleaseVersion", withVersion(4), 600, 900,
                    Error::unsupportedCalculationVersion, kUnsupported},
        RefusalCase{"zeroLength", typicalSession(), -10, -10, Error::emptyRange, kEmpty},
        RefusalCase{"reversed", typicalSession(), 900, 600, Error::emptyRange, kEmpty},
        RefusalCase{"notANumber", typicalSession(), kNaN, 900, Error::emptyRange, kEmpty},
        RefusalCase{"startsBeforeSession", typicalSession(), -1, 700, Error::rangeOutsideSession,
                    kOutside},
        RefusalCase{"endsAfterSession", typicalSession(), 1400, 2000.5, Error::rangeOutsideSession,
                    kOutside},
        // A live session ends now.
        RefusalCase{"endsAfterNowWhileLive", liveSession(), 1400, 50'001,
                    Error::rangeOutsideSession, kOutside},
        RefusalCase{"onlyActiveUse", typicalSession(), 0, 600, Error::notANoInputPeriod,
                    kNotNoInput},
        // Touching a run at its boundary covers none of it.
        RefusalCase{"touchesRunOnly", typicalSession(), 900, 1100, Error::notANoInputPeriod,
                    kNotNoInput},
        // The wall clock jumped during the stretch after 600: its end date
        // says 3000, but it lasted 300 seconds.
        RefusalCase{"placedByMeasuredDuration",
                    [] {
                        auto session = typicalSession();
                        session.segments[1].endDate = at(3000);
                        return session;
                    }(),
                    950, 1050, Error::notANoInputPeriod, kNotNoInput}),
    [](const auto& testCase) { return std::string(testCase.param.name); });

TEST(SessionStudyStateEditorTest, RelabelsOnlyTheRunsInsideTheRange) {
    //  range          [--------------------------------]
    //  idle    |=========|     |==========|
    //              600  900   1100       1500
    //  range from 700 to 1400: runs 700-900 and 1100-1400
    const auto session = typicalSession();
    const auto outcome = relabel(session, 700, 1400, S::passiveStudy);
    EXPECT_TRUE(outcome.superseded.empty());
    ASSERT_EQ(outcome.inserted.size(), 2u);
    EXPECT_EQ(outcome.inserted[0].startDate, at(700));
    EXPECT_EQ(outcome.inserted[0].endDate, at(900));
    // Adjacent idle stretches 1100-1300 and 1300-1500 are one run.
    EXPECT_EQ(outcome.inserted[1].startDate, at(1100));
    EXPECT_EQ(outcome.inserted[1].endDate, at(1400));
    for (const auto& inserted : outcome.inserted) {
        EXPECT_EQ(inserted.state(), S::passiveStudy);
        EXPECT_EQ(inserted.source(), Source::replayEdit);
        EXPECT_EQ(inserted.createdAt, kNow);
        EXPECT_EQ(inserted.session, session.id);
        EXPECT_TRUE(inserted.isInForce());
    }
    EXPECT_EQ(outcome.session.confirmedNoInputIntervals, outcome.inserted);
    // The edit spans the runs, not the active time around them.
    EXPECT_EQ(outcome.edit.sessionID, session.id);
    EXPECT_EQ(outcome.edit.startDate, at(700));
    EXPECT_EQ(outcome.edit.endDate, at(1400));
    EXPECT_FALSE(outcome.edit.previousState);
    EXPECT_EQ(outcome.edit.newState, S::passiveStudy);
    // Recorded activity is untouched.
    EXPECT_EQ(outcome.session.segments, session.segments);
}

TEST(SessionStudyStateEditorTest, RelabellingTwiceLeavesOneCurrentInterval) {
    const auto first =
        relabel(typicalSession(), 600, 900, S::passiveStudy, at(10'000), Source::returnPrompt);
    const auto second = relabel(first.session, 600, 900, S::confirmedBreak, at(20'000));
    ASSERT_EQ(second.superseded.size(), 1u);
    EXPECT_EQ(second.superseded[0].id, first.inserted[0].id);
    EXPECT_EQ(second.superseded[0].supersededAt, at(20'000));
    ASSERT_EQ(second.inserted.size(), 1u);
    EXPECT_EQ(second.edit.previousState, S::passiveStudy);
    EXPECT_EQ(second.session.confirmedNoInputIntervals.size(), 2u);
    EXPECT_EQ(supersededCount(second.session), 1u);
    for (double offset : {600.0, 750.0, 899.9}) {
        const auto covering = currentAt(second.session, offset);
        ASSERT_EQ(covering.size(), 1u) << offset;
        EXPECT_EQ(covering[0]->state(), S::confirmedBreak);
    }
}

TEST(SessionStudyStateEditorTest, AnsweringTheSameWayTwiceStillSupersedes) {
    const auto first =
        relabel(typicalSession(), 600, 900, S::passiveStudy, at(10'000), Source::returnPrompt);
    const auto second =
        relabel(first.session, 600, 900, S::passiveStudy, at(20'000), Source::returnPrompt);
    EXPECT_EQ(supersededCount(second.session), 1u);
    EXPECT_EQ(currentAt(second.session, 700).size(), 1u);
    EXPECT_EQ(second.session.passiveStudyDuration(), 300.0);
}

TEST(SessionStudyStateEditorTest, PartlyCoveredConfirmationIsSplit) {
    //  idle             |==========|              600-900
    //  away (control) |=============================|   550-1000, passive
    //  range                 [----]               700-800 -> break
    //  after:         |=====|                      550-700 passive (kept)
    //                        |====|                700-800 break
    //                             |=================|  800-1000 passive (kept)
    auto away = confirmationAt(550, 1000, S::passiveStudy, 1000, Source::sessionControl);
    const auto session = typicalSession({away});
    const auto outcome = relabel(session, 700, 800, S::confirmedBreak);
    ASSERT_EQ(outcome.superseded.size(), 1u);
    EXPECT_EQ(outcome.superseded[0].id, away.id);
    EXPECT_EQ(outcome.superseded[0].supersededAt, kNow);
    ASSERT_EQ(outcome.inserted.size(), 3u);
    const auto& before = outcome.inserted[0];
    const auto& relabelled = outcome.inserted[1];
    const auto& after = outcome.inserted[2];
    EXPECT_EQ(std::make_pair(before.startDate, before.endDate), std::make_pair(at(550), at(700)));
    EXPECT_EQ(std::make_pair(after.startDate, after.endDate), std::make_pair(at(800), at(1000)));
    for (const auto* kept : {&before, &after}) {
        EXPECT_NE(kept->id, away.id);
        EXPECT_EQ(kept->state(), S::passiveStudy);
        EXPECT_EQ(kept->source(), Source::sessionControl);
        EXPECT_EQ(kept->createdAt, away.createdAt);
        EXPECT_EQ(kept->session, session.id);
    }
    EXPECT_EQ(relabelled.state(), S::confirmedBreak);
    // All of the run inside the range was passive before.
    EXPECT_EQ(outcome.edit.previousState, S::passiveStudy);
    for (double offset : {560.0, 650.0, 700.0, 750.0, 800.0, 950.0}) {
        EXPECT_EQ(currentAt(outcome.session, offset).size(), 1u) << offset;
    }
    EXPECT_EQ(outcome.session.passiveStudyDuration(), 350.0);
    EXPECT_EQ(outcome.session.confirmedBreakDuration(), 100.0);
}

TEST(SessionStudyStateEditorTest, ConfirmationOverTwoRunsKeepsTheActiveTimeBetween) {
    //  idle      |=====|           |========|
    //  break     |==============================|   600-1500
    //  range     [------------------------------]   -> unconfirmed
    //  after: only 900-1100 (active, between the runs) stays a break
    auto pause = confirmationAt(600, 1500, S::confirmedBreak);
    const auto outcome = relabel(typicalSession({pause}), 600, 1500, std::nullopt);
    ASSERT_EQ(outcome.inserted.size(), 1u);
    EXPECT_EQ(outcome.inserted[0].startDate, at(900));
    EXPECT_EQ(outcome.inserted[0].endDate, at(1100));
    EXPECT_EQ(outcome.edit.previousState, S::confirmedBreak);
    EXPECT_FALSE(outcome.edit.newState);
}

TEST(SessionStudyStateEditorTest, MixedStatesHaveNoSinglePreviousState) {
    auto passive = confirmationAt(600, 700, S::passiveStudy);
    const auto outcome = relabel(typicalSession({passive}), 600, 900, S::confirmedBreak);
    EXPECT_FALSE(outcome.edit.previousState);
    auto pause = confirmationAt(700, 900, S::confirmedBreak);
    const auto both = relabel(typicalSession({passive, pause}), 600, 900, std::nullopt);
    EXPECT_FALSE(both.edit.previousState);
}

TEST(SessionStudyStateEditorTest, ReturningUnconfirmedTimeToUnconfirmedSavesNothing) {
    const auto session = typicalSession();
    const auto outcome = relabel(session, 600, 900, std::nullopt);
    EXPECT_TRUE(outcome.superseded.empty());
    EXPECT_TRUE(outcome.inserted.empty());
    EXPECT_TRUE(outcome.session.confirmedNoInputIntervals.empty());
}

TEST(SessionStudyStateEditorTest, PassiveStudyAddsStudyTimeWithoutMovingTheScore) {
    // 1100 s focused, 200 s distracting, 700 s without input.
    auto session = typicalSession();
    recording::TrackingCalculationService::applyTotals(
        recording::TrackingCalculationService::calculateSessionTotals(
            session, kNow, recording::TrackingCalculationVersion::v3),
        session);
    ASSERT_TRUE(session.focusScore);
    const auto outcome = relabel(session, 600, 1500, S::passiveStudy);
    EXPECT_EQ(outcome.session.focusScore, session.focusScore);
    EXPECT_DOUBLE_EQ(*outcome.session.focusScore, 1100.0 / 1300.0 * 100.0);
    EXPECT_EQ(outcome.session.focusedDuration, session.focusedDuration);
    EXPECT_EQ(outcome.session.inactiveDuration, session.inactiveDuration);
    EXPECT_EQ(outcome.session.passiveStudyDuration(), 700.0);
    EXPECT_EQ(outcome.session.confirmedBreakDuration(), 0.0);
    EXPECT_EQ(outcome.session.calculationVersion(), recording::TrackingCalculationVersion::v3);

    const auto asBreak = relabel(outcome.session, 600, 900, S::confirmedBreak);
    EXPECT_EQ(asBreak.session.passiveStudyDuration(), 400.0);
    EXPECT_EQ(asBreak.session.confirmedBreakDuration(), 300.0);
    EXPECT_EQ(asBreak.session.focusScore, session.focusScore);
}

recording::StudyStateEditOutcome undo(const recording::StudyStateEditOutcome& done, Date now) {
    return relabel(done.session, done.edit.startDate.secondsSince(kSessionStart),
                   done.edit.endDate.secondsSince(kSessionStart), done.edit.previousState, now);
}

TEST(SessionStudyStateEditorTest, UndoAppliesThePreviousStateOverTheEditRange) {
    // A wide range narrows to the runs 600-900 and 1100-1500.
    const auto marked = relabel(typicalSession(), 0, 2000, S::passiveStudy, at(10'000));
    EXPECT_EQ(marked.edit.startDate, at(600));
    EXPECT_EQ(marked.edit.endDate, at(1500));
    const auto unmarked = undo(marked, at(20'000));
    EXPECT_EQ(unmarked.edit.previousState, S::passiveStudy);
    EXPECT_FALSE(unmarked.edit.newState);
    EXPECT_TRUE(
        recording::confirmedStudyIntervalsInForce(unmarked.session.confirmedNoInputIntervals)
            .empty());
    EXPECT_EQ(unmarked.session.passiveStudyDuration(), 0.0);
    EXPECT_EQ(supersededCount(unmarked.session), 2u);

    const auto relabelled = relabel(marked.session, 600, 900, S::confirmedBreak, at(30'000));
    const auto restored = undo(relabelled, at(40'000));
    EXPECT_EQ(restored.session.passiveStudyDuration(), marked.session.passiveStudyDuration());
    EXPECT_EQ(restored.session.confirmedBreakDuration(), 0.0);
    const auto covering = currentAt(restored.session, 700);
    ASSERT_EQ(covering.size(), 1u);
    EXPECT_EQ(covering[0]->state(), S::passiveStudy);
}

TEST(SessionStudyStateEditorTest, LiveSessionAcceptsARangeUpToNow) {
    // Input returned at 900 of a running session; the prompt is answered at 905.
    auto session = typicalSession();
    session.endDate.reset();
    session.setStatus(recording::StudySessionStatus::running);
    session.segments.resize(2);
    const auto outcome = relabel(session, 550, 900, S::passiveStudy, at(905), Source::returnPrompt);
    ASSERT_EQ(outcome.inserted.size(), 1u);
    EXPECT_EQ(outcome.inserted[0].startDate, at(600));
    EXPECT_EQ(outcome.inserted[0].source(), Source::returnPrompt);
    EXPECT_FALSE(outcome.session.endDate);
    EXPECT_EQ(outcome.session.passiveStudyDuration(), 300.0);
}

TEST(SessionStudyStateEditorTest, SleepInsideTheRangeIsNeverRelabelled) {
    auto session = sessionWith({focusedAt(0, 100), asleepAt(100, 500), idleAt(600, 100)}, 700);
    const auto outcome = relabel(session, 0, 700, S::passiveStudy);
    ASSERT_EQ(outcome.inserted.size(), 1u);
    EXPECT_EQ(outcome.inserted[0].startDate, at(600));
    const auto sleepOnly =
        applyEdit(session, at(150), at(550), S::passiveStudy, Source::replayEdit, kNow);
    ASSERT_FALSE(sleepOnly.ok());
    EXPECT_EQ(sleepOnly.error(), Error::notANoInputPeriod);
}

}  // namespace
}  // namespace lumenote::recording
