#include "platform/gnome/mutter_idle_time.hpp"

#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QMetaType>

#include <algorithm>

namespace lumenote::platform::gnome {

namespace {

const QString kService = QStringLiteral("org.gnome.Mutter.IdleMonitor");
const QString kPath = QStringLiteral("/org/gnome/Mutter/IdleMonitor/Core");
const QString kInterface = QStringLiteral("org.gnome.Mutter.IdleMonitor");

QDBusMessage monitorCall(const char* method, const QVariantList& arguments = {}) {
    QDBusMessage call =
        QDBusMessage::createMethodCall(kService, kPath, kInterface, QString::fromLatin1(method));
    call.setArguments(arguments);
    return call;
}

bool answeredWith(const QDBusMessage& reply, QMetaType::Type type) {
    return reply.type() == QDBusMessage::ReplyMessage && reply.arguments().size() == 1 &&
           reply.arguments().constFirst().metaType().id() == type;
}

}  // namespace

MutterIdleTimeProvider::MutterIdleTimeProvider(QDBusConnection bus,
                                               recording::MonotonicTimeProvider& clock,
                                               std::chrono::milliseconds callTimeout)
    : bus_(std::move(bus)), clock_(clock), callTimeout_(callTimeout) {
    if (!bus_.isConnected()) {
        return;
    }
    bus_.connect(kService, kPath, kInterface, QStringLiteral("WatchFired"), this,
                 SLOT(onWatchFired(QDBusMessage)));
    watcher_ =
        new QDBusServiceWatcher(kService, bus_, QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(watcher_, &QDBusServiceWatcher::serviceOwnerChanged, this,
            &MutterIdleTimeProvider::onOwnerChanged);
    arm();
}

MutterIdleTimeProvider::~MutterIdleTimeProvider() {
    for (const auto& watch : {idleWatch_, activeWatch_}) {
        if (watch) {
            bus_.call(monitorCall("RemoveWatch", {QVariant::fromValue(*watch)}), QDBus::NoBlock);
        }
    }
}

double MutterIdleTimeProvider::idleSeconds() {
    if (watched()) {
        return idleSince_ ? std::max(0.0, clock_.now() - *idleSince_) : 0.0;
    }
    return askIdleTime().value_or(0.0);
}

void MutterIdleTimeProvider::arm() {
    forgetWatches();
    idleWatch_ = addWatch(
        "AddIdleWatch", {QVariant::fromValue(static_cast<qulonglong>(kIdleWatchInterval.count()))});
    const auto idle = askIdleTime();
    if (!idleWatch_ || !idle) {
        return;
    }
    // Input may have stopped before the watch was added: it then fires only
    // after the next input and pause.
    if (*idle >= std::chrono::duration<double>(kIdleWatchInterval).count()) {
        idleSince_ = clock_.now() - *idle;
        addUserActiveWatch();
    }
}

void MutterIdleTimeProvider::forgetWatches() {
    idleWatch_.reset();
    activeWatch_.reset();
    idleSince_.reset();
}

void MutterIdleTimeProvider::addUserActiveWatch() {
    activeWatch_ = addWatch("AddUserActiveWatch", {});
    if (!activeWatch_) {
        // Without it the return of input would go unseen and the pause
        // would never end: ask at each reading instead.
        bus_.call(monitorCall("RemoveWatch", {QVariant::fromValue(*idleWatch_)}), QDBus::NoBlock);
        forgetWatches();
    }
}

void MutterIdleTimeProvider::onWatchFired(const QDBusMessage& message) {
    if (message.arguments().size() != 1 ||
        message.arguments().constFirst().metaType().id() != QMetaType::UInt) {
        return;
    }
    const std::uint32_t id = message.arguments().constFirst().toUInt();
    if (id == idleWatch_ && !idleSince_) {
        idleSince_ = clock_.now() - std::chrono::duration<double>(kIdleWatchInterval).count();
        addUserActiveWatch();
    } else if (id == activeWatch_) {
        // A user-active watch fires once and is gone.
        activeWatch_.reset();
        idleSince_.reset();
    }
}

void MutterIdleTimeProvider::onOwnerChanged(const QString&, const QString&,
                                            const QString& newOwner) {
    if (newOwner.isEmpty()) {
        forgetWatches();
        available_ = false;
        return;
    }
    arm();
}

std::optional<double> MutterIdleTimeProvider::askIdleTime() {
    available_ = false;
    if (!bus_.isConnected()) {
        return std::nullopt;
    }
    const QDBusMessage reply =
        bus_.call(monitorCall("GetIdletime"), QDBus::Block, static_cast<int>(callTimeout_.count()));
    if (!answeredWith(reply, QMetaType::ULongLong)) {
        return std::nullopt;
    }
    available_ = true;
    return static_cast<double>(reply.arguments().constFirst().toULongLong()) / 1000.0;
}

std::optional<std::uint32_t> MutterIdleTimeProvider::addWatch(const char* method,
                                                              const QVariantList& arguments) {
    const QDBusMessage reply = bus_.call(monitorCall(method, arguments), QDBus::Block,
                                         static_cast<int>(callTimeout_.count()));
    if (!answeredWith(reply, QMetaType::UInt)) {
        return std::nullopt;
    }
    return reply.arguments().constFirst().toUInt();
}

}  // namespace lumenote::platform::gnome
