#include "recording/personal_best.hpp"

namespace lumenote::recording {

std::string_view personalBestTitle(PersonalBestKind kind) {
    switch (kind) {
        case PersonalBestKind::dailyGoalComplete:
            return "Daily goal complete";
        case PersonalBestKind::longestFocus:
            return "New longest focus";
        case PersonalBestKind::highestFocusScore:
            return "New highest focus score";
        case PersonalBestKind::longestSession:
            return "New longest session";
    }
    return {};
}

}  // namespace lumenote::recording
