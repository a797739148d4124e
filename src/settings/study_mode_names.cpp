#include "settings/study_mode_names.hpp"

#include "foundation/text.hpp"

namespace lumenote::settings {

std::optional<recording::StudySessionMode> studyModeNamed(std::string_view name) {
    const std::string folded = text::caseFolded(name);
    for (const StudyModeShortName& entry : kStudyModeShortNames) {
        if (folded == entry.word || folded == text::caseFolded(rawValue(entry.mode))) {
            return entry.mode;
        }
    }
    return std::nullopt;
}

}  // namespace lumenote::settings
