// The desktop notifications the recorder posts: their titles and bodies.
// Whether one is posted at all is the session manager's decision (the
// notification preferences); this file only says what it reads.
#pragma once

#include <string>
#include <string_view>

namespace lumenote::recording {

struct SessionNotice {
    std::string title;
    std::string body;

    friend bool operator==(const SessionNotice&, const SessionNotice&) = default;
};

inline constexpr const char* kLongSleepPauseNotice =
    "Lumenote paused your session after a long Mac sleep.";
inline constexpr std::string_view kSessionCompleteNoticeTitle = "Study session complete";

// The notice of a session paused because the computer slept for at least the
// long-sleep threshold.
SessionNotice longSleepPauseNotice();

// The notice of a timer-mode session that reached its planned duration
// (seconds, shown as formatStudyStateEditDuration shows it: "25 min",
// "1 h 5 min"): "Biology: 25 min of study is complete." when
// `includeSubject` is on, else "Your 25 min study session is complete.". An
// empty subject is never shown, whatever `includeSubject` says.
SessionNotice timerCompletionNotice(std::string_view subject, double plannedDuration,
                                    bool includeSubject);

}  // namespace lumenote::recording
