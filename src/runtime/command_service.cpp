#include "runtime/command_service.hpp"

#include <QDBusConnectionInterface>
#include <QDBusContext>

namespace lumenote::runtime {

namespace {

// The object seen on the bus: one slot a method, each answered with the
// status after the command.
class CommandServiceObject : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.tallywise.Lumenote")

  public:
    explicit CommandServiceObject(RecorderCommandHandler& handler) : handler_(handler) {}

  public Q_SLOTS:
    QString TogglePause() { return answer(handler_.togglePause()); }
    QString EndSession() { return answer(handler_.endSession()); }
    QString StartPassiveStudy() { return answer(handler_.startPassiveStudy()); }
    QString ReturnToComputerStudy() { return answer(handler_.returnToComputerStudy()); }
    QString Status() { return currentStatus(); }
    QString BrowserEvents() { return QString::fromStdString(handler_.browserEvents()); }
    QString BrowserStatus() { return QString::fromStdString(handler_.browserStatus()); }
    QString Present() { return answer(handler_.present()); }

  private:
    QString answer(const Result<void, std::string>& outcome) {
        if (!outcome) {
            sendErrorReply(QString::fromLatin1(kCommandRefusedError),
                           QString::fromStdString(outcome.error()));
            return {};
        }
        return currentStatus();
    }
    QString currentStatus() {
        return QString::fromStdString(recorderStatusJson(handler_.status()));
    }

    RecorderCommandHandler& handler_;
};

}  // namespace

std::string commandServiceFailureMessage(CommandServiceFailure failure) {
    switch (failure) {
        case CommandServiceFailure::noSessionBus:
            return "The session bus cannot be reached, so this recording cannot be controlled "
                   "with lumenote-cli or a desktop shortcut.";
        case CommandServiceFailure::nameTaken:
            return "Another Lumenote recorder already takes commands on the session bus.";
        case CommandServiceFailure::objectNotExported:
            return "Lumenote could not offer its commands on the session bus.";
    }
    return {};
}

RecorderCommandService::RecorderCommandService(RecorderCommandHandler& handler,
                                               QDBusConnection sessionBus, QObject* parent)
    : QObject(parent),
      bus_(std::move(sessionBus)),
      exported_(std::make_unique<CommandServiceObject>(handler)) {}

RecorderCommandService::~RecorderCommandService() {
    stop();
}

Result<void, CommandServiceFailure> RecorderCommandService::start() {
    if (running_) {
        return {};
    }
    if (!bus_.isConnected() || bus_.interface() == nullptr) {
        return fail(CommandServiceFailure::noSessionBus);
    }
    const QString path = QString::fromLatin1(kCommandServicePath);
    if (!bus_.registerObject(path, exported_.get(), QDBusConnection::ExportAllSlots)) {
        return fail(CommandServiceFailure::objectNotExported);
    }
    const QDBusReply<QDBusConnectionInterface::RegisterServiceReply> reply =
        bus_.interface()->registerService(QString::fromLatin1(kCommandServiceName),
                                          QDBusConnectionInterface::DontQueueService,
                                          QDBusConnectionInterface::DontAllowReplacement);
    if (!reply.isValid() || reply.value() != QDBusConnectionInterface::ServiceRegistered) {
        bus_.unregisterObject(path);
        return fail(CommandServiceFailure::nameTaken);
    }
    running_ = true;
    return {};
}

void RecorderCommandService::stop() {
    if (!running_) {
        return;
    }
    running_ = false;
    bus_.unregisterService(QString::fromLatin1(kCommandServiceName));
    bus_.unregisterObject(QString::fromLatin1(kCommandServicePath));
}

}  // namespace lumenote::runtime

#include "command_service.moc"
