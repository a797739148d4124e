// SignalBridge: turns SIGTERM, SIGINT and SIGHUP into a call on the Qt event
// loop, where the recorder can write its final checkpoint and quit.
#pragma once

#include <QObject>

#include <functional>
#include <string>

#include "foundation/result.hpp"

class QSocketNotifier;

namespace lumenote::platform::linux_desktop {

enum class SignalBridgeFailure { alreadyInstalled, pipeFailed, handlerFailed };
std::string signalBridgeFailureMessage(SignalBridgeFailure failure);

// The handler only writes the signal number to a non-blocking pipe (the one
// thing a signal handler may safely do); a QSocketNotifier reads it on the
// loop's thread and calls the callback there, once per signal received.
// Signals are process-wide, so at most one bridge is installed at a time.
class SignalBridge : public QObject {
    Q_OBJECT

  public:
    // `onSignal` receives the signal number (SIGTERM, SIGINT or SIGHUP); it
    // must not destroy the bridge.
    explicit SignalBridge(std::function<void(int)> onSignal, QObject* parent = nullptr);
    // Restores the handlers that were in place before install().
    ~SignalBridge() override;

    Result<void, SignalBridgeFailure> install();

  private:
    void drain();
    void uninstall();

    std::function<void(int)> onSignal_;
    int readEnd_ = -1;
    int writeEnd_ = -1;
    QSocketNotifier* notifier_ = nullptr;
    bool installed_ = false;
};

// The name of a signal the bridge handles ("SIGTERM"); "signal N" otherwise.
std::string signalName(int signal);

}  // namespace lumenote::platform::linux_desktop
