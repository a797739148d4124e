#include "runtime/system_facts.hpp"

#include <sys/utsname.h>

#include <QCoreApplication>
#include <QDBusConnection>
#include <fstream>
#include <memory>

#include "platform/linux/notifications.hpp"

namespace lumenote::runtime {

std::string operatingSystemName() {
    std::ifstream release("/etc/os-release");
    std::string line;
    std::string name = "Linux";
    while (std::getline(release, line)) {
        if (line.rfind("PRETTY_NAME=", 0) == 0) {
            name = line.substr(12);
            if (name.size() >= 2 && name.front() == '"' && name.back() == '"') {
                name = name.substr(1, name.size() - 2);
            }
        }
    }
    utsname system{};
    if (::uname(&system) == 0) {
        name += std::string(", kernel ") + system.release;
    }
    return name;
}

bridge::NotificationAuthorizationState desktopNotificationState() {
    int argc = 1;
    char name[] = "lumenote-cli";
    char* argv[] = {name, nullptr};
    std::unique_ptr<QCoreApplication> application;
    if (QCoreApplication::instance() == nullptr) {
        application = std::make_unique<QCoreApplication>(argc, argv);
    }
    platform::linux_desktop::FreedesktopNotificationService notifications(
        QDBusConnection::sessionBus());
    switch (notifications.authorization()) {
        case recording::NotificationAuthorization::authorized:
            return bridge::NotificationAuthorizationState::authorized;
        case recording::NotificationAuthorization::denied:
            return bridge::NotificationAuthorizationState::denied;
        case recording::NotificationAuthorization::unavailable:
            return bridge::NotificationAuthorizationState::unavailable;
    }
    return bridge::NotificationAuthorizationState::unavailable;
}

}  // namespace lumenote::runtime
