// The frontmost application on GNOME Shell under Wayland, from the Lumenote
// extension running inside the shell (data/gnome-shell), over the session
// bus.
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

#include "foundation/result.hpp"
#include "platform/gnome/focus_report.hpp"
#include "platform/gnome/gnome_shell_error.hpp"
#include "platform/linux/desktop_entries.hpp"
#include "recording/platform_services.hpp"

class QDBusServiceWatcher;

namespace lumenote::platform::gnome {

// The extension's object and interface; its bus name is
// observation::kGnomeShellExtensionBusName.
inline constexpr const char* kExtensionObjectPath = "/com/tallywise/Lumenote/GnomeShellExtension";
inline constexpr const char* kExtensionInterface = "com.tallywise.Lumenote.GnomeShellExtension";

// Bound on each blocking call to the extension.
inline constexpr std::chrono::milliseconds kExtensionCallTimeout{250};

// Keeps the extension's latest report, resolved to an application once per
// change, so a sample costs no D-Bus call: the report is asked for once at
// open() and whenever the bus name gets a new owner (the shell restarted, the
// extension was disabled and enabled again), and FocusedWindowChanged signals
// keep it current in between. Signals are accepted from the name's owner
// only. Handles D-Bus traffic on the Qt thread of the connection: the event
// loop must run. Not thread-safe.
class GnomeShellFrontmostApplicationSource final : public QObject,
                                                   public recording::FrontmostApplicationSource {
    Q_OBJECT

  public:
    // Subscribes to the extension's signal and name, then asks for the focused
    // window (blocking for `callTimeout` at most). Fails with noSessionBus when
    // `bus` is not connected, extensionNotRunning when nobody owns the name,
    // extensionNotAnswering when the owner does not answer in time or in the
    // expected form. `processName` reads the executable name of a process
    // (linux_desktop::readProcessName for the real one).
    static Result<std::unique_ptr<GnomeShellFrontmostApplicationSource>, GnomeShellError> open(
        QDBusConnection bus, linux_desktop::DesktopEntryIndex entries,
        ProcessNameReader processName,
        std::chrono::milliseconds callTimeout = kExtensionCallTimeout);

    ~GnomeShellFrontmostApplicationSource() override;

    // The focused window's application from the latest report; nullopt when
    // no window has the focus, when nothing names it, and while the
    // extension is not observing().
    std::optional<recording::FrontmostApplication> frontmostApplication() override;

    // Called on the Qt thread after each change of the report (a focus
    // change, a late class, the extension vanishing or coming back). May be
    // empty.
    void setActivationHandler(std::function<void()> handler);

    // The extension owns its name and has reported since it last appeared:
    // false from the moment the name loses its owner, true again once the
    // new owner answered.
    bool observing() const { return observing_; }

  private Q_SLOTS:
    void onFocusedWindowChanged(const QDBusMessage& message);
    void onOwnerChanged(const QString& name, const QString& oldOwner, const QString& newOwner);

  private:
    GnomeShellFrontmostApplicationSource(QDBusConnection bus,
                                         linux_desktop::DesktopEntryIndex entries,
                                         ProcessNameReader processName,
                                         std::chrono::milliseconds callTimeout);

    // Asks the extension for its report; the error says why there is none.
    Result<FocusReport, GnomeShellError> query();
    // Keeps `report` and says whether it differs from the one kept before.
    bool apply(const std::optional<FocusReport>& report);
    void notify();

    QDBusConnection bus_;
    linux_desktop::DesktopEntryIndex entries_;
    ProcessNameReader processName_;
    std::chrono::milliseconds callTimeout_;
    QDBusServiceWatcher* watcher_ = nullptr;
    std::function<void()> activationHandler_;
    std::optional<FocusReport> report_;
    std::optional<recording::FrontmostApplication> application_;
    bool observing_ = false;
};

}  // namespace lumenote::platform::gnome
