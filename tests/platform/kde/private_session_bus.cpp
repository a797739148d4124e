#include "platform/kde/private_session_bus.hpp"

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QEventLoop>
#include <QFile>
#include <QProcessEnvironment>
#include <QTimer>

#include <chrono>

namespace lumenote::platform::kde::testing {

namespace {

QCoreApplication& application() {
    static int argc = 1;
    static char name[] = "platform_kde_tests";
    static char* argv[] = {name, nullptr};
    static QCoreApplication instance(argc, argv);
    return instance;
}

constexpr const char* kBusConfig = R"(<!DOCTYPE busconfig PUBLIC
 "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:tmpdir=/tmp</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
)";

int nextConnection = 0;

}  // namespace

bool waitUntil(const std::function<bool()>& condition, std::chrono::milliseconds limit) {
    application();
    const auto deadline = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= deadline) {
            return false;
        }
        QEventLoop loop;
        QTimer::singleShot(5, &loop, &QEventLoop::quit);
        loop.exec();
    }
    return true;
}

PrivateSessionBus::PrivateSessionBus() {
    application();
    QFile config(folder_.filePath(QStringLiteral("bus.conf")));
    if (!config.open(QIODevice::WriteOnly) || config.write(kBusConfig) < 0) {
        return;
    }
    config.close();
    daemon_ = std::make_unique<QProcess>();
    daemon_->start(QStringLiteral("timeout"),
                   {QStringLiteral("120"), QStringLiteral("dbus-daemon"),
                    QStringLiteral("--config-file=") + config.fileName(),
                    QStringLiteral("--nofork"), QStringLiteral("--print-address=1")});
    if (!daemon_->waitForStarted(5000)) {
        return;
    }
    while (!daemon_->canReadLine() && daemon_->waitForReadyRead(5000)) {
    }
    address_ = QString::fromUtf8(daemon_->readLine()).trimmed();
    if (address_.isEmpty()) {
        return;
    }
    connectionName_ = QStringLiteral("kde-test-%1").arg(nextConnection++);
    connection_ = QDBusConnection::connectToBus(address_, connectionName_);
}

PrivateSessionBus::~PrivateSessionBus() {
    for (auto& standIn : standIns_) {
        standIn->terminate();
        standIn->waitForFinished(5000);
    }
    QDBusConnection::disconnectFromBus(connectionName_);
    for (const auto& name : otherConnections_) {
        QDBusConnection::disconnectFromBus(name);
    }
    if (daemon_) {
        daemon_->terminate();
        daemon_->waitForFinished(5000);
    }
}

QDBusConnection PrivateSessionBus::secondConnection() {
    otherConnections_.push_back(QStringLiteral("kde-test-%1").arg(nextConnection++));
    return QDBusConnection::connectToBus(address_, otherConnections_.back());
}

QProcess* PrivateSessionBus::startStandIn(const QStringList& options, const QString& name) {
    auto standIn = std::make_unique<QProcess>();
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), address_);
    standIn->setProcessEnvironment(environment);
    standIn->setProcessChannelMode(QProcess::ForwardedErrorChannel);
    standIn->start(
        QStringLiteral("timeout"),
        QStringList{QStringLiteral("120"), QStringLiteral("/usr/bin/python3"),
                    QStringLiteral(LUMENOTE_SOURCE_DIR "/tests/platform/kde/fake_kwin.py")} +
            options);
    auto* started = standIn.get();
    standIns_.push_back(std::move(standIn));
    if (!started->waitForStarted(5000) || !waitUntil([&] { return hasOwner(name); })) {
        return nullptr;
    }
    return started;
}

void PrivateSessionBus::stop(QProcess* standIn) {
    standIn->terminate();
    standIn->waitForFinished(5000);
    waitUntil([&] {
        return !hasOwner(QStringLiteral("org.kde.KWin")) &&
               !hasOwner(QStringLiteral("org.freedesktop.ScreenSaver"));
    });
}

bool PrivateSessionBus::hasOwner(const QString& name) const {
    const auto reply = connection_.interface()->isServiceRegistered(name);
    return reply.isValid() && reply.value();
}

QVariantList PrivateSessionBus::control(const QString& method,
                                        const QVariantList& arguments) const {
    auto call =
        QDBusMessage::createMethodCall(QStringLiteral("org.kde.KWin"), QStringLiteral("/Control"),
                                       QStringLiteral("test.FakeKWin.Control"), method);
    call.setArguments(arguments);
    return connection_.call(call, QDBus::Block, 5000).arguments();
}

QStringList PrivateSessionBus::calls() const {
    const auto reply = control(QStringLiteral("Calls"));
    return reply.isEmpty() ? QStringList() : reply.front().toStringList();
}

}  // namespace lumenote::platform::kde::testing
