#include "platform/linux/system_event_source.hpp"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QDBusVariant>

#include <unistd.h>

namespace lumenote::platform::linux_desktop {

namespace {

const QString kLogindService = QStringLiteral("org.freedesktop.login1");
const QString kLogindPath = QStringLiteral("/org/freedesktop/login1");
const QString kLogindManager = QStringLiteral("org.freedesktop.login1.Manager");
const QString kLogindSession = QStringLiteral("org.freedesktop.login1.Session");
const QString kPropertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");

// Screen saver services and the interface of their ActiveChanged signal. They
// are matched on any object path: desktops export the interface at different
// paths (/ScreenSaver, /org/freedesktop/ScreenSaver, /org/gnome/ScreenSaver).
struct ScreenSaverService {
    const char* service;
    const char* interface;
};
constexpr ScreenSaverService kScreenSavers[] = {
    {"org.freedesktop.ScreenSaver", "org.freedesktop.ScreenSaver"},
    {"org.gnome.ScreenSaver", "org.gnome.ScreenSaver"},
};

bool nameHasOwner(QDBusConnection& bus, const QString& name, int timeout) {
    QDBusMessage message = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("NameHasOwner"));
    message << name;
    const QDBusMessage reply = bus.call(message, QDBus::Block, timeout);
    return reply.type() == QDBusMessage::ReplyMessage && !reply.arguments().isEmpty() &&
           reply.arguments().constFirst().toBool();
}

}  // namespace

std::string_view systemEventCauseName(SystemEventCause cause) {
    switch (cause) {
        case SystemEventCause::prepareForSleep:
            return "prepareForSleep";
        case SystemEventCause::sessionLock:
            return "sessionLock";
        case SystemEventCause::sessionActive:
            return "sessionActive";
        case SystemEventCause::sessionLockedHint:
            return "sessionLockedHint";
        case SystemEventCause::screenSaver:
            return "screenSaver";
        case SystemEventCause::prepareForShutdown:
            return "prepareForShutdown";
    }
    return "unknown";
}

std::vector<SystemEventGap> systemEventGaps(const SystemEventSourceStatus& status) {
    std::vector<SystemEventGap> gaps;
    if (!status.systemBusAvailable) {
        gaps.push_back(SystemEventGap::noSystemBus);
    } else if (!status.logindAvailable) {
        gaps.push_back(SystemEventGap::noLogind);
    } else {
        if (!status.sessionFound) {
            gaps.push_back(SystemEventGap::noLogindSession);
        }
        if (!status.inhibitorHeld) {
            gaps.push_back(SystemEventGap::noInhibitor);
        }
    }
    if (!status.sessionBusAvailable) {
        gaps.push_back(SystemEventGap::noSessionBus);
    } else if (!status.screenSaverAvailable) {
        gaps.push_back(SystemEventGap::noScreenSaver);
    }
    return gaps;
}

std::string systemEventGapMessage(SystemEventGap gap) {
    switch (gap) {
        case SystemEventGap::noSystemBus:
            return "The system bus cannot be reached, so Lumenote cannot notice sleep, screen "
                   "locking or shutdown.";
        case SystemEventGap::noLogind:
            return "logind is not running, so Lumenote cannot notice sleep, screen locking or "
                   "shutdown.";
        case SystemEventGap::noLogindSession:
            return "logind does not know this login session, so Lumenote cannot notice screen "
                   "locking or a switch to another user.";
        case SystemEventGap::noInhibitor:
            return "logind did not let Lumenote delay sleep for a moment, so the last seconds "
                   "before a sleep may count for the application in front.";
        case SystemEventGap::noSessionBus:
            return "The session bus cannot be reached, so Lumenote cannot notice the screen "
                   "saver.";
        case SystemEventGap::noScreenSaver:
            return "No screen saver service is running; screen locking is noticed through logind "
                   "only.";
    }
    return {};
}

SystemEventSourceSettings SystemEventSourceSettings::fromEnvironment() {
    SystemEventSourceSettings settings{QDBusConnection::systemBus(), QDBusConnection::sessionBus()};
    const QByteArray loginSessionID = qgetenv("XDG_SESSION_ID");
    if (!loginSessionID.isEmpty()) {
        settings.loginSessionID = loginSessionID.toStdString();
    }
    settings.processId = static_cast<std::uint32_t>(::getpid());
    return settings;
}

LinuxSystemEventSource::LinuxSystemEventSource(SystemEventCallbacks callbacks,
                                               SystemEventSourceSettings settings, QObject* parent)
    : QObject(parent), callbacks_(std::move(callbacks)), settings_(std::move(settings)) {}

LinuxSystemEventSource::~LinuxSystemEventSource() {
    stop();
}

