// callRecorderCommand: how lumenote-cli (or any other process) sends a command
// to the running recorder over the session bus.
#pragma once

#include <QDBusConnection>

#include <string>

#include "foundation/result.hpp"
#include "runtime/command_protocol.hpp"

namespace lumenote::runtime {

enum class CommandClientFailure {
    noSessionBus,
    nothingRecording,  // nobody owns the service name
    noAnswer,          // the recorder did not answer within the timeout
    refused,           // {the recorder's sentence}
    failed,            // {the bus's error text}
};

struct CommandClientError {
    CommandClientFailure failure = CommandClientFailure::failed;
    std::string detail;
};

// The sentence shown for `error`.
std::string commandClientErrorMessage(const CommandClientError& error);

// Calls `command` on the recorder and returns its answer, the status document
// (command_protocol.hpp). Never starts a recorder through bus activation.
// Blocks for at most `timeoutMilliseconds`. Needs a QCoreApplication.
Result<std::string, CommandClientError> callRecorderCommand(
    RecorderCommand command, QDBusConnection sessionBus = QDBusConnection::sessionBus(),
    int timeoutMilliseconds = 3000);

}  // namespace lumenote::runtime
