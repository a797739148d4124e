#include "recording/focus_score_text.hpp"

#include <algorithm>
#include <cmath>

#include "foundation/numeric.hpp"
#include "recording/tracking_calculation.hpp"

namespace lumenote::recording::TrackingCalculationService {

namespace {

std::optional<long long> wholePercent(std::optional<double> value) {
    if (!value || !std::isfinite(*value)) {
        return std::nullopt;
    }
    return static_cast<long long>(roundHalfAwayFromZero(std::clamp(*value, 0.0, 100.0)));
}

}  // namespace

std::string formatFocusScore(std::optional<double> score) {
    const auto percent = wholePercent(score);
    if (!percent) {
        return std::string(kAbsentScoreText);
    }
    return std::to_string(*percent) + "%";
}

std::string formatScoreCoverage(std::optional<double> coverage) {
    auto percent = wholePercent(coverage);
    if (!percent) {
        return std::string(kScoreCoverageUnavailableText);
    }
    const bool low = *coverage < kLowCoveragePercent;
    if (low) {
        // Rounding must not lift a low coverage to the threshold: the number
        // shown agrees with the judgement beside it.
        percent = std::min(*percent, static_cast<long long>(kLowCoveragePercent) - 1);
    }
    std::string text = std::to_string(*percent) + std::string(kScoreCoverageSuffix);
    if (low) {
        text += kLowCoverageSuffix;
    }
    return text;
}

bool shouldShowScoreAndCoverage(double evidenceSeconds) {
    return std::isfinite(evidenceSeconds) && evidenceSeconds >= kMinimumScoreEvidenceSeconds;
}

std::optional<double> displayableFocusScore(std::optional<double> storedScore,
                                            double evidenceSeconds) {
    if (!shouldShowScoreAndCoverage(evidenceSeconds)) {
        return std::nullopt;
    }
    return storedScore;
}

}  // namespace lumenote::recording::TrackingCalculationService