const SystemEventSourceStatus& LinuxSystemEventSource::start() {
    if (started_) {
        return status_;
    }
    started_ = true;
    QDBusConnection& system = settings_.systemBus;
    status_.systemBusAvailable = system.isConnected();
    if (status_.systemBusAvailable) {
        subscribe(system, kLogindService, kLogindPath, kLogindManager, "PrepareForSleep",
                  SLOT(onPrepareForSleep(bool)), managerSubscriptions_);
        subscribe(system, kLogindService, kLogindPath, kLogindManager, "PrepareForShutdown",
                  SLOT(onPrepareForShutdown(bool)), managerSubscriptions_);
        // Watching before asking closes the gap in which logind could appear
        // unnoticed; it also follows logind restarting.
        logindWatcher_ = new QDBusServiceWatcher(
            kLogindService, system,
            QDBusServiceWatcher::WatchForRegistration | QDBusServiceWatcher::WatchForUnregistration,
            this);
        connect(logindWatcher_, &QDBusServiceWatcher::serviceRegistered, this,
                &LinuxSystemEventSource::onLogindRegistered);
        connect(logindWatcher_, &QDBusServiceWatcher::serviceUnregistered, this,
                &LinuxSystemEventSource::onLogindUnregistered);
        if (nameHasOwner(system, kLogindService, settings_.callTimeoutMilliseconds)) {
            attachLogind();
        }
    }
    QDBusConnection& session = settings_.sessionBus;
    status_.sessionBusAvailable = session.isConnected();
    if (status_.sessionBusAvailable) {
        for (const ScreenSaverService& saver : kScreenSavers) {
            const QString service = QString::fromLatin1(saver.service);
            subscribe(session, service, QString(), QString::fromLatin1(saver.interface),
                      "ActiveChanged", SLOT(onScreenSaverActiveChanged(bool)),
                      managerSubscriptions_);
            if (nameHasOwner(session, service, settings_.callTimeoutMilliseconds)) {
                status_.screenSaverAvailable = true;
            }
        }
    }
    publishedStatus_ = status_;
    return status_;
}

void LinuxSystemEventSource::stop() {
    if (!started_) {
        return;
    }
    started_ = false;
    detachSession();
    unsubscribeAll(managerSubscriptions_);
    delete logindWatcher_;
    logindWatcher_ = nullptr;
    status_ = SystemEventSourceStatus{};
    publishedStatus_ = status_;
}

void LinuxSystemEventSource::subscribe(QDBusConnection& bus, const QString& service,
                                       const QString& path, const QString& interface,
                                       const char* name, const char* slot,
                                       std::vector<Subscription>& into) {
    const QString signalName = QString::fromLatin1(name);
    if (bus.connect(service, path, interface, signalName, this, slot)) {
        into.push_back(Subscription{bus, service, path, interface, signalName, slot});
    }
}

void LinuxSystemEventSource::unsubscribeAll(std::vector<Subscription>& subscriptions) {
    for (Subscription& subscription : subscriptions) {
        subscription.bus.disconnect(subscription.service, subscription.path, subscription.interface,
                                    subscription.name, this, subscription.slot);
    }
    subscriptions.clear();
}

void LinuxSystemEventSource::attachLogind() {
    status_.logindAvailable = true;
    const QString path = findSessionPath();
    if (!path.isEmpty()) {
        QDBusConnection& system = settings_.systemBus;
        status_.sessionFound = true;
        status_.sessionPath = path.toStdString();
        subscribe(system, kLogindService, path, kLogindSession, "Lock", SLOT(onSessionLock()),
                  sessionSubscriptions_);
        subscribe(system, kLogindService, path, kLogindSession, "Unlock", SLOT(onSessionUnlock()),
                  sessionSubscriptions_);
        subscribe(system, kLogindService, path, kPropertiesInterface, "PropertiesChanged",
                  SLOT(onSessionPropertiesChanged(QString, QVariantMap, QStringList)),
                  sessionSubscriptions_);
    }
    if (!sleepInProgress_) {
        takeInhibitor();
    }
}

void LinuxSystemEventSource::detachSession() {
    unsubscribeAll(sessionSubscriptions_);
    releaseInhibitor();
    status_.logindAvailable = false;
    status_.sessionFound = false;
    status_.sessionPath.clear();
}

QString LinuxSystemEventSource::findSessionPath() {
    const auto ask = [this](const char* method, const QVariant& argument) -> QString {
        QDBusMessage message = QDBusMessage::createMethodCall(
            kLogindService, kLogindPath, kLogindManager, QString::fromLatin1(method));
        message << argument;
        const QDBusMessage reply =
            settings_.systemBus.call(message, QDBus::Block, settings_.callTimeoutMilliseconds);
        if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty()) {
            return {};
        }
        return reply.arguments().constFirst().value<QDBusObjectPath>().path();
    };
    QString path;
    if (settings_.loginSessionID && !settings_.loginSessionID->empty()) {
        path = ask("GetSession", QString::fromStdString(*settings_.loginSessionID));
    }
    if (path.isEmpty() && settings_.processId != 0) {
        path = ask("GetSessionByPID", QVariant::fromValue<uint>(settings_.processId));
    }
    if (path.isEmpty()) {
        path = ask("GetSession", QStringLiteral("auto"));
    }
    return path;
}

