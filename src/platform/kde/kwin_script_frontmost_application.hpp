// The frontmost application on KDE Plasma (Wayland or X11): Lumenote's KWin
// script reports each window KWin activates to an object this source
// exports on the session bus, and the source keeps the latest report.
#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QString>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "foundation/result.hpp"
#include "platform/kde/kwin_activation_report.hpp"
#include "platform/kde/kwin_script_error.hpp"
#include "platform/kde/kwin_scripting.hpp"
#include "platform/linux/desktop_entries.hpp"
#include "platform/linux/x11_frontmost_application.hpp"
#include "recording/platform_services.hpp"

class QDBusServiceWatcher;
class QTimer;

namespace lumenote::platform::kde {

class KWinObserverObject;

// Owns kObserverBusName and exports kObserverPath, then has KWin load and run
// the script (see KWinScripting for the Plasma 5 and 6 differences). Each
// window is named as on X11 (desktop_entries.hpp): the desktop file name as
// the GTK application id, resourceName and resourceClass as WM_CLASS, and,
// when KWin gives none of those, the process's executable name. Calls are
// taken only from the current owner of org.kde.KWin; anything else gets an
// error reply and changes nothing.
//
// org.kde.KWin is followed: when KWin goes away the source stops observing
// and reports nothing in front; when it comes back (a KWin restart) the
// script is loaded and run again. A starting KWin takes its bus name before
// it exports /Scripting, so a refused reload is tried again after 0.25 s,
// then after twice the previous wait each time, up to kReloadAttempts tries
// (about a minute in all). Samples read the latest report, with no
// D-Bus call. Must live on a thread with a running Qt event loop (the main
// thread); not thread-safe.
class KWinScriptFrontmostApplicationSource final : public recording::FrontmostApplicationSource {
  public:
    // The executable name of a local process, "" when it cannot be read.
    using ProcessNameReader = std::function<std::string(long processID)>;

    // Bound on each blocking call to KWin, at most 250 ms by default.
    static constexpr std::chrono::milliseconds kDefaultCallTimeout{250};
    static constexpr int kReloadAttempts = 9;

    // `scriptPath` is the file KWin loads (stageKWinScript()'s copy). Fails
    // with noSessionBus, observerNameTaken, observerNotExported,
    // kwinNotOnBus, loadRefused or runFailed; nothing stays registered or
    // loaded after a failure.
    static Result<std::unique_ptr<KWinScriptFrontmostApplicationSource>, KWinScriptError> open(
        QDBusConnection bus, linux_desktop::DesktopEntryIndex entries, QString scriptPath,
        ProcessNameReader processName = linux_desktop::readProcessName,
        std::chrono::milliseconds callTimeout = kDefaultCallTimeout);

    // Unloads the script from KWin (when KWin is on the bus) and gives up the
    // observer's name and object.
    ~KWinScriptFrontmostApplicationSource() override;
    KWinScriptFrontmostApplicationSource(const KWinScriptFrontmostApplicationSource&) = delete;
    KWinScriptFrontmostApplicationSource& operator=(const KWinScriptFrontmostApplicationSource&) =
        delete;

    // The application of the window in the latest report; nullopt when no
    // window is active, when that window gives nothing to name it by, before
    // the script first reported and while KWin is away.
    std::optional<recording::FrontmostApplication> frontmostApplication() override;

    // Called on the Qt thread after each report of the script (each change of
    // the active window) and when KWin goes away.
    void setActivationHandler(std::function<void()> handler);

    // KWin is on the bus and the script has reported since it was last
    // (re)loaded.
    bool observing() const { return observing_; }

    // Why the latest reload after a KWin restart failed (it may still be
    // tried again); nullopt when it succeeded or none happened.
    std::optional<KWinScriptError> reloadFailure() const { return reloadFailure_; }

  private:
    KWinScriptFrontmostApplicationSource(QDBusConnection bus,
                                         linux_desktop::DesktopEntryIndex entries,
                                         QString scriptPath, ProcessNameReader processName,
                                         std::chrono::milliseconds callTimeout);

    Result<void, KWinScriptError> registerObserver();
    void followKWin();
    void kwinAppeared(const QString& owner);
    void kwinVanished();
    void reload();
    // Handles one call of the script; false when it was not taken.
    bool handle(const QString& sender, const QString& member, const QList<QVariant>& arguments);
    std::optional<recording::FrontmostApplication> resolve(const KWinWindow& window) const;
    void notify();

    friend class KWinObserverObject;

    QDBusConnection bus_;
    linux_desktop::DesktopEntryIndex entries_;
    QString scriptPath_;
    ProcessNameReader processName_;
    KWinScripting scripting_;
    QString kwinOwner_;  // KWin's unique name; empty while it is away
    bool observing_ = false;
    bool nameOwned_ = false;
    bool objectRegistered_ = false;
    std::optional<KWinScriptError> reloadFailure_;
    int reloadAttempts_ = 0;
    std::optional<recording::FrontmostApplication> frontmost_;
    std::function<void()> activationHandler_;
    std::unique_ptr<KWinObserverObject> object_;
    QObject context_;
    QDBusServiceWatcher* watcher_ = nullptr;  // owned by context_
    QTimer* reloadTimer_ = nullptr;           // owned by context_
};

}  // namespace lumenote::platform::kde
