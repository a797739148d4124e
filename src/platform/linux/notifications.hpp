// FreedesktopNotificationService: user notices through the desktop's
// org.freedesktop.Notifications server on the session bus.
#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QString>

#include <optional>
#include <string>

#include "recording/platform_services.hpp"

namespace lumenote::platform::linux_desktop {

// Linux has no per-application permission for notifications: the state is
// `authorized` when a notification server answers and `unavailable` when none
// does; `denied` never occurs.
class FreedesktopNotificationService final : public QObject, public recording::NotificationService {
    Q_OBJECT

  public:
    // `timeoutMilliseconds` bounds every call to the server.
    explicit FreedesktopNotificationService(QDBusConnection sessionBus,
                                            int timeoutMilliseconds = 1000,
                                            QObject* parent = nullptr);

    // Sends the notice without waiting for the server; a failed delivery
    // marks the service unavailable until a server appears.
    void post(const std::string& title, const std::string& body) override;
    // Asks the server for its information the first time and after a server
    // came or went, blocking for at most the timeout; otherwise answers from
    // what it last learnt.
    recording::NotificationAuthorization authorization() override;

  private:
    QDBusConnection bus_;
    int timeoutMilliseconds_;
    std::optional<recording::NotificationAuthorization> known_;
};

}  // namespace lumenote::platform::linux_desktop
