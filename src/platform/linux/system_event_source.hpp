// LinuxSystemEventSource: sleep, wake, lock and shutdown notices from logind
// and the screen saver over D-Bus, handed to plain callbacks on the Qt thread.
//
// Decisions:
// - Every notice is passed on as it comes (sleep, then wake), without merging
//   overlapping causes: the session manager ignores a second sleep and a wake
//   without a sleep, so a lock followed by a suspend is one sleep stretch,
//   ended by whichever counterpart arrives first.
// - Besides the Lock/Unlock signals (sent when someone asks logind to lock or
//   unlock), the session's LockedHint property is followed: screen lockers set
//   it, and logind sends no Unlock when the user unlocks at the locker.
// - Signals are only accepted from the owner of the service's name; a process
//   that merely sends a signal with logind's path is not logind.
// - A "delay" inhibitor makes logind wait for the sleep callback before the
//   system suspends; without it the process may be frozen before it hears
//   PrepareForSleep, and the time before the sleep would count for the
//   application in front.
// - logind may appear, vanish or restart while recording: the source follows
//   its name and looks the session up again.
#pragma once

#include <QDBusConnection>
#include <QDBusUnixFileDescriptor>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

class QDBusServiceWatcher;

namespace lumenote::platform::linux_desktop {

// Which notice led to a callback; for logs and tests, the recorder treats all
// sleep causes alike.
enum class SystemEventCause {
    prepareForSleep,     // logind PrepareForSleep(true/false)
    sessionLock,         // the session's Lock / Unlock signals
    sessionActive,       // the session's Active property (user switch)
    sessionLockedHint,   // the session's LockedHint property (set by lockers)
    screenSaver,         // ActiveChanged(true/false) of a screen saver service
    prepareForShutdown,  // logind PrepareForShutdown(true)
};

std::string_view systemEventCauseName(SystemEventCause cause);

// Called on the thread of the source (the Qt main thread). Each may be empty.
struct SystemEventCallbacks {
    // The computer can no longer be observed: suspend, lock, screen saver or
    // another user's session in front.
    std::function<void(SystemEventCause)> sleep;
    // The counterpart of each sleep cause.
    std::function<void(SystemEventCause)> wake;
    // The system is shutting down: write the final checkpoint now.
    std::function<void(SystemEventCause)> terminate;
};

// What the source could connect to; the setup check reports the gaps.
struct SystemEventSourceStatus {
    bool systemBusAvailable = false;
    bool logindAvailable = false;
    bool sessionFound = false;
    std::string sessionPath;  // the logind session object, empty when not found
    // A logind "delay" inhibitor for sleep and shutdown: logind waits (a few
    // seconds at most) until the sleep stretch and the checkpoint are written.
    bool inhibitorHeld = false;
    bool sessionBusAvailable = false;
    bool screenSaverAvailable = false;

    friend bool operator==(const SystemEventSourceStatus&,
                           const SystemEventSourceStatus&) = default;
};

enum class SystemEventGap {
    noSystemBus,
    noLogind,
    noLogindSession,
    noInhibitor,
    noSessionBus,
    noScreenSaver,
};

// The gaps of `status` in a fixed order; an unreachable bus hides the gaps
// that depend on it.
std::vector<SystemEventGap> systemEventGaps(const SystemEventSourceStatus& status);
std::string systemEventGapMessage(SystemEventGap gap);

struct SystemEventSourceSettings {
    QDBusConnection systemBus;
    QDBusConnection sessionBus;
    // $XDG_SESSION_ID; when absent or unknown to logind, the session is looked
    // up by `processId`, then as logind's "auto" session (the caller's session
    // or the user's display session, which covers applications started by
    // the user's service manager outside the session).
    std::optional<std::string> loginSessionID;
    std::uint32_t processId = 0;
    // Bound on each blocking call to logind or the screen saver, milliseconds.
    int callTimeoutMilliseconds = 1000;

    // The real buses (which honour DBUS_SYSTEM_BUS_ADDRESS and
    // DBUS_SESSION_BUS_ADDRESS), $XDG_SESSION_ID and this process.
    static SystemEventSourceSettings fromEnvironment();
};

class LinuxSystemEventSource : public QObject {
    Q_OBJECT

  public:
    LinuxSystemEventSource(SystemEventCallbacks callbacks, SystemEventSourceSettings settings,
                           QObject* parent = nullptr);
    ~LinuxSystemEventSource() override;

    // Subscribes to every notice it can reach and returns what it found.
    // Missing buses or services are not errors: their notices never come.
    // Blocks for at most a few call timeouts. Calling it twice is harmless.
    const SystemEventSourceStatus& start();
    // Unsubscribes and releases the inhibitor.
    void stop();
    const SystemEventSourceStatus& status() const { return status_; }
    // Called whenever the status changes after start() (logind appearing or
    // going away, the inhibitor released or taken again).
    void setStatusChangeHandler(std::function<void(const SystemEventSourceStatus&)> handler) {
        statusChanged_ = std::move(handler);
    }

  private Q_SLOTS:
    void onPrepareForSleep(bool start);
    void onPrepareForShutdown(bool start);
    void onSessionLock();
    void onSessionUnlock();
    void onSessionPropertiesChanged(const QString& interfaceName, const QVariantMap& changed,
                                    const QStringList& invalidated);
    void onScreenSaverActiveChanged(bool active);
    void onLogindRegistered();
    void onLogindUnregistered();

  private:
    struct Subscription {
        QDBusConnection bus;
        QString service;
        QString path;
        QString interface;
        QString name;
        const char* slot;
    };

    void subscribe(QDBusConnection& bus, const QString& service, const QString& path,
                   const QString& interface, const char* name, const char* slot,
                   std::vector<Subscription>& into);
    void unsubscribeAll(std::vector<Subscription>& subscriptions);
    void attachLogind();
    void detachSession();
    QString findSessionPath();
    void takeInhibitor();
    void releaseInhibitor();
    void applyBoolProperty(const QString& name, bool value);
    void fetchInvalidatedProperty(const QString& name);
    void emitSleep(SystemEventCause cause);
    void emitWake(SystemEventCause cause);
    void publishStatus();

    SystemEventCallbacks callbacks_;
    SystemEventSourceSettings settings_;
    SystemEventSourceStatus status_;
    SystemEventSourceStatus publishedStatus_;
    std::vector<Subscription> managerSubscriptions_;
    std::vector<Subscription> sessionSubscriptions_;
    std::function<void(const SystemEventSourceStatus&)> statusChanged_;
    QDBusUnixFileDescriptor inhibitor_;
    QDBusServiceWatcher* logindWatcher_ = nullptr;
    bool started_ = false;
    // Between PrepareForSleep(true) and (false) no inhibitor is taken: the
    // sleep it would delay has already begun.
    bool sleepInProgress_ = false;
};

}  // namespace lumenote::platform::linux_desktop
