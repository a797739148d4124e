// The texts shown for a focus score and its coverage: the score as "50%" or
// "—", the sentences used where no score exists and the coverage phrases.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace lumenote::recording::TrackingCalculationService {

// Where the score is absent; each screen picks the sentence that fits it.
inline constexpr std::string_view kFocusScoreUnavailableText =
    "Focus score unavailable. Not enough Focused plus Distracted time.";
inline constexpr std::string_view kNotEnoughEvidenceToShowScoreText =
    "Not enough Focused + Distracted time to show a focus score.";
inline constexpr std::string_view kRecordOneMinuteOfFocusedOrDistractedText =
    "Record at least one minute of Focused or Distracted activity to show a focus score.";
inline constexpr std::string_view kRecordOneMinuteOfFocusedPlusDistractedText =
    "Record at least one minute of Focused + Distracted activity to show a focus score.";
inline constexpr std::string_view kFocusScoreNotScoredText =
    "Focus score not scored because there is less than one minute of evidence.";
inline constexpr std::string_view kRecordActivityToCalculateScoreText =
    "Record Focused or Distracted activity to calculate a focus score.";
inline constexpr std::string_view kFocusScoreNotAvailableText = "Focus score not available";

// Coverage phrases: the percentage goes before the first two and the fifth.
inline constexpr std::string_view kScoreCoverageSuffix = "% score coverage";
inline constexpr std::string_view kPercentScoreCoverageSentenceSuffix = " percent score coverage.";
inline constexpr std::string_view kLowCoverageSuffix = " · Low coverage";
inline constexpr std::string_view kLowCoveragePrefix = "Low coverage · ";
inline constexpr std::string_view kScoreCoverageUnavailableText = "Score coverage unavailable";
inline constexpr std::string_view kCoverageLowCoverageClosingSuffix = "% coverage · Low coverage).";
inline constexpr std::string_view kActivityCoverageTitle = "Activity coverage";

// Shown in place of a score that is absent or not a finite number.
inline constexpr std::string_view kAbsentScoreText = "—";

// "50%": the score clamped to 0 ... 100 and rounded half away from zero;
// "—" when the score is absent or not finite.
std::string formatFocusScore(std::optional<double> score);

// A whole percentage of coverage followed by "% score coverage", with
// " · Low coverage" below 50 percent; "Score coverage unavailable" when the
// coverage is absent or not finite. The percentage is rounded half away from
// zero, except that a low coverage reads at most 49 (49.7 reads "49% score
// coverage · Low coverage"), so the number never contradicts the judgement.
std::string formatScoreCoverage(std::optional<double> coverage);

// Whether a score and a coverage judgement may be shown for this much
// evidence (Focused + Distracted seconds): from one minute on. Below it
// neither is shown, whatever score is stored.
bool shouldShowScoreAndCoverage(double evidenceSeconds);

// The stored score as it may be shown: nullopt when the evidence is under a
// minute, even if a score was stored.
std::optional<double> displayableFocusScore(std::optional<double> storedScore,
                                            double evidenceSeconds);

}  // namespace lumenote::recording::TrackingCalculationService
