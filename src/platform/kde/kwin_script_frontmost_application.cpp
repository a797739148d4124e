#include "platform/kde/kwin_script_frontmost_application.hpp"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QDBusVirtualObject>
#include <QTimer>

#include <string_view>
#include <utility>

namespace lumenote::platform::kde {

namespace {

const QString kKWinService = QStringLiteral("org.kde.KWin");

// The desktop-file id KWin gives, without a ".desktop" suffix or a folder
// (some programs set a file name or a path instead of the id).
std::string desktopFileId(std::string name) {
    if (const auto slash = name.rfind('/'); slash != std::string::npos) {
        name.erase(0, slash + 1);
    }
    constexpr std::string_view kSuffix = ".desktop";
    if (name.size() > kSuffix.size() && name.ends_with(kSuffix)) {
        name.resize(name.size() - kSuffix.size());
    }
    return name;
}

}  // namespace

// The object at kObserverPath. A virtual object reads each call's arguments
// whatever their D-Bus types, so a pid that a script engine sends as a double
// is still understood (readActivationCall()).
class KWinObserverObject final : public QDBusVirtualObject {
  public:
    explicit KWinObserverObject(KWinScriptFrontmostApplicationSource& source) : source_(source) {}

    QString introspect(const QString&) const override {
        return QStringLiteral(
                   "<interface name=\"%1\">"
                   "<method name=\"WindowActivated\">"
                   "<arg name=\"resourceClass\" type=\"s\" direction=\"in\"/>"
                   "<arg name=\"resourceName\" type=\"s\" direction=\"in\"/>"
                   "<arg name=\"desktopFileName\" type=\"s\" direction=\"in\"/>"
                   "<arg name=\"pid\" type=\"i\" direction=\"in\"/>"
                   "</method>"
                   "<method name=\"NoWindowActive\"/>"
                   "</interface>")
            .arg(QLatin1String(kObserverInterface));
    }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        if (message.type() != QDBusMessage::MethodCallMessage ||
            message.interface() != QLatin1String(kObserverInterface)) {
            return false;
        }
        if (!source_.handle(message.service(), message.member(), message.arguments())) {
            connection.send(message.createErrorReply(
                QStringLiteral("org.freedesktop.DBus.Error.InvalidArgs"),
                QStringLiteral("Only KWin's script reports windows, in its own format.")));
            return true;
        }
        if (!message.isReplyRequired()) {
            return true;
        }
        connection.send(message.createReply());
        return true;
    }

  private:
    KWinScriptFrontmostApplicationSource& source_;
};

Result<std::unique_ptr<KWinScriptFrontmostApplicationSource>, KWinScriptError>
KWinScriptFrontmostApplicationSource::open(QDBusConnection bus,
                                           linux_desktop::DesktopEntryIndex entries,
                                           QString scriptPath, ProcessNameReader processName,
                                           std::chrono::milliseconds callTimeout) {
    if (!bus.isConnected()) {
        return fail(KWinScriptError::noSessionBus);
    }
    std::unique_ptr<KWinScriptFrontmostApplicationSource> source(
        new KWinScriptFrontmostApplicationSource(std::move(bus), std::move(entries),
                                                 std::move(scriptPath), std::move(processName),
                                                 callTimeout));
    if (auto registered = source->registerObserver(); !registered) {
        return fail(registered.error());
    }
    const auto owner = source->bus_.interface()->serviceOwner(kKWinService);
    if (!owner.isValid() || owner.value().isEmpty()) {
        return fail(KWinScriptError::kwinNotOnBus);
    }
    // Followed before the script runs, so that a KWin that restarts while it
    // loads is not missed.
    source->followKWin();
    source->kwinOwner_ = owner.value();
    if (auto loaded =
            source->scripting_.loadAndRun(source->scriptPath_, QLatin1String(kScriptPluginName));
        !loaded) {
        return fail(loaded.error());
    }
    return source;
}

KWinScriptFrontmostApplicationSource::KWinScriptFrontmostApplicationSource(
    QDBusConnection bus, linux_desktop::DesktopEntryIndex entries, QString scriptPath,
    ProcessNameReader processName, std::chrono::milliseconds callTimeout)
    : bus_(std::move(bus)),
      entries_(std::move(entries)),
      scriptPath_(std::move(scriptPath)),
      processName_(std::move(processName)),
      scripting_(bus_, callTimeout),
      object_(std::make_unique<KWinObserverObject>(*this)) {}

