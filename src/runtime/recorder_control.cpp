// The client side of the recorder's bus service, for `lumenote-cli pause`,
// `resume`, `end`, `away`, `back`, `status` and `browser events`.
#include "runtime/recorder_control.hpp"

#include <fmt/format.h>

#include "bridge/browser_event_log.hpp"
#include "recording/no_input_prompt.hpp"
#include "recording/session_figures.hpp"
#include "runtime/command_client.hpp"
#include "runtime/command_protocol.hpp"

namespace lumenote::runtime {

namespace {

std::string statusText(const RecorderStatus& status) {
    if (!status.sessionActive) {
        return "No study session is active.";
    }
    std::string text =
        fmt::format("{} · {}", status.subject,
                    status.state == recording::StudySessionStatus::paused ? "paused" : "recording");
    text += " · " + recording::clockDurationText(status.elapsedSeconds);
    if (status.remainingSeconds) {
        text += fmt::format(" ({} left)", recording::clockDurationText(*status.remainingSeconds));
    }
    if (status.asleep) {
        text += " · computer asleep or locked";
    } else if (status.studyState == recording::LiveStudyState::passiveStudy) {
        text += fmt::format(" · {}", recording::kStudyingAwayFromMac);
    } else if (!status.currentActivity.empty()) {
        text += fmt::format(" · {} ({})", status.currentActivity,
                            rawValue(status.currentClassification));
    }
    if (!status.browserWarning.empty()) {
        text += "\n" + status.browserWarning;
    }
    if (!status.observationWarning.empty()) {
        text += "\n" + status.observationWarning;
    }
    return text;
}

Result<RecorderStatus, std::string> currentStatus() {
    auto answer = callRecorderCommand(RecorderCommand::status);
    if (!answer.ok()) {
        return fail(commandClientErrorMessage(answer.error()));
    }
    auto parsed = parseRecorderStatus(*answer);
    if (!parsed.ok()) {
        return fail(recorderStatusParseErrorMessage(parsed.error()));
    }
    return *parsed;
}

}  // namespace

Result<RecorderStatus, std::string> recorderStatus() {
    return currentStatus();
}

Result<std::string, std::string> controlRecorder(RecorderControl control) {
    auto status = currentStatus();
    if (!status.ok()) {
        return fail(status.error());
    }
    if (control == RecorderControl::status) {
        return statusText(*status);
    }
    if (!status->sessionActive) {
        return fail(std::string("No study session is active."));
    }
    const bool paused = status->state == recording::StudySessionStatus::paused;
    RecorderCommand command = RecorderCommand::status;
    std::string done;
    switch (control) {
        case RecorderControl::pause:
            if (paused) {
                return std::string("The session is already paused.");
            }
            command = RecorderCommand::togglePause;
            done = "Paused.";
            break;
        case RecorderControl::resume:
            if (!paused) {
                return std::string("The session is already running.");
            }
            command = RecorderCommand::togglePause;
            done = "Resumed.";
            break;
        case RecorderControl::end:
            command = RecorderCommand::endSession;
            done = "Session ended.";
            break;
        case RecorderControl::away:
            command = RecorderCommand::startPassiveStudy;
            done = fmt::format("{}.", recording::kStudyingAwayFromMac);
            break;
        case RecorderControl::back:
            command = RecorderCommand::returnToComputerStudy;
            done = fmt::format("{}.", recording::kBackToComputerStudyControl);
            break;
        case RecorderControl::status:
            break;
    }
    auto answer = callRecorderCommand(command);
    if (!answer.ok()) {
        return fail(commandClientErrorMessage(answer.error()));
    }
    return done;
}

Result<std::vector<bridge::BrowserEventLogEntry>, std::string> recorderBrowserEvents() {
    auto answer = callRecorderCommand(RecorderCommand::browserEvents);
    if (!answer.ok()) {
        return fail(commandClientErrorMessage(answer.error()));
    }
    auto parsed = bridge::parseBrowserEventLog(*answer);
    if (!parsed.ok()) {
        return fail(std::string("The recorder's answer about browser events could not be read."));
    }
    return std::move(parsed).value();
}

Result<std::map<std::string, std::string>, std::string> recorderBrowserStatus() {
    auto answer = callRecorderCommand(RecorderCommand::browserStatus);
    if (!answer.ok()) {
        return fail(commandClientErrorMessage(answer.error()));
    }
    auto texts = parseBrowserStatusTexts(*answer);
    if (!texts) {
        return fail(std::string("The recorder's answer about the browsers could not be read."));
    }
    return std::move(*texts);
}

Result<void, std::string> presentRecorder() {
    if (auto answer = callRecorderCommand(RecorderCommand::present); !answer.ok()) {
        return fail(commandClientErrorMessage(answer.error()));
    }
    return {};
}

}  // namespace lumenote::runtime
