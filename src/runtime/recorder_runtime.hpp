// RecorderRuntime: the recording process's loop, shared by every front end.
// It ticks the session manager once a second, delivers the desktop's events
// (activation, sleep and wake, lock, shutdown) and termination signals to it
// on the same thread, serves the command service on the session bus, and
// carries out the operations a front end asks for. It is the one place that
// keeps the last error to show: every refused operation and every problem
// the manager meets on its own goes through it to the front end.
#pragma once

#include <QFileSystemWatcher>
#include <QObject>
#include <QSocketNotifier>
#include <QTimer>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "runtime/command_service.hpp"
#include "runtime/recorder_front_end.hpp"
#include "runtime/recorder_services.hpp"

namespace lumenote::platform::linux_desktop {
class LinuxSystemEventSource;
class SignalBridge;
}  // namespace lumenote::platform::linux_desktop

namespace lumenote::runtime {

class RecorderRuntime final : public QObject {
    Q_OBJECT

  public:
    // `services` and `frontEnd` must outlive the runtime.
    RecorderRuntime(RecorderServices& services, RecorderFrontEnd& frontEnd);
    ~RecorderRuntime() override;

    // Starts listening to the system's events and termination signals and
    // starts the tick. Returns what could not be set up, as sentences to show
    // (recording goes on without it).
    std::vector<std::string> begin();
    // Takes the command service's bus name so other processes can command
    // this recorder; the sentence to show when it could not.
    std::optional<std::string> serveCommands();

    recording::SessionManager& manager() { return services_.manager(); }
    RecorderServices& services() { return services_; }

    // The operations a front end asks for. A failure is kept as lastError()
    // and shown through the front end before it is returned.
    Result<void, recording::SessionError> start(const recording::SessionStartRequest& request);
    Result<void, recording::SessionError> continueRecoveredSession();
    Result<void, recording::SessionError> endRecoveredSession();
    Result<void, recording::SessionError> answerNoInputQuestion(
        recording::SessionManager::NoInputPromptAnswer answer);
    Result<void, recording::SessionError> end();
    Result<void, recording::SessionError> endAsInterrupted();

    // The commands of the command service, which the front end's own
    // controls call too.
    Result<void, recording::SessionError> togglePause();
    Result<void, recording::SessionError> endSession();
    Result<void, recording::SessionError> startPassiveStudy();
    Result<void, recording::SessionError> returnToComputerStudy();
    RecorderStatus status();
    // The sentence saying that the application in front could not be seen
    // during the session `session`, as last noticed while it ran; empty when
    // it was seen throughout (or the session is not the latest one).
    std::string observationWarningFor(const Uuid& session) const;

    // A termination signal or the system shutting down: the final checkpoint
    // is written and the session left for recovery, then the loop stops.
    void terminate(const std::string& reason);
    // Stops the loop with `status`; the process's exit status.
    void stop(int status);
    int exitStatus() const { return exitStatus_; }
    bool stopped() const { return stopped_; }

    const std::optional<std::string>& lastError() const { return lastError_; }
    void clearLastError() { lastError_.reset(); }

  private:
    // Remembers, once a tick, whether the active session's application in
    // front can be seen.
    void noteObservationGap();

    // Answers the command service: the runtime's commands with their
    // failures as the sentences the caller shows.
    class CommandAnswers final : public RecorderCommandHandler {
      public:
        explicit CommandAnswers(RecorderRuntime& runtime) : runtime_(runtime) {}
        Result<void, std::string> togglePause() override;
        Result<void, std::string> endSession() override;
        Result<void, std::string> startPassiveStudy() override;
        Result<void, std::string> returnToComputerStudy() override;
        RecorderStatus status() override { return runtime_.status(); }
        Result<void, std::string> present() override;
        std::string browserEvents() override;
        std::string browserStatus() override;

      private:
        RecorderRuntime& runtime_;
    };

    void onTick();
    void onActivation();
    // Browser events: drained on every tick, again after a short pause while
    // a backlog remains, and sampled at once when the host drops one.
    void drainBrowserEvents();
    void onBrowserEventArrived();
    // Keeps and shows the failure of `outcome`, then returns it.
    Result<void, recording::SessionError> shown(Result<void, recording::SessionError> outcome);
    void show(const recording::SessionError& error);
    // Tells the front end of a new question and of a session's end.
    void followSession();

    RecorderServices& services_;
    RecorderFrontEnd& frontEnd_;
    ObserverList<recording::SessionError>::Token problemsObservation_ = 0;
    QTimer ticker_;
    std::unique_ptr<QSocketNotifier> activationNotifier_;
    QTimer browserDrain_;
    QFileSystemWatcher inboxWatcher_;
    std::unique_ptr<platform::linux_desktop::LinuxSystemEventSource> systemEvents_;
    std::unique_ptr<platform::linux_desktop::SignalBridge> signalBridge_;
    CommandAnswers commandAnswers_{*this};
    std::unique_ptr<RecorderCommandService> commandService_;
    std::optional<std::string> lastError_;
    std::optional<Uuid> observedSession_;
    std::string observationGap_;
    std::optional<Uuid> questionTold_;
    // The active session as last seen, so that its end is told once.
    std::optional<Uuid> followedSession_;
    bool stopped_ = false;
    int exitStatus_ = 0;
};

}  // namespace lumenote::runtime