KWinScriptFrontmostApplicationSource::~KWinScriptFrontmostApplicationSource() {
    // No call of the script may reach this object while it is destroyed.
    if (objectRegistered_) {
        bus_.unregisterObject(QLatin1String(kObserverPath));
    }
    if (!kwinOwner_.isEmpty()) {
        scripting_.unloadScript(QLatin1String(kScriptPluginName));
    }
    if (nameOwned_) {
        bus_.unregisterService(QLatin1String(kObserverBusName));
    }
}

Result<void, KWinScriptError> KWinScriptFrontmostApplicationSource::registerObserver() {
    if (!bus_.registerVirtualObject(QLatin1String(kObserverPath), object_.get())) {
        return fail(KWinScriptError::observerNotExported);
    }
    objectRegistered_ = true;
    const auto reply = bus_.interface()->registerService(
        QLatin1String(kObserverBusName), QDBusConnectionInterface::DontQueueService,
        QDBusConnectionInterface::DontAllowReplacement);
    if (!reply.isValid()) {
        return fail(KWinScriptError::noSessionBus);
    }
    if (reply.value() != QDBusConnectionInterface::ServiceRegistered) {
        return fail(KWinScriptError::observerNameTaken);
    }
    nameOwned_ = true;
    return {};
}

void KWinScriptFrontmostApplicationSource::followKWin() {
    reloadTimer_ = new QTimer(&context_);
    reloadTimer_->setSingleShot(true);
    QObject::connect(reloadTimer_, &QTimer::timeout, &context_, [this] { reload(); });
    watcher_ = new QDBusServiceWatcher(kKWinService, bus_, QDBusServiceWatcher::WatchForOwnerChange,
                                       &context_);
    QObject::connect(watcher_, &QDBusServiceWatcher::serviceOwnerChanged, &context_,
                     [this](const QString&, const QString& oldOwner, const QString& newOwner) {
                         if (!oldOwner.isEmpty()) {
                             kwinVanished();
                         }
                         if (!newOwner.isEmpty()) {
                             kwinAppeared(newOwner);
                         }
                     });
}

void KWinScriptFrontmostApplicationSource::kwinAppeared(const QString& owner) {
    kwinOwner_ = owner;
    reloadAttempts_ = 0;
    reload();
}

void KWinScriptFrontmostApplicationSource::reload() {
    auto loaded = scripting_.loadAndRun(scriptPath_, QLatin1String(kScriptPluginName));
    reloadFailure_ = loaded ? std::nullopt : std::optional(loaded.error());
    if (loaded || ++reloadAttempts_ >= kReloadAttempts) {
        return;
    }
    reloadTimer_->start(std::chrono::milliseconds(250) * (1 << (reloadAttempts_ - 1)));
}

void KWinScriptFrontmostApplicationSource::kwinVanished() {
    reloadTimer_->stop();
    kwinOwner_.clear();
    observing_ = false;
    frontmost_.reset();
    notify();
}

bool KWinScriptFrontmostApplicationSource::handle(const QString& sender, const QString& member,
                                                  const QList<QVariant>& arguments) {
    if (kwinOwner_.isEmpty() || sender != kwinOwner_) {
        return false;
    }
    const auto report = readActivationCall(member, arguments);
    if (!report) {
        return false;
    }
    frontmost_ = report->window ? resolve(*report->window) : std::nullopt;
    observing_ = true;
    notify();
    return true;
}

std::optional<recording::FrontmostApplication> KWinScriptFrontmostApplicationSource::resolve(
    const KWinWindow& window) const {
    linux_desktop::WindowClassHints hints;
    hints.gtkApplicationId = desktopFileId(window.desktopFileName);
    hints.instanceName = window.resourceName;
    hints.className = window.resourceClass;
    // The process is only asked when the window names nothing else: its
    // executable is the least telling name and the costliest to read.
    if (hints.gtkApplicationId.empty() && hints.instanceName.empty() && hints.className.empty() &&
        window.processId > 0) {
        hints.processName = processName_(window.processId);
    }
    return linux_desktop::resolveApplication(entries_, hints);
}

std::optional<recording::FrontmostApplication>
KWinScriptFrontmostApplicationSource::frontmostApplication() {
    return frontmost_;
}

void KWinScriptFrontmostApplicationSource::setActivationHandler(std::function<void()> handler) {
    activationHandler_ = std::move(handler);
}

void KWinScriptFrontmostApplicationSource::notify() {
    if (activationHandler_) {
        activationHandler_();
    }
}

}  // namespace lumenote::platform::kde
