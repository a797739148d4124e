#include "runtime/recorder_runtime.hpp"

#include <fmt/format.h>

#include <QCoreApplication>
#include <QDBusConnection>

#include "bridge/browser_event_log.hpp"
#include "platform/linux/signal_bridge.hpp"
#include "platform/linux/system_event_source.hpp"

namespace lumenote::runtime {

namespace {

// How soon a backlog of browser events is drained again: a flood is worked
// off in bounded batches a few times a second without delaying a tick.
constexpr int kBacklogDrainIntervalMilliseconds = 50;

}  // namespace

RecorderRuntime::RecorderRuntime(RecorderServices& services, RecorderFrontEnd& frontEnd)
    : services_(services), frontEnd_(frontEnd) {
    ticker_.setTimerType(Qt::PreciseTimer);
    ticker_.setInterval(1000);
    connect(&ticker_, &QTimer::timeout, this, &RecorderRuntime::onTick);
    if (services_.activationDescriptor() >= 0) {
        activationNotifier_ = std::make_unique<QSocketNotifier>(services_.activationDescriptor(),
                                                                QSocketNotifier::Read, this);
        connect(activationNotifier_.get(), &QSocketNotifier::activated, this,
                &RecorderRuntime::onActivation);
    }
    services_.desktop().setActivationHandler([this] { onActivation(); });
    problemsObservation_ =
        manager().problems().add([this](const recording::SessionError& problem) { show(problem); });
    browserDrain_.setSingleShot(true);
    browserDrain_.setInterval(kBacklogDrainIntervalMilliseconds);
    connect(&browserDrain_, &QTimer::timeout, this, &RecorderRuntime::drainBrowserEvents);
    if (services_.browserTracking().ready()) {
        inboxWatcher_.addPath(
            QString::fromStdString(services_.browserTracking().inboxFolder().string()));
        connect(&inboxWatcher_, &QFileSystemWatcher::directoryChanged, this,
                &RecorderRuntime::onBrowserEventArrived);
    }
}

RecorderRuntime::~RecorderRuntime() {
    services_.desktop().setActivationHandler({});
    if (commandService_) {
        commandService_->stop();
    }
    if (systemEvents_) {
        systemEvents_->stop();
    }
    manager().problems().remove(problemsObservation_);
}

std::vector<std::string> RecorderRuntime::begin() {
    std::vector<std::string> gaps;
    platform::linux_desktop::SystemEventCallbacks callbacks;
    callbacks.sleep = [this](platform::linux_desktop::SystemEventCause) { manager().willSleep(); };
    callbacks.wake = [this](platform::linux_desktop::SystemEventCause) { manager().didWake(); };
    callbacks.terminate = [this](platform::linux_desktop::SystemEventCause) {
        terminate("The system is shutting down");
    };
    systemEvents_ = std::make_unique<platform::linux_desktop::LinuxSystemEventSource>(
        callbacks, platform::linux_desktop::SystemEventSourceSettings::fromEnvironment());
    for (const platform::linux_desktop::SystemEventGap gap :
         platform::linux_desktop::systemEventGaps(systemEvents_->start())) {
        gaps.push_back(platform::linux_desktop::systemEventGapMessage(gap));
    }
    signalBridge_ = std::make_unique<platform::linux_desktop::SignalBridge>([this](int signal) {
        terminate(fmt::format("Stopped by {}", platform::linux_desktop::signalName(signal)));
    });
    if (auto installed = signalBridge_->install(); !installed.ok()) {
        gaps.push_back(platform::linux_desktop::signalBridgeFailureMessage(installed.error()));
    }
    ticker_.start();
    return gaps;
}

std::optional<std::string> RecorderRuntime::serveCommands() {
    commandService_ =
        std::make_unique<RecorderCommandService>(commandAnswers_, QDBusConnection::sessionBus());
    if (auto started = commandService_->start(); !started.ok()) {
        return commandServiceFailureMessage(started.error());
    }
    return std::nullopt;
}

Result<void, recording::SessionError> RecorderRuntime::start(
    const recording::SessionStartRequest& request) {
    auto started = shown(manager().start(request));
    followSession();
    return started;
}

Result<void, recording::SessionError> RecorderRuntime::continueRecoveredSession() {
    auto continued = shown(manager().continueRecoveredSession());
    followSession();
    return continued;
}

Result<void, recording::SessionError> RecorderRuntime::endRecoveredSession() {
    return shown(manager().endRecoveredSession());
}

Result<void, recording::SessionError> RecorderRuntime::answerNoInputQuestion(
    recording::SessionManager::NoInputPromptAnswer answer) {
    auto answered = shown(manager().answerNoInputPrompt(answer));
    followSession();
    return answered;
}

Result<void, recording::SessionError> RecorderRuntime::end() {
    auto ended = shown(manager().end());
    followSession();
    return ended;
}

Result<void, recording::SessionError> RecorderRuntime::endAsInterrupted() {
    auto ended = shown(manager().endAsInterrupted());
    followSession();
    return ended;
}

Result<void, recording::SessionError> RecorderRuntime::togglePause() {
    const auto& session = manager().activeSession();
    if (!session) {
        return shown(fail(recording::SessionFailure::noActiveSession));
    }
    const bool paused = session->status() == recording::StudySessionStatus::paused;
    auto done = shown(paused ? manager().resume() : manager().pause());
    if (done.ok()) {
        frontEnd_.controlled(paused ? RecorderControl::resume : RecorderControl::pause);
    }
    return done;
}

Result<void, recording::SessionError> RecorderRuntime::endSession() {
    auto done = shown(manager().end());
    if (done.ok()) {
        frontEnd_.controlled(RecorderControl::end);
        // The command service's reply goes out before the loop stops: the
        // end is followed on the loop's next turn.
        QTimer::singleShot(0, this, [this] { followSession(); });
    }
    return done;
}

Result<void, recording::SessionError> RecorderRuntime::startPassiveStudy() {
    auto done = shown(manager().startPassiveStudy());
    if (done.ok()) {
        frontEnd_.controlled(RecorderControl::away);
    }
    return done;
}

Result<void, recording::SessionError> RecorderRuntime::returnToComputerStudy() {
    auto done = shown(manager().endPassiveStudy());
    if (done.ok()) {
        frontEnd_.controlled(RecorderControl::back);
    }
    return done;
}

namespace {

Result<void, std::string> sentence(const Result<void, recording::SessionError>& outcome) {
    if (!outcome.ok()) {
        return fail(outcome.error().message());
    }
    return {};
}

}  // namespace

Result<void, std::string> RecorderRuntime::CommandAnswers::togglePause() {
    return sentence(runtime_.togglePause());
}

Result<void, std::string> RecorderRuntime::CommandAnswers::endSession() {
    return sentence(runtime_.endSession());
}

Result<void, std::string> RecorderRuntime::CommandAnswers::startPassiveStudy() {
    return sentence(runtime_.startPassiveStudy());
}

Result<void, std::string> RecorderRuntime::CommandAnswers::returnToComputerStudy() {
    return sentence(runtime_.returnToComputerStudy());
}

Result<void, std::string> RecorderRuntime::CommandAnswers::present() {
    return runtime_.frontEnd_.present();
}

std::string RecorderRuntime::CommandAnswers::browserEvents() {
    return bridge::browserEventLogJson(runtime_.services().browserTracking().eventLog());
}

std::string RecorderRuntime::CommandAnswers::browserStatus() {
    return runtime_.services().browserStatusJson();
}

RecorderStatus RecorderRuntime::status() {
    recording::SessionManager& recorder = manager();
    RecorderStatus status;
    const platform::observation::ObservationHealth observing = services_.desktop().health();
    status.lastActivation = observing.lastActivation;
    const auto& session = recorder.activeSession();
    if (!session) {
        return status;
    }
    status.sessionActive = true;
    status.subject = session->subject;
    status.state = session->status();
    status.elapsedSeconds = recorder.currentTimerValue();
    if (session->timingMode() == recording::SessionTimingMode::timer) {
        status.remainingSeconds = std::max(0.0, session->plannedDuration - status.elapsedSeconds);
    }
    status.currentActivity = recorder.currentApplicationName();
    status.currentClassification = recorder.currentClassification();
    status.studyState = recorder.liveStudyState();
    status.asleep = recorder.isSleeping();
    status.browserWarning = services_.browserWarning();
    status.observationWarning = platform::observation::frontmostWarning(observing);
    return status;
}

void RecorderRuntime::noteObservationGap() {
    const auto& session = manager().activeSession();
    if (!session) {
        return;
    }
    if (observedSession_ != session->id) {
        observedSession_ = session->id;
        observationGap_.clear();
    }
    if (std::string warning = platform::observation::frontmostWarning(services_.desktop().health());
        !warning.empty()) {
        observationGap_ = std::move(warning);
    }
}

std::string RecorderRuntime::observationWarningFor(const Uuid& session) const {
    return observedSession_ == session ? observationGap_ : std::string();
}

void RecorderRuntime::terminate(const std::string& reason) {
    if (stopped_) {
        return;
    }
    manager().willTerminate();
    frontEnd_.terminated(reason);
    stop(0);
}

void RecorderRuntime::stop(int status) {
    if (stopped_) {
        return;
    }
    stopped_ = true;
    exitStatus_ = status;
    ticker_.stop();
    QCoreApplication::exit(status);
}

void RecorderRuntime::onTick() {
    if (stopped_) {
        return;
    }
    // A setting changed with the command line (pausing browser tracking,
    // file-name labels, the no-input threshold) takes effect within a tick.
    services_.preferences().adoptChangesMadeElsewhere();
    manager().tick();
    drainBrowserEvents();
    // Xlib may have read activation events off the socket during the tick's
    // own calls, where the socket notifier cannot see them.
    if (services_.takeActivation()) {
        manager().applicationActivated();
    }
    followSession();
    if (!stopped_) {
        frontEnd_.refresh();
    }
}

void RecorderRuntime::drainBrowserEvents() {
    if (!stopped_ && services_.browserTracking().tick()) {
        browserDrain_.start();
    }
}

// The host dropped an event: sampling now lets a website stretch begin when
// the page changed rather than at the next tick. The session manager drains
// the inbox itself when it asks the coordinator for the frontmost browser.
void RecorderRuntime::onBrowserEventArrived() {
    if (!stopped_ && !browserDrain_.isActive()) {
        manager().applicationActivated();
    }
}

void RecorderRuntime::onActivation() {
    if (services_.displayLost()) {
        // The lost connection's socket reads as end of file for ever: stop
        // watching it, and end the session at the last moment it was seen.
        activationNotifier_->setEnabled(false);
        terminate("The connection to the display was lost");
        return;
    }
    if (services_.takeActivation()) {
        manager().applicationActivated();
        frontEnd_.refresh();
    }
}

Result<void, recording::SessionError> RecorderRuntime::shown(
    Result<void, recording::SessionError> outcome) {
    if (!outcome.ok()) {
        show(outcome.error());
    }
    return outcome;
}

void RecorderRuntime::show(const recording::SessionError& error) {
    lastError_ = error.message();
    frontEnd_.showError(*lastError_);
}

void RecorderRuntime::followSession() {
    noteObservationGap();
    if (stopped_) {
        return;
    }
    const auto& active = manager().activeSession();
    if (followedSession_ && (!active || active->id != *followedSession_)) {
        followedSession_.reset();
        frontEnd_.sessionEnded(manager().pendingPostSession(),
                               manager().pendingPostSessionPersonalBests());
        if (stopped_) {
            return;
        }
    }
    if (active) {
        followedSession_ = active->id;
    }
    const auto& prompt = manager().pendingNoInputPrompt();
    if (prompt && questionTold_ != prompt->id) {
        questionTold_ = prompt->id;
        frontEnd_.noInputQuestionArrived(*prompt);
    }
}

}  // namespace lumenote::runtime
