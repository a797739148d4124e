// What the recorder's command service and its clients say to each other: the
// bus names, the commands and the status document.
#pragma once

#include <array>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "foundation/dates.hpp"
#include "foundation/result.hpp"
#include "recording/enumerations.hpp"

namespace lumenote::runtime {

inline constexpr const char* kCommandServiceName = "com.tallywise.Lumenote";
inline constexpr const char* kCommandServicePath = "/com/tallywise/Lumenote";
inline constexpr const char* kCommandServiceInterface = "com.tallywise.Lumenote";
// The error a command method replies with when the recorder refuses it; its
// message is the sentence to show the user.
inline constexpr const char* kCommandRefusedError = "com.tallywise.Lumenote.Error.Refused";

enum class RecorderCommand {
    togglePause,
    endSession,
    startPassiveStudy,
    returnToComputerStudy,
    status,
    browserEvents,  // answered with the browser event log, not the status
    browserStatus,  // answered with each browser's status text
    present         // brings the recorder's window forward; answered with the status
};

// The D-Bus method of each command ("TogglePause", "Status", ...).
std::string_view recorderCommandMethod(RecorderCommand command);
// The command whose method is exactly `method`.
std::optional<RecorderCommand> recorderCommandFromMethod(std::string_view method);

// What the recorder is doing, as the Status method reports it.
struct RecorderStatus {
    bool sessionActive = false;
    // When the recorder's observer last announced a change of the
    // application in front (UTC); reported with or without a session.
    std::optional<Date> lastActivation;
    // The fields below describe the active session; ignored without one.
    std::string subject;
    recording::StudySessionStatus state =
        recording::StudySessionStatus::running;  // running or paused
    double elapsedSeconds = 0.0;                 // the session's timer
    std::optional<double> remainingSeconds;      // timer mode only
    std::string currentActivity;                 // what is observed now; empty when nothing is
    classification::ActivityClassification currentClassification =
        classification::ActivityClassification::unclassified;
    recording::LiveStudyState studyState = recording::LiveStudyState::computerActivity;
    bool asleep = false;  // the computer sleeps or cannot be observed
    // Why the browser in front has its websites unrecorded, in one sentence;
    // empty when nothing is amiss.
    std::string browserWarning;
    // Why the application in front cannot be seen (its time is recorded as
    // "Unknown application"), in one sentence; empty while it can.
    std::string observationWarning;

    friend bool operator==(const RecorderStatus&, const RecorderStatus&) = default;
};

// One JSON object. Without a session it is {"state":"idle"} (with
// "lastActivation", Unix seconds, once one was seen). Times are whole
// seconds: elapsed rounded down and remaining rounded up (never below zero,
// never above a century, kMaximumDurationSeconds),
// so that a display of both never shows more than the planned duration.
// Text that is not valid UTF-8 is replaced, never refused.
std::string recorderStatusJson(const RecorderStatus& status);

enum class RecorderStatusParseError { malformed };
std::string recorderStatusParseErrorMessage(RecorderStatusParseError error);
// Reads what recorderStatusJson() wrote; unknown fields are ignored so that a
// newer recorder can add some.
Result<RecorderStatus, RecorderStatusParseError> parseRecorderStatus(std::string_view json);

// The recorder's answer to BrowserStatus: a JSON object from browser to its
// status sentence. Members whose value is not a string are skipped (a newer
// recorder may add others); nullopt when the text is not a JSON object.
std::optional<std::map<std::string, std::string>> parseBrowserStatusTexts(std::string_view json);

}  // namespace lumenote::runtime
