// The recorder's event loop side: ticks the session manager once a second,
// hands it the desktop's events, answers the bus service's commands, and
// talks to the user on the terminal (or prints plain lines without one).
#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <QTimer>
#include <functional>
#include <memory>
#include <optional>
#include <ostream>

#include "foundation/dates.hpp"
#include "platform/linux/command_service.hpp"
#include "recording/session_manager.hpp"

namespace lumenote::recorder {

class RecorderHost final : public QObject, public RecorderCommandHandler {
    Q_OBJECT

  public:
    struct Setup {
        SessionManager& manager;
        std::ostream& out;
        bool interactive = false;
        // Called when the frontmost window may have changed (an X11
        // connection's activation events); may be empty.
        int activationDescriptor = -1;
        std::function<bool()> activationChanged;
        // The session to start once a pending recovery is settled; nullopt
        // when a recovered session was continued instead.
        SessionStartRequest startRequest;
        // Called once the session of `startRequest` exists; may be empty.
        std::function<void(const StudySession&)> sessionStarted;
        // True once, on the first use of studying away from the computer,
        // when its introduction is to be shown (and marks it shown).
        std::function<bool()> introduceAwayStudy;
    };

    explicit RecorderHost(Setup setup);
    ~RecorderHost() override;

    // Offers a pending recovery (or settles it without a terminal), starts
    // the session and the once-a-second tick. Returns false when the session
    // could not start; the reason has been printed.
    bool begin();
    // A termination signal or the system shutting down: write the final
    // checkpoint and leave the session for recovery.
    void terminate(const std::string& reason);
    // The exit status once the loop has stopped.
    int exitStatus() const { return exitStatus_; }

    // The bus service's commands.
    Result<void, std::string> togglePause() override;
    Result<void, std::string> endSession() override;
    Result<void, std::string> startPassiveStudy() override;
    Result<void, std::string> returnToComputerStudy() override;
    RecorderStatus status() override;

  private:
    enum class Question { none, subject, recovery, prompt, quit };

    void onTick();
    void onKey();
    void onActivation();
    void handleKey(char key);
    void answerSubject(char key);
    // Starts the session, first asking for a subject when it has none.
    bool startOrAskSubject();
    void answerRecovery(char key);
    void answerPrompt(char key);
    void answerQuit(char key);
    bool startSession();
    void ask(Question question, const std::string& text);
    void say(const std::string& line);
    void draw();
    // "[09:41:02] ": the local time, for lines printed without a terminal.
    std::string timestamp() const;
    void noteChange(ObservedField field);
    void finishIfEnded();
    void stop(int status);

    Setup setup_;
    ObserverList<ObservedField>::Token observation_ = 0;
    LocalCalendar calendar_;
    QTimer ticker_;
    std::unique_ptr<QSocketNotifier> keyNotifier_;
    std::unique_ptr<QSocketNotifier> activationNotifier_;
    Question question_ = Question::none;
    std::optional<Uuid> promptShown_;
    bool sessionStarted_ = false;
    bool stopped_ = false;
    int exitStatus_ = 0;
    std::string lastPlainLine_;
    std::string typedSubject_;
};

}  // namespace lumenote::recorder
