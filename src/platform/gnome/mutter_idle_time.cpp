#include "platform/gnome/mutter_idle_time.hpp"

#include <QDBusMessage>
#include <QMetaType>

namespace lumenote::platform::gnome {

MutterIdleTimeProvider::MutterIdleTimeProvider(QDBusConnection bus,
                                               std::chrono::milliseconds callTimeout)
    : bus_(std::move(bus)), callTimeout_(callTimeout) {
    idleSeconds();
}

double MutterIdleTimeProvider::idleSeconds() {
    available_ = false;
    if (!bus_.isConnected()) {
        return 0.0;
    }
    const QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.gnome.Mutter.IdleMonitor"),
        QStringLiteral("/org/gnome/Mutter/IdleMonitor/Core"),
        QStringLiteral("org.gnome.Mutter.IdleMonitor"), QStringLiteral("GetIdletime"));
    const QDBusMessage reply =
        bus_.call(call, QDBus::Block, static_cast<int>(callTimeout_.count()));
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().size() != 1 ||
        reply.arguments().constFirst().metaType().id() != QMetaType::ULongLong) {
        return 0.0;
    }
    available_ = true;
    return static_cast<double>(reply.arguments().constFirst().toULongLong()) / 1000.0;
}

}  // namespace lumenote::platform::gnome
