#include "terminal/terminal_recorder.hpp"

#include <fmt/format.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <chrono>

#include "foundation/text.hpp"
#include "recording/session_figures.hpp"
#include "terminal/record_view.hpp"

namespace lumenote::terminal {

namespace {

using PromptAnswer = recording::SessionManager::NoInputPromptAnswer;
using runtime::RecorderControl;

}  // namespace

TerminalRecorder::TerminalRecorder(Setup setup, runtime::RecorderServices& services)
    : setup_(std::move(setup)),
      calendar_(LocalCalendar::current()),
      services_(services),
      runtime_(services, *this) {
    if (setup_.interactive) {
        keyNotifier_ = std::make_unique<QSocketNotifier>(STDIN_FILENO, QSocketNotifier::Read, this);
        connect(keyNotifier_.get(), &QSocketNotifier::activated, this, &TerminalRecorder::onKey);
    }
}

TerminalRecorder::~TerminalRecorder() = default;

bool TerminalRecorder::begin() {
    // A subject still to be asked for is checked once it is typed.
    const bool subjectAsked =
        setup_.interactive && text::trimmed(setup_.startRequest.subject).empty();
    if (!subjectAsked && setup_.recovery != RecoveryChoice::continueSession) {
        if (auto refused = recording::SessionManager::checkStartRequest(setup_.startRequest);
            !refused.ok()) {
            showError(refused.error().message());
            return false;
        }
    }
    const auto& summary = manager().pendingRecoverySummary();
    if (!summary) {
        return startOrAskSubject();
    }
    const std::string subject = manager().pendingRecoverySession()->subject;
    if (setup_.recovery == RecoveryChoice::continueSession) {
        if (!runtime_.continueRecoveredSession().ok()) {
            return false;
        }
        say(
            fmt::format("Continuing \"{}\" from now; the time since the last confirmed moment is "
                        "left out.",
                        subject));
        if (setup_.interactive) {
            say(keyHelp(false, false));
        }
        return true;
    }
    if (setup_.recovery == RecoveryChoice::endSession) {
        if (!runtime_.endRecoveredSession().ok()) {
            return false;
        }
        say(fmt::format("The unfinished session \"{}\" was ended as interrupted.", subject));
        return startOrAskSubject();
    }
    if (setup_.interactive) {
        ask(Question::recovery, recoveryOffer(*summary, subject, calendar_));
        return true;
    }
    // Nobody can be asked: the unfinished session stays as it is until the
    // user says what to do with it.
    showError(fmt::format(
        "The unfinished session \"{}\" waits for recovery, so nothing was started. Run "
        "`lumenote-cli record --recovery continue` to go on with it, or add `--recovery end` "
        "to end it as interrupted and start this one.",
        subject));
    return false;
}

namespace {

constexpr std::string_view kSubjectPrompt = "Subject: ";

}  // namespace

bool TerminalRecorder::startOrAskSubject() {
    if (setup_.interactive && text::trimmed(setup_.startRequest.subject).empty()) {
        subjectEditor_.clear();
        question_ = Question::subject;
        setup_.out << subjectEditor_.render(kSubjectPrompt) << std::flush;
        return true;
    }
    return startSession();
}

// A subject that cannot start a session is asked for again; Ctrl-D on an
// empty line leaves without starting anything, as a shell does.
void TerminalRecorder::answerSubject(char key) {
    switch (subjectEditor_.feed(key)) {
        case LineEditor::Outcome::editing:
            setup_.out << subjectEditor_.render(kSubjectPrompt) << std::flush;
            return;
        case LineEditor::Outcome::abandoned:
            setup_.out << '\n';
            question_ = Question::none;
            say("No session was started.");
            runtime_.stop(0);
            return;
        case LineEditor::Outcome::submitted:
            break;
    }
    setup_.out << '\n';
    setup_.startRequest.subject = subjectEditor_.text();
    // An empty or overlong subject is asked for again.
    if (auto refused = recording::SessionManager::checkStartRequest(setup_.startRequest);
        !refused.ok() && (refused.error() == recording::SessionFailure::subjectMissing ||
                          refused.error() == recording::SessionFailure::subjectTooLong)) {
        setup_.out << refused.error().message() << '\n';
        subjectEditor_.clear();
        setup_.out << subjectEditor_.render(kSubjectPrompt) << std::flush;
        return;
    }
    question_ = Question::none;
    if (!startSession()) {
        runtime_.stop(1);
    }
}

bool TerminalRecorder::startSession() {
    // A refusal has been shown through showError().
    if (!runtime_.start(setup_.startRequest).ok()) {
        return false;
    }
    const recording::StudySession& session = *manager().activeSession();
    if (setup_.sessionStarted) {
        setup_.sessionStarted(session);
    }
    say(fmt::format(
        "Recording \"{}\"{}.", session.subject,
        session.timingMode() == recording::SessionTimingMode::timer
            ? fmt::format(" for {}", recording::clockDurationText(session.plannedDuration))
            : std::string(", open-ended")));
    if (setup_.interactive) {
        say(keyHelp(false, false));
    } else {
        say("Stop with `lumenote-cli end` (or SIGTERM, which keeps the session for recovery).");
    }
    draw();
    return true;
}

void TerminalRecorder::refresh() {
    draw();
}

void TerminalRecorder::controlled(runtime::RecorderControl control) {
    const bool away = manager().liveStudyState() == recording::LiveStudyState::passiveStudy;
    const bool paused = manager().activeSession() && manager().activeSession()->status() ==
                                                         recording::StudySessionStatus::paused;
    switch (control) {
        case runtime::RecorderControl::pause:
            say("Paused.");
            break;
        case runtime::RecorderControl::resume:
            say("Resumed.");
            break;
        case runtime::RecorderControl::away:
            if (setup_.introduceAwayStudy && setup_.introduceAwayStudy()) {
                say(std::string(recording::kPassiveStudyIntroduction));
            }
            say(fmt::format("{}.", recording::kStudyingAwayFromMac));
            break;
        case runtime::RecorderControl::back:
            say(fmt::format("{}.", recording::kBackToComputerStudyControl));
            break;
        case runtime::RecorderControl::end:
        case runtime::RecorderControl::status:
            return;
    }
    // The keys' meanings follow the state: p resumes, a comes back.
    if (setup_.interactive) {
        say(keyHelp(paused, away));
    }
}

void TerminalRecorder::showError(const std::string& message) {
    say(message);
}

void TerminalRecorder::noInputQuestionArrived(
    const recording::NoInputClassificationPrompt& prompt) {
    if (setup_.interactive) {
        ask(Question::prompt, promptQuestion(prompt, calendar_));
        return;
    }
    // No questions without a terminal: the time stays unconfirmed and can be
    // relabelled afterwards.
    say(recording::noInputPromptText(prompt, calendar_) + " Left unconfirmed; relabel it later.");
    (void)runtime_.answerNoInputQuestion(PromptAnswer::leaveUnconfirmed);
}

void TerminalRecorder::sessionEnded(const std::optional<recording::StudySession>& finished,
                                    const std::vector<recording::PersonalBest>& bests) {
    ended_ = true;
    if (finished) {
        if (setup_.interactive) {
            setup_.out << "\r\033[2K";
        }
        setup_.out << '\n' << sessionSummary(*finished, bests) << std::flush;
    }
    // The terminal records one session.
    runtime_.stop(0);
}

Result<void, std::string> TerminalRecorder::present() {
    return fail(std::string(
        "Lumenote is recording in a terminal (lumenote-cli record), which has no window to show."));
}

void TerminalRecorder::terminated(const std::string& reason) {
    // The live line is not drawn again behind the last message.
    ended_ = true;
    say(fmt::format("{}: the session was saved and will be offered for recovery next time.",
                    reason));
}

void TerminalRecorder::onKey() {
    char buffer[16];
    const ssize_t count = ::read(STDIN_FILENO, buffer, sizeof buffer);
    if (count <= 0) {
        // The terminal went away: keep recording without keys.
        keyNotifier_->setEnabled(false);
        return;
    }
    for (ssize_t i = 0; i < count && !runtime_.stopped(); ++i) {
        handleKey(buffer[i]);
    }
}

void TerminalRecorder::handleKey(char key) {
    switch (question_) {
        case Question::subject:
            answerSubject(key);
            return;
        case Question::recovery:
            answerRecovery(key);
            return;
        case Question::prompt:
            answerPrompt(key);
            return;
        case Question::quit:
            answerQuit(key);
            return;
        case Question::none:
            break;
    }
    switch (key) {
        case 'p':
            (void)runtime_.togglePause();
            break;
        case 'a':
            (void)(manager().liveStudyState() == recording::LiveStudyState::passiveStudy
                       ? runtime_.returnToComputerStudy()
                       : runtime_.startPassiveStudy());
            break;
        case 'e':
            (void)runtime_.endSession();
            break;
        case 'q':
            ask(Question::quit, quitQuestion());
            break;
        default:
            break;
    }
    draw();
}

void TerminalRecorder::answerRecovery(char key) {
    if (key == 'c') {
        question_ = Question::none;
        if (runtime_.continueRecoveredSession().ok()) {
            say("Continuing from now; the time since the last confirmed moment is left out.");
            say(keyHelp(false, false));
        }
    } else if (key == 'e') {
        question_ = Question::none;
        if (runtime_.endRecoveredSession().ok()) {
            say("The unfinished session was ended as interrupted.");
        }
        if (!startOrAskSubject()) {
            runtime_.stop(1);
        }
    }
}

void TerminalRecorder::answerPrompt(char key) {
    std::optional<PromptAnswer> answer;
    switch (key) {
        case 's':
            answer = PromptAnswer::passiveStudy;
            break;
        case 'b':
            answer = PromptAnswer::confirmedBreak;
            break;
        case 'l':
            answer = PromptAnswer::leaveUnconfirmed;
            break;
        case 'x':
            answer = PromptAnswer::endThere;
            break;
        default:
            return;
    }
    // A refused answer has been shown; the question stays open for another
    // key, except a refused end, which only a long run offers.
    if (!runtime_.answerNoInputQuestion(*answer).ok() && key != 'x') {
        return;
    }
    question_ = Question::none;
}

void TerminalRecorder::answerQuit(char key) {
    if (key == 'k') {
        question_ = Question::none;
        say("Still recording.");
    } else if (key == 'e') {
        question_ = Question::none;
        (void)runtime_.end();
    } else if (key == 'i') {
        question_ = Question::none;
        (void)runtime_.endAsInterrupted();
    }
}

void TerminalRecorder::ask(Question question, const std::string& text) {
    question_ = question;
    say(text);
}

void TerminalRecorder::say(const std::string& line) {
    if (setup_.interactive) {
        setup_.out << "\r\033[2K";
    } else {
        setup_.out << timestamp();
    }
    setup_.out << line << '\n' << std::flush;
    draw();
}

void TerminalRecorder::draw() {
    const auto& session = manager().activeSession();
    if (!session || ended_) {
        return;
    }
    RecordingSnapshot snapshot;
    snapshot.subject = session->subject;
    snapshot.goal = session->goal;
    snapshot.status = session->status();
    snapshot.timingMode = session->timingMode();
    snapshot.plannedDuration = session->plannedDuration;
    snapshot.timerValue = manager().currentTimerValue();
    snapshot.pauseDuration = manager().currentPauseDuration();
    snapshot.liveState = manager().liveStudyState();
    snapshot.activityName = manager().currentApplicationName();
    snapshot.classification = manager().currentClassification();
    snapshot.sleeping = manager().isSleeping();
    snapshot.browserWarning = services_.browserWarning();
    if (setup_.interactive) {
        if (question_ == Question::none) {
            setup_.out << "\r\033[2K" << statusLine(snapshot, lineWidth()) << std::flush;
        }
        return;
    }
    // Without a terminal a line is printed only when what it says changes
    // (not every second): the timer is left out of the comparison.
    RecordingSnapshot key = snapshot;
    key.timerValue = 0.0;
    key.pauseDuration = 0.0;
    const std::string unchanging = statusLine(key);
    if (unchanging != lastPlainLine_) {
        lastPlainLine_ = unchanging;
        setup_.out << timestamp() << statusLine(snapshot) << '\n' << std::flush;
    }
}

std::size_t TerminalRecorder::lineWidth() const {
    winsize size{};
    if (::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col < 2) {
        return 0;
    }
    return static_cast<std::size_t>(size.ws_col) - 1;
}

std::string TerminalRecorder::timestamp() const {
    const Date now = systemNow();
    return "[" + calendar_.formatIso8601(now).substr(11, 8) + "] ";
}

}  // namespace lumenote::terminal
