#include "recording/study_state_edit.hpp"

#include "foundation/numeric.hpp"

namespace lumenote::recording {

namespace {

std::string_view stateName(ConfirmedStudyState state) {
    switch (state) {
        case ConfirmedStudyState::passiveStudy:
            return "Studying away from Mac";
        case ConfirmedStudyState::confirmedBreak:
            break;
    }
    return "Break";
}

}  // namespace

std::string formatStudyStateEditDuration(double seconds) {
    const long long whole = static_cast<long long>(roundHalfAwayFromZero(clampDuration(seconds)));
    if (whole < 60) {
        return std::to_string(whole) + " s";
    }
    const long long minutes =
        static_cast<long long>(roundHalfAwayFromZero(static_cast<double>(whole) / 60.0));
    const long long hours = minutes / 60;
    const long long rest = minutes % 60;
    if (hours == 0) {
        return std::to_string(rest) + " min";
    }
    std::string text = std::to_string(hours) + " h";
    if (rest > 0) {
        text += " " + std::to_string(rest) + " min";
    }
    return text;
}

std::string studyStateEditDescription(const StudyStateEdit& edit) {
    std::string text = formatStudyStateEditDuration(edit.endDate.secondsSince(edit.startDate));
    if (!edit.newState) {
        return text + " returned to Unconfirmed";
    }
    text += " marked as ";
    text += stateName(*edit.newState);
    return text;
}

}  // namespace lumenote::recording
