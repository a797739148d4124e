#include "platform/linux/notifications.hpp"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusServiceWatcher>
#include <QStringList>
#include <QVariantMap>

namespace lumenote::platform::linux_desktop {

namespace {

const QString kService = QStringLiteral("org.freedesktop.Notifications");
const QString kPath = QStringLiteral("/org/freedesktop/Notifications");
const QString kInterface = QStringLiteral("org.freedesktop.Notifications");
const QString kApplicationName = QStringLiteral("Lumenote");
// Let the server choose how long the notice stays on screen.
constexpr int kServerDefaultExpiry = -1;

}  // namespace

FreedesktopNotificationService::FreedesktopNotificationService(QDBusConnection sessionBus,
                                                               int timeoutMilliseconds,
                                                               QObject* parent)
    : QObject(parent), bus_(std::move(sessionBus)), timeoutMilliseconds_(timeoutMilliseconds) {
    if (!bus_.isConnected()) {
        known_ = recording::NotificationAuthorization::unavailable;
        return;
    }
    auto* watcher =
        new QDBusServiceWatcher(kService, bus_, QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(watcher, &QDBusServiceWatcher::serviceOwnerChanged, this, [this] { known_.reset(); });
}

void FreedesktopNotificationService::post(const std::string& title, const std::string& body) {
    if (!bus_.isConnected()) {
        return;
    }
    QDBusMessage message =
        QDBusMessage::createMethodCall(kService, kPath, kInterface, QStringLiteral("Notify"));
    message << kApplicationName << QVariant::fromValue<uint>(0) << QString()
            << QString::fromStdString(title) << QString::fromStdString(body) << QStringList()
            << QVariantMap() << kServerDefaultExpiry;
    auto* watcher =
        new QDBusPendingCallWatcher(bus_.asyncCall(message, timeoutMilliseconds_), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [this](QDBusPendingCallWatcher* finished) {
                known_ = finished->isError() ? recording::NotificationAuthorization::unavailable
                                             : recording::NotificationAuthorization::authorized;
                finished->deleteLater();
            });
}

recording::NotificationAuthorization FreedesktopNotificationService::authorization() {
    if (known_) {
        return *known_;
    }
    const QDBusMessage message = QDBusMessage::createMethodCall(
        kService, kPath, kInterface, QStringLiteral("GetServerInformation"));
    const QDBusMessage reply = bus_.call(message, QDBus::Block, timeoutMilliseconds_);
    known_ = reply.type() == QDBusMessage::ReplyMessage
                 ? recording::NotificationAuthorization::authorized
                 : recording::NotificationAuthorization::unavailable;
    return *known_;
}

}  // namespace lumenote::platform::linux_desktop
