#include "runtime/command_client.hpp"

#include <QDBusMessage>

#include <fmt/format.h>

namespace lumenote::runtime {

namespace {

bool isAnyOf(const QString& name, std::initializer_list<const char*> names) {
    for (const char* candidate : names) {
        if (name == QLatin1String(candidate)) {
            return true;
        }
    }
    return false;
}

CommandClientError errorOf(const QDBusMessage& reply) {
    const QString name = reply.errorName();
    if (isAnyOf(name, {"org.freedesktop.DBus.Error.ServiceUnknown",
                       "org.freedesktop.DBus.Error.NameHasNoOwner"})) {
        return {CommandClientFailure::nothingRecording, {}};
    }
    if (isAnyOf(name, {"org.freedesktop.DBus.Error.NoReply", "org.freedesktop.DBus.Error.Timeout",
                       "org.freedesktop.DBus.Error.TimedOut"})) {
        return {CommandClientFailure::noAnswer, {}};
    }
    if (name == QLatin1String(kCommandRefusedError)) {
        return {CommandClientFailure::refused, reply.errorMessage().toStdString()};
    }
    return {CommandClientFailure::failed, reply.errorMessage().toStdString()};
}

}  // namespace

std::string commandClientErrorMessage(const CommandClientError& error) {
    switch (error.failure) {
        case CommandClientFailure::noSessionBus:
            return "Lumenote cannot reach the session bus, so it cannot talk to the recorder.";
        case CommandClientFailure::nothingRecording:
            return "Nothing is recording: no Lumenote session is active.";
        case CommandClientFailure::noAnswer:
            return "The Lumenote recorder did not answer in time.";
        case CommandClientFailure::refused:
            return error.detail;
        case CommandClientFailure::failed:
            return fmt::format("The Lumenote recorder could not be reached: {}", error.detail);
    }
    return {};
}

Result<std::string, CommandClientError> callRecorderCommand(RecorderCommand command,
                                                            QDBusConnection sessionBus,
                                                            int timeoutMilliseconds) {
    if (!sessionBus.isConnected()) {
        return fail(CommandClientError{CommandClientFailure::noSessionBus, {}});
    }
    QDBusMessage message = QDBusMessage::createMethodCall(
        QString::fromLatin1(kCommandServiceName), QString::fromLatin1(kCommandServicePath),
        QString::fromLatin1(kCommandServiceInterface),
        QString::fromLatin1(recorderCommandMethod(command).data(),
                            static_cast<qsizetype>(recorderCommandMethod(command).size())));
    message.setAutoStartService(false);
    const QDBusMessage reply = sessionBus.call(message, QDBus::Block, timeoutMilliseconds);
    if (reply.type() != QDBusMessage::ReplyMessage) {
        return fail(errorOf(reply));
    }
    if (reply.arguments().isEmpty()) {
        return fail(CommandClientError{CommandClientFailure::failed, "it sent an empty answer"});
    }
    return reply.arguments().constFirst().toString().toStdString();
}

}  // namespace lumenote::runtime
