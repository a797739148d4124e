#include "recording/focus_score_text.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace lumenote::recording::TrackingCalculationService {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

TEST(FocusScoreText, ScoreIsClampedRoundedHalfAwayFromZeroOrADash) {
    const std::vector<std::pair<std::optional<double>, std::string>> cases{
        {49.5, "50%"},   {49.4999, "49%"}, {0.0, "0%"},  {0.4999, "0%"}, {99.5, "100%"},
        {100.0, "100%"}, {140.0, "100%"},  {-3.0, "0%"}, {-0.5, "0%"},   {std::nullopt, "—"},
        {kNaN, "—"},     {kInf, "—"},      {-kInf, "—"},
    };
    for (const auto& [score, text] : cases) {
        EXPECT_EQ(formatFocusScore(score), text) << (score ? std::to_string(*score) : "none");
    }
}

TEST(FocusScoreText, CoverageNamesLowCoverageBelowHalf) {
    EXPECT_EQ(formatScoreCoverage(50.0), "50% score coverage");
    EXPECT_EQ(formatScoreCoverage(72.5), "73% score coverage");
    EXPECT_EQ(formatScoreCoverage(49.0), "49% score coverage · Low coverage");
    EXPECT_EQ(formatScoreCoverage(std::nullopt), "Score coverage unavailable");
    EXPECT_EQ(formatScoreCoverage(kNaN), "Score coverage unavailable");
}

TEST(FocusScoreText, LowCoverageNeverReadsAsTheThreshold) {
    EXPECT_EQ(formatScoreCoverage(49.5), "49% score coverage · Low coverage");
    EXPECT_EQ(formatScoreCoverage(49.999), "49% score coverage · Low coverage");
    EXPECT_EQ(formatScoreCoverage(48.5), "49% score coverage · Low coverage");
    EXPECT_EQ(formatScoreCoverage(0.4), "0% score coverage · Low coverage");
    EXPECT_EQ(formatScoreCoverage(50.0), "50% score coverage");
}

TEST(FocusScoreText, NothingIsShownBelowOneMinuteOfEvidenceWhateverIsStored) {
    EXPECT_FALSE(shouldShowScoreAndCoverage(59.999));
    EXPECT_TRUE(shouldShowScoreAndCoverage(60.0));
    EXPECT_FALSE(shouldShowScoreAndCoverage(kNaN));
    EXPECT_EQ(displayableFocusScore(80.0, 30.0), std::nullopt);
    EXPECT_EQ(displayableFocusScore(80.0, 60.0), 80.0);
    EXPECT_EQ(displayableFocusScore(std::nullopt, 600.0), std::nullopt);
}

}  // namespace
}  // namespace lumenote::recording::TrackingCalculationService
