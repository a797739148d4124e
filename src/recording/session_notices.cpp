#include "recording/session_notices.hpp"

#include "recording/study_state_edit.hpp"

namespace lumenote::recording {

SessionNotice longSleepPauseNotice() {
    return {"Lumenote", kLongSleepPauseNotice};
}

SessionNotice timerCompletionNotice(std::string_view subject, double plannedDuration,
                                    bool includeSubject) {
    const std::string duration = formatStudyStateEditDuration(plannedDuration);
    std::string body = includeSubject && !subject.empty()
                           ? std::string(subject) + ": " + duration + " of study is complete."
                           : "Your " + duration + " study session is complete.";
    return {std::string(kSessionCompleteNoticeTitle), std::move(body)};
}

}  // namespace lumenote::recording
