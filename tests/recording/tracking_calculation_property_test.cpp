// Random overlapping activity checked against a second-by-second model of the
// reconciliation rules. Whole-second boundaries keep every sum exact, so the
// totals must match the model exactly.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <map>
#include <random>

#include "recording/tracking_calculation.hpp"
#include "recording/tracking_reconciliation.hpp"

namespace lumenote::recording::TrackingCalculationService {
namespace {

const Date kStart = Date::fromUnixSeconds(1'800'000'000.0);
constexpr int kCases = 3000;
constexpr int kHorizon = 900;
// After every generated sample: only the accountable duration limits totals.
const Date kSessionEnd = kStart.addingSeconds(kHorizon);

std::vector<SessionAccountingSample> randomSamples(std::mt19937& rng) {
    std::uniform_int_distribution<int> count(0, 12);
    std::uniform_int_distribution<int> start(0, 599);
    std::uniform_int_distribution<int> length(0, 300);
    std::uniform_int_distribution<int> classification(0, 4);
    std::uniform_int_distribution<int> source(0, 3);
    std::uniform_int_distribution<int> identifier(0, 2);
    std::uniform_int_distribution<int> percent(0, 99);
    const std::array<const char*, 3> identifiers{"com.example.a", "example.org", "com.example.c"};
    std::vector<SessionAccountingSample> samples(static_cast<std::size_t>(count(rng)));
    for (auto& s : samples) {
        const int from = start(rng);
        const int seconds = length(rng);
        s.startDate = kStart.addingSeconds(from);
        s.endDate = kStart.addingSeconds(from + seconds);
        s.duration = seconds;
        s.classification = static_cast<classification::ActivityClassification>(classification(rng));
        s.isInactive = percent(rng) < 15;
        s.source = percent(rng) < 10 ? ActivitySourceType::system
                                     : static_cast<ActivitySourceType>(source(rng));
        s.stableIdentifier = identifiers[static_cast<std::size_t>(identifier(rng))];
    }
    return samples;
}

int modelTieRank(AccountedState state) {
    constexpr std::array<AccountedState, 6> order{
        AccountedState::distracting,  AccountedState::focused, AccountedState::neutral,
        AccountedState::unclassified, AccountedState::ignored, AccountedState::noInput};
    return static_cast<int>(std::find(order.begin(), order.end(), state) - order.begin());
}

// Seconds per state when each whole second goes to the covering sample that
// ranks first: system, then the later start, then the tie order.
std::map<AccountedState, double> modelTotals(const std::vector<SessionAccountingSample>& samples,
                                             double& coveredSeconds) {
    std::map<AccountedState, double> totals;
    coveredSeconds = 0;
    for (int t = 0; t < kHorizon; ++t) {
        const SessionAccountingSample* best = nullptr;
        for (const auto& s : samples) {
            const double from = s.startDate.secondsSince(kStart);
            if (!(from <= t && t < from + s.duration)) {
                continue;
            }
            if (best == nullptr) {
                best = &s;
                continue;
            }
            const bool sSystem = s.source == ActivitySourceType::system;
            const bool bestSystem = best->source == ActivitySourceType::system;
            if (sSystem != bestSystem) {
                best = sSystem ? &s : best;
            } else if (s.startDate != best->startDate) {
                best = s.startDate > best->startDate ? &s : best;
            } else if (modelTieRank(accountedState(s)) < modelTieRank(accountedState(*best))) {
                best = &s;
            }
        }
        if (best != nullptr) {
            totals[accountedState(*best)] += 1;
            coveredSeconds += 1;
        }
    }
    return totals;
}

TEST(TrackingCalculationProperty, ReconciledTotalsMatchTheModelAndCountNoTimeTwice) {
    std::mt19937 rng(20240611);
    for (int i = 0; i < kCases; ++i) {
        const auto samples = randomSamples(rng);
        const auto result = calculateTotals(samples, {}, kStart, kStart.addingSeconds(kHorizon),
                                            1e9, TrackingCalculationVersion::v2);
        double covered = 0;
        auto model = modelTotals(samples, covered);
        ASSERT_EQ(result.focusedDuration, model[AccountedState::focused]) << "case " << i;
        ASSERT_EQ(result.distractedDuration, model[AccountedState::distracting]) << "case " << i;
        ASSERT_EQ(result.neutralDuration, model[AccountedState::neutral]) << "case " << i;
        ASSERT_EQ(result.unclassifiedDuration, model[AccountedState::unclassified]) << "case " << i;
        ASSERT_EQ(result.ignoredDuration, model[AccountedState::ignored]) << "case " << i;
        ASSERT_EQ(result.inactiveDuration, model[AccountedState::noInput]) << "case " << i;
        ASSERT_EQ(result.systemExcludedDuration, model[AccountedState::systemExcluded])
            << "case " << i;
        ASSERT_EQ(result.classTotalDuration() + result.systemExcludedDuration, covered)
            << "case " << i << ": every covered second counts exactly once";

        for (std::size_t k = 1; k < result.contributions.size(); ++k) {
            ASSERT_LE(result.contributions[k - 1].endDate, result.contributions[k].startDate)
                << "case " << i << ": contributions overlap or are out of order";
        }
    }
}

TEST(TrackingCalculationProperty, TotalsStayWithinTheAccountableDuration) {
    std::mt19937 rng(7);
    std::uniform_real_distribution<double> accountable(0, 1200);
    for (int i = 0; i < kCases; ++i) {
        const auto samples = randomSamples(rng);
        const double limit = accountable(rng);
        const auto unlimited =
            calculateTotals(samples, {}, kStart, kSessionEnd, 1e9, TrackingCalculationVersion::v2);
        const auto limited = calculateTotals(samples, {}, kStart, kSessionEnd, limit,
                                             TrackingCalculationVersion::v2);
        ASSERT_LE(limited.classTotalDuration(), limit + 1e-6) << "case " << i;
        ASSERT_LE(limited.focusedDuration, unlimited.focusedDuration) << "case " << i;
        ASSERT_LE(limited.distractedDuration, unlimited.distractedDuration + 1e-9) << "case " << i;
        if (limited.focusScore && unlimited.focusScore) {
            ASSERT_NEAR(*limited.focusScore, *unlimited.focusScore, 1e-9)
                << "case " << i << ": cutting evidence must not move the score";
        }
    }
}

// Seconds of class time the contributions hold before `end`.
double classTimeBefore(const TrackingCalculationResult& result, Date end) {
    double seconds = 0;
    for (const auto& piece : result.contributions) {
        if (piece.classification == AccountedState::systemExcluded || !(piece.startDate < end)) {
            continue;
        }
        const double span = piece.endDate.secondsSince(piece.startDate);
        const double before = std::min(piece.endDate, end).secondsSince(piece.startDate);
        seconds += span > 0 ? piece.duration * before / span : piece.duration;
    }
    return seconds;
}

TEST(TrackingCalculationProperty, TimeAfterTheSessionEndAbsorbsTheExcessFirst) {
    std::mt19937 rng(1309);
    std::uniform_real_distribution<double> accountable(0, 1200);
    std::uniform_int_distribution<int> endAt(0, kHorizon);
    for (int i = 0; i < kCases; ++i) {
        const auto samples = randomSamples(rng);
        const Date end = kStart.addingSeconds(endAt(rng));
        const double limit = accountable(rng);
        const auto unlimited =
            calculateTotals(samples, {}, kStart, end, 1e9, TrackingCalculationVersion::v2);
        const auto limited =
            calculateTotals(samples, {}, kStart, end, limit, TrackingCalculationVersion::v2);
        ASSERT_LE(limited.classTotalDuration(), limit + 1e-6) << "case " << i;
        const double before = classTimeBefore(unlimited, end);
        if (limit >= before) {
            ASSERT_NEAR(classTimeBefore(limited, end), before, 1e-6)
                << "case " << i << ": time before the end was cut while later time remained";
            ASSERT_NEAR(limited.classTotalDuration(),
                        std::min(limit, unlimited.classTotalDuration()), 1e-6)
                << "case " << i << ": more than the excess was cut";
        }
    }
}

TEST(TrackingCalculationProperty, ResultDoesNotDependOnInputOrder) {
    std::mt19937 rng(99);
    std::uniform_real_distribution<double> accountable(0, 1200);
    for (int i = 0; i < kCases; ++i) {
        auto samples = randomSamples(rng);
        const double limit = accountable(rng);
        const auto expected = calculateTotals(samples, {}, kStart, kSessionEnd, limit,
                                              TrackingCalculationVersion::v3);
        std::shuffle(samples.begin(), samples.end(), rng);
        const auto shuffled = calculateTotals(samples, {}, kStart, kSessionEnd, limit,
                                              TrackingCalculationVersion::v3);
        ASSERT_EQ(shuffled, expected) << "case " << i;
    }
}

TEST(TrackingCalculationProperty, ConfirmedTimeNeverMovesTheScore) {
    std::mt19937 rng(31);
    std::uniform_int_distribution<int> from(0, 800);
    std::uniform_int_distribution<int> length(-10, 600);
    std::uniform_int_distribution<int> state(0, 1);
    for (int i = 0; i < kCases; ++i) {
        const auto samples = randomSamples(rng);
        std::vector<ConfirmedStudyInterval> confirmations(3);
        for (auto& c : confirmations) {
            const int start = from(rng);
            c.startDate = kStart.addingSeconds(start);
            c.endDate = kStart.addingSeconds(start + length(rng));
            c.state = static_cast<ConfirmedStudyState>(state(rng));
        }
        const auto v2 = calculateTotals(samples, confirmations, kStart, kSessionEnd, 1e9,
                                        TrackingCalculationVersion::v2);
        const auto v3 = calculateTotals(samples, confirmations, kStart, kSessionEnd, 1e9,
                                        TrackingCalculationVersion::v3);
        ASSERT_EQ(v2.focusScore, v3.focusScore) << "case " << i;
        ASSERT_EQ(v2.coverage, v3.coverage) << "case " << i;
        ASSERT_GE(v3.studyShare, 0.0);
        ASSERT_LE(v3.studyShare, 100.0);
    }
}

}  // namespace
}  // namespace lumenote::recording::TrackingCalculationService
