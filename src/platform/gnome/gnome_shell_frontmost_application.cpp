#include "platform/gnome/gnome_shell_frontmost_application.hpp"

#include <QDBusServiceWatcher>

#include <utility>

#include "platform/observation/observation_backends.hpp"

namespace lumenote::platform::gnome {

namespace {

QString extensionBusName() {
    const auto name = observation::kGnomeShellExtensionBusName;
    return QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
}

}  // namespace

Result<std::unique_ptr<GnomeShellFrontmostApplicationSource>, GnomeShellError>
GnomeShellFrontmostApplicationSource::open(QDBusConnection bus,
                                           linux_desktop::DesktopEntryIndex entries,
                                           ProcessNameReader processName,
                                           std::chrono::milliseconds callTimeout) {
    if (!bus.isConnected()) {
        return fail(GnomeShellError::noSessionBus);
    }
    std::unique_ptr<GnomeShellFrontmostApplicationSource> source(
        new GnomeShellFrontmostApplicationSource(std::move(bus), std::move(entries),
                                                 std::move(processName), callTimeout));
    // Subscribing before asking: a change between the answer and the
    // subscription would otherwise go unheard until the next one.
    const bool subscribed = source->bus_.connect(
        extensionBusName(), QString::fromLatin1(kExtensionObjectPath),
        QString::fromLatin1(kExtensionInterface), QStringLiteral("FocusedWindowChanged"),
        source.get(), SLOT(onFocusedWindowChanged(QDBusMessage)));
    if (!subscribed) {
        return fail(GnomeShellError::noSessionBus);
    }
    source->watcher_ = new QDBusServiceWatcher(
        extensionBusName(), source->bus_, QDBusServiceWatcher::WatchForOwnerChange, source.get());
    connect(source->watcher_, &QDBusServiceWatcher::serviceOwnerChanged, source.get(),
            &GnomeShellFrontmostApplicationSource::onOwnerChanged);
    auto report = source->query();
    if (!report) {
        return fail(report.error());
    }
    source->apply(report.value());
    source->observing_ = true;
    return source;
}

GnomeShellFrontmostApplicationSource::GnomeShellFrontmostApplicationSource(
    QDBusConnection bus, linux_desktop::DesktopEntryIndex entries, ProcessNameReader processName,
    std::chrono::milliseconds callTimeout)
    : bus_(std::move(bus)),
      entries_(std::move(entries)),
      processName_(std::move(processName)),
      callTimeout_(callTimeout) {}

GnomeShellFrontmostApplicationSource::~GnomeShellFrontmostApplicationSource() {
    bus_.disconnect(extensionBusName(), QString::fromLatin1(kExtensionObjectPath),
                    QString::fromLatin1(kExtensionInterface),
                    QStringLiteral("FocusedWindowChanged"), this,
                    SLOT(onFocusedWindowChanged(QDBusMessage)));
}

std::optional<recording::FrontmostApplication>
GnomeShellFrontmostApplicationSource::frontmostApplication() {
    return observing_ ? application_ : std::nullopt;
}

void GnomeShellFrontmostApplicationSource::setActivationHandler(std::function<void()> handler) {
    activationHandler_ = std::move(handler);
}

Result<FocusReport, GnomeShellError> GnomeShellFrontmostApplicationSource::query() {
    const QDBusMessage call = QDBusMessage::createMethodCall(
        extensionBusName(), QString::fromLatin1(kExtensionObjectPath),
        QString::fromLatin1(kExtensionInterface), QStringLiteral("GetFocusedWindow"));
    const QDBusMessage reply =
        bus_.call(call, QDBus::Block, static_cast<int>(callTimeout_.count()));
    if (reply.type() != QDBusMessage::ReplyMessage) {
        const QString error = reply.errorName();
        const bool absent = error == QStringLiteral("org.freedesktop.DBus.Error.ServiceUnknown") ||
                            error == QStringLiteral("org.freedesktop.DBus.Error.NameHasNoOwner");
        return fail(absent ? GnomeShellError::extensionNotRunning
                           : GnomeShellError::extensionNotAnswering);
    }
    const auto report = parseFocusReport(reply.arguments());
    if (!report) {
        return fail(GnomeShellError::extensionNotAnswering);
    }
    return *report;
}

bool GnomeShellFrontmostApplicationSource::apply(const std::optional<FocusReport>& report) {
    if (report == report_) {
        return false;
    }
    report_ = report;
    application_ = report ? focusedApplication(*report, entries_, processName_) : std::nullopt;
    return true;
}

void GnomeShellFrontmostApplicationSource::notify() {
    if (activationHandler_) {
        activationHandler_();
    }
}

void GnomeShellFrontmostApplicationSource::onFocusedWindowChanged(const QDBusMessage& message) {
    // A signal in a form this version does not read is dropped: the next
    // well-formed one, or the next owner's answer, brings the state back.
    // QtDBus delivers the signal only from the name's current owner, so a
    // well-formed one also means the extension reports (even when the
    // question asked as it appeared went unanswered).
    const auto report = parseFocusReport(message.arguments());
    if (!report) {
        return;
    }
    const bool resumed = !std::exchange(observing_, true);
    if (apply(report) || resumed) {
        notify();
    }
}

void GnomeShellFrontmostApplicationSource::onOwnerChanged(const QString&, const QString& oldOwner,
                                                          const QString& newOwner) {
    const bool wasObserving = observing_;
    if (!oldOwner.isEmpty() || newOwner.isEmpty()) {
        observing_ = false;
        apply(std::nullopt);
    }
    if (!newOwner.isEmpty()) {
        const auto report = query();
        if (report) {
            apply(report.value());
            observing_ = true;
        }
    }
    if (wasObserving || observing_) {
        notify();
    }
}

}  // namespace lumenote::platform::gnome
