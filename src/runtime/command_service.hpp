// RecorderCommandService: the session-bus service through which other
// processes (lumenote-cli, a desktop shortcut) command the running recorder.
#pragma once

#include <QDBusConnection>
#include <QObject>

#include <memory>
#include <string>

#include "foundation/result.hpp"
#include "runtime/command_protocol.hpp"

namespace lumenote::runtime {

// What the service does with each command; the recorder runtime implements
// it over its session manager. Called on the thread of the service. A handler
// must not stop the service from inside a command (for example when the
// session ends): defer it to the loop (QTimer::singleShot(0, ...)) so that the
// answer goes out first.
class RecorderCommandHandler {
  public:
    virtual ~RecorderCommandHandler() = default;
    // Pauses a running session or resumes a paused one.
    // A refusal carries the sentence the caller shows: the bus carries
    // sentences, not the recorder's failure cases.
    virtual Result<void, std::string> togglePause() = 0;
    virtual Result<void, std::string> endSession() = 0;
    virtual Result<void, std::string> startPassiveStudy() = 0;
    virtual Result<void, std::string> returnToComputerStudy() = 0;
    virtual RecorderStatus status() = 0;
    // The browser events handled lately, as bridge/browser_event_log.hpp's
    // JSON document.
    virtual std::string browserEvents() = 0;
    // Each browser's status, as a JSON object from the browser's case name to
    // its lines of `browser status`.
    virtual std::string browserStatus() = 0;
    // Brings the recorder's window forward (another start of the desktop
    // application asks for it); refused where there is none to show.
    virtual Result<void, std::string> present() = 0;
};

enum class CommandServiceFailure { noSessionBus, nameTaken, objectNotExported };
std::string commandServiceFailureMessage(CommandServiceFailure failure);

// Exports kCommandServicePath with the methods TogglePause, EndSession,
// StartPassiveStudy, ReturnToComputerStudy and Status, which return the status
// document (command_protocol.hpp) after the command, and BrowserEvents, which
// returns the browser event log, BrowserStatus, which returns each
// browser's status, and Present; a refused command replies
// with the kCommandRefusedError error carrying the handler's sentence.
//
// The name is requested without queueing and without allowing replacement,
// so a second recorder cannot take it while this one holds it.
class RecorderCommandService : public QObject {
    Q_OBJECT

  public:
    // `handler` must outlive the service.
    RecorderCommandService(RecorderCommandHandler& handler, QDBusConnection sessionBus,
                           QObject* parent = nullptr);
    ~RecorderCommandService() override;

    // Exports the object, then takes the name (so a client that sees the name
    // can call at once). On failure nothing stays exported.
    Result<void, CommandServiceFailure> start();
    // Releases the name and withdraws the object; harmless when not started.
    void stop();
    bool isRunning() const { return running_; }

  private:
    QDBusConnection bus_;
    std::unique_ptr<QObject> exported_;
    bool running_ = false;
};

}  // namespace lumenote::runtime
