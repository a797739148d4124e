#include "platform/kde/kde_screensaver_idle_time.hpp"

#include <QDBusMessage>

namespace lumenote::platform::kde {

KdeScreenSaverIdleTimeProvider::KdeScreenSaverIdleTimeProvider(QDBusConnection bus,
                                                               std::chrono::milliseconds timeout)
    : bus_(std::move(bus)), timeoutMilliseconds_(static_cast<int>(timeout.count())) {
    idleSeconds();
}

double KdeScreenSaverIdleTimeProvider::idleSeconds() {
    const auto call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.ScreenSaver"), QStringLiteral("/ScreenSaver"),
        QStringLiteral("org.freedesktop.ScreenSaver"), QStringLiteral("GetSessionIdleTime"));
    const auto reply = bus_.call(call, QDBus::Block, timeoutMilliseconds_);
    available_ = reply.type() == QDBusMessage::ReplyMessage && reply.arguments().size() == 1 &&
                 reply.arguments().front().metaType().id() == QMetaType::UInt;
    if (!available_) {
        return 0;
    }
    return reply.arguments().front().toUInt() / 1000.0;
}

}  // namespace lumenote::platform::kde
