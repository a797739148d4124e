#include "runtime/command_protocol.hpp"

#include <algorithm>
#include <cmath>
#include <utility>

#include <nlohmann/json.hpp>

#include "foundation/numeric.hpp"

namespace lumenote::runtime {

namespace {

constexpr std::array<std::pair<RecorderCommand, std::string_view>, 8> kMethods{{
    {RecorderCommand::togglePause, "TogglePause"},
    {RecorderCommand::endSession, "EndSession"},
    {RecorderCommand::startPassiveStudy, "StartPassiveStudy"},
    {RecorderCommand::returnToComputerStudy, "ReturnToComputerStudy"},
    {RecorderCommand::status, "Status"},
    {RecorderCommand::browserEvents, "BrowserEvents"},
    {RecorderCommand::browserStatus, "BrowserStatus"},
    {RecorderCommand::present, "Present"},
}};

constexpr std::string_view kIdleState = "idle";

// Whole seconds from 0 to a century (kMaximumDurationSeconds); a value that is
// not a number counts as zero. The bound keeps the conversion defined for any
// double, such as one read from another process's answer.
long long wholeSeconds(double seconds, double (*round)(double)) {
    if (!std::isfinite(seconds) || seconds <= 0.0) {
        return 0;
    }
    return static_cast<long long>(round(std::min(seconds, kMaximumDurationSeconds)));
}

// A raw-valued field that must name a known case; nullopt when it does not.
template <typename E>
std::optional<E> enumField(const nlohmann::json& object, const char* key) {
    const auto found = object.find(key);
    if (found == object.end() || !found->is_string()) {
        return std::nullopt;
    }
    return fromRawValue<E>(found->get_ref<const std::string&>());
}

}  // namespace

std::string_view recorderCommandMethod(RecorderCommand command) {
    for (const auto& [candidate, method] : kMethods) {
        if (candidate == command) {
            return method;
        }
    }
    return {};
}

std::optional<RecorderCommand> recorderCommandFromMethod(std::string_view method) {
    for (const auto& [command, name] : kMethods) {
        if (name == method) {
            return command;
        }
    }
    return std::nullopt;
}

std::string recorderStatusJson(const RecorderStatus& status) {
    nlohmann::json object;
    if (status.lastActivation) {
        object["lastActivation"] = status.lastActivation->unixSeconds();
    }
    if (!status.sessionActive) {
        object["state"] = kIdleState;
        return object.dump();
    }
    object["state"] = rawValue(status.state);
    object["subject"] = status.subject;
    object["elapsedSeconds"] = wholeSeconds(status.elapsedSeconds, std::floor);
    if (status.remainingSeconds) {
        object["remainingSeconds"] = wholeSeconds(*status.remainingSeconds, std::ceil);
    } else {
        object["remainingSeconds"] = nullptr;
    }
    object["activity"] = status.currentActivity;
    object["classification"] = rawValue(status.currentClassification);
    object["studyState"] = rawValue(status.studyState);
    object["asleep"] = status.asleep;
    if (!status.browserWarning.empty()) {
        object["browserWarning"] = status.browserWarning;
    }
    if (!status.observationWarning.empty()) {
        object["observationWarning"] = status.observationWarning;
    }
    return object.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

std::string recorderStatusParseErrorMessage(RecorderStatusParseError error) {
    switch (error) {
        case RecorderStatusParseError::malformed:
            return "The recorder answered with a status Lumenote cannot read.";
    }
    return {};
}

namespace {

// The end of the year 9999: a later activation time cannot be shown as a
// date, and comes only from a damaged answer.
constexpr double kLatestActivationUnixSeconds = 253402300799.0;

}  // namespace

Result<RecorderStatus, RecorderStatusParseError> parseRecorderStatus(std::string_view json) {
    const nlohmann::json object = nlohmann::json::parse(json, nullptr, false);
    if (object.is_discarded() || !object.is_object()) {
        return fail(RecorderStatusParseError::malformed);
    }
    const auto state = object.find("state");
    if (state == object.end() || !state->is_string()) {
        return fail(RecorderStatusParseError::malformed);
    }
    RecorderStatus status;
    if (const auto seen = object.find("lastActivation");
        seen != object.end() && seen->is_number() && seen->get<double>() >= 0.0 &&
        seen->get<double>() <= kLatestActivationUnixSeconds) {
        status.lastActivation = Date::fromUnixSeconds(seen->get<double>());
    }
    if (state->get_ref<const std::string&>() == kIdleState) {
        return status;
    }
    const auto sessionState = enumField<recording::StudySessionStatus>(object, "state");
    const auto classification =
        enumField<classification::ActivityClassification>(object, "classification");
    const auto studyState = enumField<recording::LiveStudyState>(object, "studyState");
    const auto subject = object.find("subject");
    const auto elapsed = object.find("elapsedSeconds");
    const auto remaining = object.find("remainingSeconds");
    const auto activity = object.find("activity");
    const auto asleep = object.find("asleep");
    if (!sessionState || !classification || !studyState || subject == object.end() ||
        !subject->is_string() || elapsed == object.end() || !elapsed->is_number() ||
        remaining == object.end() || !(remaining->is_null() || remaining->is_number()) ||
        activity == object.end() || !activity->is_string() || asleep == object.end() ||
        !asleep->is_boolean()) {
        return fail(RecorderStatusParseError::malformed);
    }
    status.sessionActive = true;
    status.state = *sessionState;
    status.subject = subject->get<std::string>();
    status.elapsedSeconds = elapsed->get<double>();
    if (remaining->is_number()) {
        status.remainingSeconds = remaining->get<double>();
    }
    status.currentActivity = activity->get<std::string>();
    status.currentClassification = *classification;
    status.studyState = *studyState;
    status.asleep = asleep->get<bool>();
    if (const auto warning = object.find("browserWarning");
        warning != object.end() && warning->is_string()) {
        status.browserWarning = warning->get<std::string>();
    }
    if (const auto warning = object.find("observationWarning");
        warning != object.end() && warning->is_string()) {
        status.observationWarning = warning->get<std::string>();
    }
    return status;
}

std::optional<std::map<std::string, std::string>> parseBrowserStatusTexts(std::string_view json) {
    const nlohmann::json parsed = nlohmann::json::parse(json, nullptr, false);
    if (!parsed.is_object()) {
        return std::nullopt;
    }
    std::map<std::string, std::string> texts;
    for (const auto& [browser, text] : parsed.items()) {
        if (text.is_string()) {
            texts[browser] = text.get<std::string>();
        }
    }
    return texts;
}

}  // namespace lumenote::runtime
