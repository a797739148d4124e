#include "platform/linux/signal_bridge.hpp"

#include <QSocketNotifier>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <unistd.h>

namespace lumenote::platform::linux_desktop {

namespace {

constexpr std::array<int, 3> kHandledSignals{SIGTERM, SIGINT, SIGHUP};

// The write end of the installed bridge's pipe, the only state the signal
// handler touches; -1 when no bridge is installed.
std::atomic<int> gSignalPipe{-1};
static_assert(std::atomic<int>::is_always_lock_free, "read from a signal handler");
std::array<struct sigaction, kHandledSignals.size()> gPreviousActions{};

extern "C" void forwardSignal(int signal) {
    const int savedErrno = errno;
    const int pipe = gSignalPipe.load();
    if (pipe >= 0) {
        const unsigned char number = static_cast<unsigned char>(signal);
        // A full pipe drops the byte; the bytes already in it wake the loop.
        [[maybe_unused]] const ssize_t written = ::write(pipe, &number, 1);
    }
    errno = savedErrno;
}

}  // namespace

std::string signalBridgeFailureMessage(SignalBridgeFailure failure) {
    switch (failure) {
        case SignalBridgeFailure::alreadyInstalled:
            return "Lumenote already handles termination signals in this process.";
        case SignalBridgeFailure::pipeFailed:
            return "Lumenote could not prepare for termination signals (no pipe).";
        case SignalBridgeFailure::handlerFailed:
            return "Lumenote could not install its termination signal handlers.";
    }
    return {};
}

std::string signalName(int signal) {
    switch (signal) {
        case SIGTERM:
            return "SIGTERM";
        case SIGINT:
            return "SIGINT";
        case SIGHUP:
            return "SIGHUP";
        default:
            return "signal " + std::to_string(signal);
    }
}

SignalBridge::SignalBridge(std::function<void(int)> onSignal, QObject* parent)
    : QObject(parent), onSignal_(std::move(onSignal)) {}

SignalBridge::~SignalBridge() {
    uninstall();
}

Result<void, SignalBridgeFailure> SignalBridge::install() {
    if (installed_ || gSignalPipe.load() >= 0) {
        return fail(SignalBridgeFailure::alreadyInstalled);
    }
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0) {
        return fail(SignalBridgeFailure::pipeFailed);
    }
    readEnd_ = ends[0];
    writeEnd_ = ends[1];
    gSignalPipe.store(writeEnd_);

    struct sigaction action {};
    action.sa_handler = forwardSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (std::size_t i = 0; i < kHandledSignals.size(); ++i) {
        if (::sigaction(kHandledSignals[i], &action, &gPreviousActions[i]) != 0) {
            for (std::size_t j = 0; j < i; ++j) {
                ::sigaction(kHandledSignals[j], &gPreviousActions[j], nullptr);
            }
            gSignalPipe.store(-1);
            ::close(readEnd_);
            ::close(writeEnd_);
            readEnd_ = writeEnd_ = -1;
            return fail(SignalBridgeFailure::handlerFailed);
        }
    }
    notifier_ = new QSocketNotifier(readEnd_, QSocketNotifier::Read, this);
    connect(notifier_, &QSocketNotifier::activated, this, &SignalBridge::drain);
    installed_ = true;
    return {};
}

void SignalBridge::drain() {
    unsigned char number = 0;
    while (::read(readEnd_, &number, 1) == 1) {
        if (onSignal_) {
            onSignal_(number);
        }
    }
}

void SignalBridge::uninstall() {
    if (!installed_) {
        return;
    }
    installed_ = false;
    for (std::size_t i = 0; i < kHandledSignals.size(); ++i) {
        ::sigaction(kHandledSignals[i], &gPreviousActions[i], nullptr);
    }
    gSignalPipe.store(-1);
    delete notifier_;
    notifier_ = nullptr;
    ::close(readEnd_);
    ::close(writeEnd_);
    readEnd_ = writeEnd_ = -1;
}

}  // namespace lumenote::platform::linux_desktop
