#include "platform/kde/kwin_scripting.hpp"

#include <QDBusMessage>
#include <QStringList>

namespace lumenote::platform::kde {

namespace {

const QString kKWinScriptingService = QStringLiteral("org.kde.KWin");
const QString kScriptingPath = QStringLiteral("/Scripting");
const QString kScriptingInterface = QStringLiteral("org.kde.kwin.Scripting");
const QString kScriptInterface = QStringLiteral("org.kde.kwin.Script");

bool answeredTrue(const QDBusMessage& reply) {
    return reply.type() == QDBusMessage::ReplyMessage && reply.arguments().size() == 1 &&
           reply.arguments().front().toBool();
}

}  // namespace

KWinScripting::KWinScripting(QDBusConnection bus, std::chrono::milliseconds timeout)
    : bus_(std::move(bus)), timeoutMilliseconds_(static_cast<int>(timeout.count())) {}

bool KWinScripting::isScriptLoaded(const QString& pluginName) const {
    auto call =
        QDBusMessage::createMethodCall(kKWinScriptingService, kScriptingPath, kScriptingInterface,
                                       QStringLiteral("isScriptLoaded"));
    call << pluginName;
    return answeredTrue(bus_.call(call, QDBus::Block, timeoutMilliseconds_));
}

bool KWinScripting::unloadScript(const QString& pluginName) const {
    auto call = QDBusMessage::createMethodCall(kKWinScriptingService, kScriptingPath,
                                               kScriptingInterface, QStringLiteral("unloadScript"));
    call << pluginName;
    return answeredTrue(bus_.call(call, QDBus::Block, timeoutMilliseconds_));
}

Result<int, KWinScriptError> KWinScripting::loadAndRun(const QString& filePath,
                                                       const QString& pluginName) const {
    if (isScriptLoaded(pluginName)) {
        unloadScript(pluginName);
    }
    auto call = QDBusMessage::createMethodCall(kKWinScriptingService, kScriptingPath,
                                               kScriptingInterface, QStringLiteral("loadScript"));
    call << filePath << pluginName;
    const auto reply = bus_.call(call, QDBus::Block, timeoutMilliseconds_);
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().size() != 1 ||
        reply.arguments().front().metaType().id() != QMetaType::Int) {
        return fail(KWinScriptError::loadRefused);
    }
    // KWin answers -1 when it refuses the file or the plugin name.
    const int scriptId = reply.arguments().front().toInt();
    if (scriptId < 0) {
        return fail(KWinScriptError::loadRefused);
    }
    if (!run(scriptId)) {
        unloadScript(pluginName);
        return fail(KWinScriptError::runFailed);
    }
    return scriptId;
}

bool KWinScripting::run(int scriptId) const {
    const QString id = QString::number(scriptId);
    for (const QString& path :
         {QStringLiteral("/Scripting/Script") + id, QStringLiteral("/") + id}) {
        const auto call = QDBusMessage::createMethodCall(kKWinScriptingService, path,
                                                         kScriptInterface, QStringLiteral("run"));
        const auto reply = bus_.call(call, QDBus::Block, timeoutMilliseconds_);
        if (reply.type() == QDBusMessage::ReplyMessage) {
            return true;
        }
        // Only a missing object means "try the other release's path".
        const QString error = reply.errorName();
        if (error != QLatin1String("org.freedesktop.DBus.Error.UnknownObject") &&
            error != QLatin1String("org.freedesktop.DBus.Error.UnknownMethod") &&
            error != QLatin1String("org.freedesktop.DBus.Error.UnknownInterface")) {
            return false;
        }
    }
    return false;
}

}  // namespace lumenote::platform::kde
