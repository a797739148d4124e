#include "recorder/recorder_host.hpp"

#include <fmt/format.h>
#include <unistd.h>

#include <QCoreApplication>
#include <cmath>

#include "foundation/text.hpp"
#include "recorder/record_view.hpp"
#include "recording/session_figures.hpp"

namespace lumenote::recorder {

namespace {

// The keys that answer each question, and what the manager is asked.
using PromptAnswer = SessionManager::NoInputPromptAnswer;

}  // namespace

RecorderHost::RecorderHost(Setup setup)
    : setup_(std::move(setup)), calendar_(LocalCalendar::current()) {
    ticker_.setTimerType(Qt::PreciseTimer);
    ticker_.setInterval(1000);
    connect(&ticker_, &QTimer::timeout, this, &RecorderHost::onTick);
    if (setup_.interactive) {
        keyNotifier_ = std::make_unique<QSocketNotifier>(STDIN_FILENO, QSocketNotifier::Read, this);
        connect(keyNotifier_.get(), &QSocketNotifier::activated, this, &RecorderHost::onKey);
    }
    if (setup_.activationDescriptor >= 0 && setup_.activationChanged) {
        activationNotifier_ = std::make_unique<QSocketNotifier>(setup_.activationDescriptor,
                                                                QSocketNotifier::Read, this);
        connect(activationNotifier_.get(), &QSocketNotifier::activated, this,
                &RecorderHost::onActivation);
    }
    observation_ =
        setup_.manager.observers().add([this](ObservedField field) { noteChange(field); });
}

RecorderHost::~RecorderHost() {
    setup_.manager.observers().remove(observation_);
}

bool RecorderHost::begin() {
    SessionManager& manager = setup_.manager;
    if (const auto& summary = manager.pendingRecoverySummary()) {
        const std::string subject = manager.pendingRecoverySession()->subject;
        if (setup_.interactive) {
            ask(Question::recovery, recoveryOffer(*summary, subject, calendar_));
            ticker_.start();
            return true;
        }
        // Without a terminal nobody can be asked: the unfinished session is
        // closed at its last confirmed moment, which keeps everything
        // confirmed and counts nothing uncertain.
        if (manager.endRecoveredSession().ok()) {
            say(fmt::format("The unfinished session \"{}\" was ended as interrupted.", subject));
        }
    }
    if (!startOrAskSubject()) {
        return false;
    }
    ticker_.start();
    return true;
}

bool RecorderHost::startOrAskSubject() {
    if (setup_.interactive && text::trimmed(setup_.startRequest.subject).empty()) {
        typedSubject_.clear();
        question_ = Question::subject;
        setup_.out << "\r\033[2KSubject: " << std::flush;
        return true;
    }
    return startSession();
}

void RecorderHost::answerSubject(char key) {
    if (key == '\n' || key == '\r') {
        setup_.out << '\n';
        question_ = Question::none;
        setup_.startRequest.subject = typedSubject_;
        if (!startSession()) {
            stop(1);
        }
        return;
    }
    if (key == 0x7f || key == '\b') {
        // Backspace removes the last character, and all bytes of one that is
        // longer than a byte.
        while (!typedSubject_.empty()) {
            const auto byte = static_cast<unsigned char>(typedSubject_.back());
            typedSubject_.pop_back();
            if ((byte & 0xC0) != 0x80) {
                break;
            }
        }
        setup_.out << "\r\033[2KSubject: " << typedSubject_ << std::flush;
        return;
    }
    if (static_cast<unsigned char>(key) >= 0x20) {
        typedSubject_ += key;
        setup_.out << key << std::flush;
    }
}

bool RecorderHost::startSession() {
    SessionManager& manager = setup_.manager;
    if (!manager.start(setup_.startRequest).ok()) {
        say(manager.lastError().value_or("The session could not start."));
        return false;
    }
    sessionStarted_ = true;
    const StudySession& session = *manager.activeSession();
    if (setup_.sessionStarted) {
        setup_.sessionStarted(session);
    }
    say(fmt::format("Recording \"{}\"{}.", session.subject,
                    session.timingMode() == SessionTimingMode::timer
                        ? fmt::format(" for {}", clockDurationText(session.plannedDuration))
                        : std::string(", open-ended")));
    if (setup_.interactive) {
        say(keyHelp(false, false));
    } else {
        say("Stop with `lumenote-cli end` (or SIGTERM, which keeps the session for recovery).");
    }
    draw();
    return true;
}

void RecorderHost::onTick() {
    if (stopped_) {
        return;
    }
    setup_.manager.tick();
    // Xlib may have read activation events off the socket during the tick's
    // own calls, where the socket notifier cannot see them.
    if (setup_.activationChanged && setup_.activationChanged()) {
        setup_.manager.applicationActivated();
    }
    finishIfEnded();
    if (stopped_) {
        return;
    }
    const auto& prompt = setup_.manager.pendingNoInputPrompt();
    if (prompt && promptShown_ != prompt->id) {
        promptShown_ = prompt->id;
        if (setup_.interactive) {
            ask(Question::prompt, promptQuestion(*prompt, calendar_));
        } else {
            // No questions without a terminal: the time stays unconfirmed
            // and can be relabelled afterwards.
            say(noInputPromptText(*prompt, calendar_) + " Left unconfirmed; relabel it later.");
            (void)setup_.manager.answerNoInputPrompt(PromptAnswer::leaveUnconfirmed);
        }
    }
    draw();
}

void RecorderHost::onActivation() {
    if (setup_.activationChanged()) {
        setup_.manager.applicationActivated();
        draw();
    }
}

void RecorderHost::onKey() {
    char buffer[16];
    const ssize_t count = ::read(STDIN_FILENO, buffer, sizeof buffer);
    if (count <= 0) {
        // The terminal went away: keep recording without keys.
        keyNotifier_->setEnabled(false);
        return;
    }
    for (ssize_t i = 0; i < count && !stopped_; ++i) {
        handleKey(buffer[i]);
    }
}

void RecorderHost::handleKey(char key) {
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
    SessionManager& manager = setup_.manager;
    switch (key) {
        case 'p':
            (void)togglePause();
            break;
        case 'a': {
            const bool away = manager.liveStudyState() == LiveStudyState::passiveStudy;
            (void)(away ? returnToComputerStudy() : startPassiveStudy());
            const bool paused = manager.activeSession() &&
                                manager.activeSession()->status() == StudySessionStatus::paused;
            say(keyHelp(paused, !away));
            break;
        }
        case 'e':
            (void)endSession();
            break;
        case 'q':
            ask(Question::quit, quitQuestion());
            break;
        default:
            break;
    }
    draw();
}

void RecorderHost::answerRecovery(char key) {
    SessionManager& manager = setup_.manager;
    if (key == 'c') {
        question_ = Question::none;
        if (manager.continueRecoveredSession().ok()) {
            sessionStarted_ = true;
            say("Continuing from now; the time since the last confirmed moment is left out.");
            say(keyHelp(false, false));
        }
    } else if (key == 'e') {
        question_ = Question::none;
        (void)manager.endRecoveredSession();
        say("The unfinished session was ended as interrupted.");
        if (!startOrAskSubject()) {
            stop(1);
        }
    }
}

void RecorderHost::answerPrompt(char key) {
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
    auto answered = setup_.manager.answerNoInputPrompt(*answer);
    if (!answered.ok()) {
        say(answered.error());
        if (key != 'x') {
            return;
        }
    }
    question_ = Question::none;
    finishIfEnded();
}

void RecorderHost::answerQuit(char key) {
    SessionManager& manager = setup_.manager;
    if (key == 'k') {
        question_ = Question::none;
        say("Still recording.");
    } else if (key == 'e') {
        question_ = Question::none;
        (void)manager.end();
        finishIfEnded();
    } else if (key == 'i') {
        question_ = Question::none;
        (void)manager.endAsInterrupted();
        finishIfEnded();
    }
}

void RecorderHost::terminate(const std::string& reason) {
    if (stopped_) {
        return;
    }
    setup_.manager.willTerminate();
    say(fmt::format("{}: the session was saved and will be offered for recovery next time.",
                    reason));
    stop(0);
}

Result<void, std::string> RecorderHost::togglePause() {
    SessionManager& manager = setup_.manager;
    if (!manager.activeSession()) {
        return fail(sessionFailureMessage(SessionFailure::noActiveSession));
    }
    const bool paused = manager.activeSession()->status() == StudySessionStatus::paused;
    const auto done = paused ? manager.resume() : manager.pause();
    if (!done.ok()) {
        return fail(sessionFailureMessage(done.error()));
    }
    say(paused ? "Resumed." : "Paused.");
    if (setup_.interactive) {
        say(keyHelp(!paused, manager.liveStudyState() == LiveStudyState::passiveStudy));
    }
    draw();
    return {};
}

Result<void, std::string> RecorderHost::endSession() {
    const auto done = setup_.manager.end();
    if (!done.ok()) {
        return fail(sessionFailureMessage(done.error()));
    }
    // The reply goes out before the loop stops: the summary is printed and
    // the loop quits on its next turn.
    QTimer::singleShot(0, this, [this] { finishIfEnded(); });
    return {};
}

Result<void, std::string> RecorderHost::startPassiveStudy() {
    const auto done = setup_.manager.startPassiveStudy();
    if (!done.ok()) {
        return fail(sessionFailureMessage(done.error()));
    }
    if (setup_.introduceAwayStudy && setup_.introduceAwayStudy()) {
        say(std::string(kPassiveStudyIntroduction));
    }
    say(fmt::format("{}.", kStudyingAwayFromMac));
    return {};
}

Result<void, std::string> RecorderHost::returnToComputerStudy() {
    const auto done = setup_.manager.endPassiveStudy();
    if (!done.ok()) {
        return fail(sessionFailureMessage(done.error()));
    }
    say(fmt::format("{}.", kBackToComputerStudyControl));
    return {};
}

RecorderStatus RecorderHost::status() {
    SessionManager& manager = setup_.manager;
    RecorderStatus status;
    const auto& session = manager.activeSession();
    if (!session) {
        return status;
    }
    status.sessionActive = true;
    status.subject = session->subject;
    status.state = session->status();
    status.elapsedSeconds = manager.currentTimerValue();
    if (session->timingMode() == SessionTimingMode::timer) {
        status.remainingSeconds = std::max(0.0, session->plannedDuration - status.elapsedSeconds);
    }
    status.currentActivity = manager.currentApplicationName();
    status.currentClassification = manager.currentClassification();
    status.studyState = manager.liveStudyState();
    status.asleep = manager.isSleeping();
    return status;
}

void RecorderHost::ask(Question question, const std::string& text) {
    question_ = question;
    say(text);
}

void RecorderHost::say(const std::string& line) {
    if (setup_.interactive) {
        setup_.out << "\r\033[2K";
    } else {
        setup_.out << timestamp();
    }
    setup_.out << line << '\n' << std::flush;
    draw();
}

void RecorderHost::draw() {
    SessionManager& manager = setup_.manager;
    const auto& session = manager.activeSession();
    if (!session || stopped_) {
        return;
    }
    RecordingSnapshot snapshot;
    snapshot.subject = session->subject;
    snapshot.status = session->status();
    snapshot.timingMode = session->timingMode();
    snapshot.plannedDuration = session->plannedDuration;
    snapshot.timerValue = manager.currentTimerValue();
    snapshot.pauseDuration = manager.currentPauseDuration();
    snapshot.liveState = manager.liveStudyState();
    snapshot.activityName = manager.currentApplicationName();
    snapshot.classification = manager.currentClassification();
    snapshot.sleeping = manager.isSleeping();
    if (setup_.interactive) {
        if (question_ == Question::none) {
            setup_.out << "\r\033[2K" << statusLine(snapshot) << std::flush;
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

std::string RecorderHost::timestamp() const {
    const Date now = Date::fromSystemClock(std::chrono::system_clock::now());
    return "[" + calendar_.formatIso8601(now).substr(11, 8) + "] ";
}

void RecorderHost::noteChange(ObservedField field) {
    if (field == ObservedField::lastError) {
        if (const auto& error = setup_.manager.lastError()) {
            const std::string message = *error;
            setup_.manager.clearLastError();
            say(message);
        }
    }
}

void RecorderHost::finishIfEnded() {
    if (stopped_ || !sessionStarted_ || setup_.manager.activeSession()) {
        return;
    }
    if (const auto& finished = setup_.manager.pendingPostSession()) {
        if (setup_.interactive) {
            setup_.out << "\r\033[2K";
        }
        setup_.out << '\n' << sessionSummary(*finished) << std::flush;
    }
    stop(0);
}

void RecorderHost::stop(int status) {
    if (stopped_) {
        return;
    }
    stopped_ = true;
    exitStatus_ = status;
    ticker_.stop();
    QCoreApplication::exit(status);
}

}  // namespace lumenote::recorder
