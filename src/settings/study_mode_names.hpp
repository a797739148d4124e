// The names a person may give a study mode wherever one is typed: its stored
// raw value ("computerBased", "mixedStudy", "offlineBookStudy") or its short
// word ("computer", "mixed", "offline").
#pragma once

#include <array>
#include <optional>
#include <string_view>

#include "recording/enumerations.hpp"

namespace lumenote::settings {

struct StudyModeShortName {
    recording::StudySessionMode mode;
    std::string_view word;
};

// In the order of the modes' declaration.
inline constexpr std::array<StudyModeShortName, 3> kStudyModeShortNames{{
    {recording::StudySessionMode::computerBased, "computer"},
    {recording::StudySessionMode::mixedStudy, "mixed"},
    {recording::StudySessionMode::offlineBookStudy, "offline"},
}};

// The mode `name` stands for, as a raw value or a short word in any letter
// case; nullopt when it names none.
std::optional<recording::StudySessionMode> studyModeNamed(std::string_view name);

}  // namespace lumenote::settings
