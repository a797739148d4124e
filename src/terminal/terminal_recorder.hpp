// TerminalRecorder: the front end of `lumenote-cli record` over the recorder
// runtime. On a terminal it draws a live status line, reads keys and asks its
// questions (subject, recovery, time without input, quitting); without one it
// prints a timestamped line whenever what it says changes and asks nothing.
#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <functional>
#include <memory>
#include <optional>
#include <ostream>

#include "foundation/dates.hpp"
#include "runtime/recorder_runtime.hpp"
#include "terminal/line_editor.hpp"
#include "terminal/run_terminal_recorder.hpp"

namespace lumenote::terminal {

class TerminalRecorder final : public QObject, public runtime::RecorderFrontEnd {
    Q_OBJECT

  public:
    struct Setup {
        std::ostream& out;
        bool interactive = false;
        // The session to start once a pending recovery is settled; nullopt
        // when a recovered session was continued instead.
        recording::SessionStartRequest startRequest;
        // What to do with an unfinished session; empty to ask (on a
        // terminal) or to leave it pending (without one).
        std::optional<RecoveryChoice> recovery;
        // Called once the session of `startRequest` exists; may be empty.
        std::function<void(const recording::StudySession&)> sessionStarted;
        // True once, on the first use of studying away from the computer,
        // when its introduction is to be shown (and marks it shown).
        std::function<bool()> introduceAwayStudy;
    };

    // Runs a recorder runtime over `services`, which must outlive it, with
    // itself as the front end.
    TerminalRecorder(Setup setup, runtime::RecorderServices& services);
    ~TerminalRecorder() override;

    runtime::RecorderRuntime& recorder() { return runtime_; }

    // Settles a pending recovery as the setup says, or offers it on a
    // terminal, and starts the session, first asking for a subject when it
    // has none. The request's own checks come first: a refused request
    // leaves an unfinished session untouched. Returns false when recording
    // could not start; the reason has been printed.
    bool begin();

    // What the runtime tells its front end.
    void refresh() override;
    void controlled(runtime::RecorderControl control) override;
    void showError(const std::string& message) override;
    void noInputQuestionArrived(const recording::NoInputClassificationPrompt& prompt) override;
    void sessionEnded(const std::optional<recording::StudySession>& finished,
                      const std::vector<recording::PersonalBest>& bests) override;
    void terminated(const std::string& reason) override;
    Result<void, std::string> present() override;

  private:
    enum class Question { none, subject, recovery, prompt, quit };

    recording::SessionManager& manager() { return runtime_.manager(); }
    void onKey();
    void handleKey(char key);
    void answerSubject(char key);
    bool startOrAskSubject();
    bool startSession();
    void answerRecovery(char key);
    void answerPrompt(char key);
    void answerQuit(char key);
    void ask(Question question, const std::string& text);
    void say(const std::string& line);
    void draw();
    // "[09:41:02] ": the local time, for lines printed without a terminal.
    std::string timestamp() const;
    // The terminal's width in characters, less one so that a full line never
    // wraps; 0 when it cannot be read.
    std::size_t lineWidth() const;

    Setup setup_;
    LocalCalendar calendar_;
    runtime::RecorderServices& services_;
    runtime::RecorderRuntime runtime_;
    std::unique_ptr<QSocketNotifier> keyNotifier_;
    Question question_ = Question::none;
    bool ended_ = false;
    std::string lastPlainLine_;
    LineEditor subjectEditor_;
};

}  // namespace lumenote::terminal
