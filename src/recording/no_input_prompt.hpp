// The question asked when input returns after a run without it, the texts of
// away-from-Mac study, and the summary of short unconfirmed gaps.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "foundation/dates.hpp"
#include "foundation/uuid.hpp"
#include "recording/session_records.hpp"

namespace lumenote::recording {

// The pending question about one run without input.
struct NoInputClassificationPrompt {
    Uuid id;
    Uuid sessionID;
    Date startDate;  // start of the run without input
    Date endDate;    // when input returned
    // The session timer's seconds at `startDate`, the timer value the session
    // keeps when the user ends it there.
    std::optional<double> timerDurationAtStartDate;

    friend bool operator==(const NoInputClassificationPrompt&,
                           const NoInputClassificationPrompt&) = default;
};

// From a run of this many seconds on, the question is whether the session was
// left running and should end at the run's start.
inline constexpr double kEndSessionQuestionSeconds = 2700.0;

inline constexpr std::string_view kLeftRunningExplanation =
    "This looks like a session that may have been left running. Lumenote will not change it "
    "unless you confirm.";
inline constexpr std::string_view kNoInputSheetTitle = "What were you doing?";
// The away state's name: an answer to the question, the live state and a total.
inline constexpr std::string_view kStudyingAwayFromMac = "Studying away from Mac";
inline constexpr std::string_view kBreakAnswer = "Break";
inline constexpr std::string_view kLeaveUnconfirmedAnswer = "Leave Unconfirmed";
// The answer that ends a session at the start of a long run without input.
inline constexpr std::string_view kEndSessionThereAnswer = "End the Session There";
inline constexpr std::string_view kAdjustTimeRangeAction = "Adjust the time range";

inline constexpr std::string_view kStudyAwayControl = "Study away from Mac";
inline constexpr std::string_view kStudyAwayControlHelp =
    "Counts time away from your Mac as study time";
inline constexpr std::string_view kBackToComputerStudyControl = "Back to Computer Study";
inline constexpr std::string_view kBackToComputerStudyHelp =
    "Ends the current Studying away from Mac period";
// Shown once, on the first use of the away-from-Mac control.
inline constexpr std::string_view kPassiveStudyIntroduction =
    "Working away from your Mac? Mark that time as Studying away from Mac so it counts toward "
    "study time without affecting your Focus Score.";

inline constexpr std::string_view kPassiveStudyStateDescription =
    "Studying away from your Mac while the session continues.";
inline constexpr std::string_view kConfirmedBreakStateDescription =
    "Time you intentionally were not studying.";
inline constexpr std::string_view kUnconfirmedNoInputStateDescription =
    "Lumenote detected no computer activity but does not know what you were doing.";
// How unconfirmed no-input time counts toward study time.
inline constexpr std::string_view kUnconfirmedStudyTimeText =
    "Leaves this period out of every study total";
// Shown in the breakdown of a session computed before v3.
inline constexpr std::string_view kRecordedBeforeOffMacStudyText =
    "This session was recorded before confirmed off-Mac study existed, so Lumenote keeps its "
    "original totals.";
// Explains a session's system-excluded time.
inline constexpr std::string_view kSystemExcludedExplanation =
    "Your Mac was asleep, locked, or switched to another user, so nothing could be observed.";
inline constexpr std::string_view kShortGapsNote =
    "Individual short gaps remain available in Raw activity.";

// The seconds from the prompt's start to its end (may be negative).
double promptDuration(const NoInputClassificationPrompt& prompt);

// Whether the prompt asks to end the session at its start (a run of at least
// 2700 seconds) rather than what the user was doing.
bool asksToEndSession(const NoInputClassificationPrompt& prompt);

// "14:05": the local time of `date` in `calendar`, 24-hour, hours and minutes
// two digits each, seconds dropped (14:05:59 reads "14:05"). A date that is not
// a finite number reads as the reference epoch.
std::string shortLocalTime(Date date, const LocalCalendar& calendar);

// The question of the prompt. Below 2700 seconds: "You had no computer input
// for 45 minutes. What were you doing?", minutes rounded half away from zero,
// at least 1, "minute" for 1; a negative or unknown length counts 0. From 2700
// seconds: "No meaningful activity was recorded after 14:05. End the session
// there?" with the start as shortLocalTime.
std::string noInputPromptText(const NoInputClassificationPrompt& prompt,
                              const LocalCalendar& calendar);

// "1 short unconfirmed gap", "3 short unconfirmed gaps" (also "0 ... gaps").
std::string shortUnconfirmedGapsSummary(std::size_t count);

// The short unconfirmed gaps of a session: runs without input (see
// noInputRuns) too short to have raised the question, of which no moment is
// covered by a confirmation in force (a short run that is even partly
// confirmed has been looked at). A recorded no-input stretch begins only once
// the idle time reached the inactivity threshold, while the question measures
// the run from the last input; so a run is short when its recorded length plus
// `inactivityThresholdSeconds` is below `promptThresholdSeconds`. Runs shorter
// than the boundary tolerance of no_input_periods.hpp are no time and not
// counted.
std::size_t countShortUnconfirmedGaps(const StudySession& session, double promptThresholdSeconds,
                                      double inactivityThresholdSeconds);

}  // namespace lumenote::recording