void LinuxSystemEventSource::takeInhibitor() {
    QDBusMessage message = QDBusMessage::createMethodCall(
        kLogindService, kLogindPath, kLogindManager, QStringLiteral("Inhibit"));
    message << QStringLiteral("sleep:shutdown") << QStringLiteral("Lumenote")
            << QStringLiteral("Saving the study session before the computer sleeps or shuts down")
            << QStringLiteral("delay");
    const QDBusMessage reply =
        settings_.systemBus.call(message, QDBus::Block, settings_.callTimeoutMilliseconds);
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty()) {
        return;
    }
    inhibitor_ = reply.arguments().constFirst().value<QDBusUnixFileDescriptor>();
    status_.inhibitorHeld = inhibitor_.isValid();
}

void LinuxSystemEventSource::releaseInhibitor() {
    // Dropping the last copy closes the descriptor, which is what tells logind
    // to go on.
    inhibitor_ = QDBusUnixFileDescriptor();
    status_.inhibitorHeld = false;
}

void LinuxSystemEventSource::onPrepareForSleep(bool start) {
    if (start) {
        sleepInProgress_ = true;
        emitSleep(SystemEventCause::prepareForSleep);
        releaseInhibitor();
    } else {
        sleepInProgress_ = false;
        emitWake(SystemEventCause::prepareForSleep);
        if (status_.logindAvailable && !status_.inhibitorHeld) {
            takeInhibitor();
        }
    }
    publishStatus();
}

void LinuxSystemEventSource::onPrepareForShutdown(bool start) {
    if (start) {
        if (callbacks_.terminate) {
            callbacks_.terminate(SystemEventCause::prepareForShutdown);
        }
        releaseInhibitor();
    } else if (status_.logindAvailable && !status_.inhibitorHeld) {
        // The shutdown was cancelled: be ready for the next one.
        takeInhibitor();
    }
    publishStatus();
}

void LinuxSystemEventSource::onSessionLock() {
    emitSleep(SystemEventCause::sessionLock);
}

void LinuxSystemEventSource::onSessionUnlock() {
    emitWake(SystemEventCause::sessionLock);
}

void LinuxSystemEventSource::onSessionPropertiesChanged(const QString& interfaceName,
                                                        const QVariantMap& changed,
                                                        const QStringList& invalidated) {
    if (interfaceName != kLogindSession) {
        return;
    }
    for (const QString& name : {QStringLiteral("Active"), QStringLiteral("LockedHint")}) {
        const auto found = changed.constFind(name);
        if (found != changed.constEnd()) {
            applyBoolProperty(name, found->toBool());
        } else if (invalidated.contains(name)) {
            fetchInvalidatedProperty(name);
        }
    }
}

void LinuxSystemEventSource::applyBoolProperty(const QString& name, bool value) {
    if (name == QLatin1String("Active")) {
        value ? emitWake(SystemEventCause::sessionActive)
              : emitSleep(SystemEventCause::sessionActive);
    } else if (name == QLatin1String("LockedHint")) {
        value ? emitSleep(SystemEventCause::sessionLockedHint)
              : emitWake(SystemEventCause::sessionLockedHint);
    }
}

void LinuxSystemEventSource::fetchInvalidatedProperty(const QString& name) {
    // An invalidated property carries no value: read it without blocking the
    // loop; the answer arrives on this thread like a signal.
    QDBusMessage message =
        QDBusMessage::createMethodCall(kLogindService, QString::fromStdString(status_.sessionPath),
                                       kPropertiesInterface, QStringLiteral("Get"));
    message << kLogindSession << name;
    auto* watcher = new QDBusPendingCallWatcher(
        settings_.systemBus.asyncCall(message, settings_.callTimeoutMilliseconds), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [this, name](QDBusPendingCallWatcher* finished) {
                const QDBusPendingReply<QDBusVariant> reply = *finished;
                if (reply.isValid() && reply.value().variant().typeId() == QMetaType::Bool) {
                    applyBoolProperty(name, reply.value().variant().toBool());
                }
                finished->deleteLater();
            });
}

void LinuxSystemEventSource::onScreenSaverActiveChanged(bool active) {
    active ? emitSleep(SystemEventCause::screenSaver) : emitWake(SystemEventCause::screenSaver);
}

void LinuxSystemEventSource::onLogindRegistered() {
    if (!started_ || status_.logindAvailable) {
        return;
    }
    attachLogind();
    publishStatus();
}

void LinuxSystemEventSource::onLogindUnregistered() {
    if (!started_) {
        return;
    }
    detachSession();
    publishStatus();
}

void LinuxSystemEventSource::emitSleep(SystemEventCause cause) {
    if (callbacks_.sleep) {
        callbacks_.sleep(cause);
    }
}

void LinuxSystemEventSource::emitWake(SystemEventCause cause) {
    if (callbacks_.wake) {
        callbacks_.wake(cause);
    }
}

void LinuxSystemEventSource::publishStatus() {
    if (status_ == publishedStatus_) {
        return;
    }
    publishedStatus_ = status_;
    if (statusChanged_) {
        statusChanged_(status_);
    }
}

}  // namespace lumenote::platform::linux_desktop
