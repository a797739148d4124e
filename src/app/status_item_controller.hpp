// The tray's status item: the icon, tooltip and menu of the recorder's state.
// It reads the session manager every second while the application runs (the
// refresh period), and whenever the recorder says something changed, and
// redraws only when the status differs from the one drawn last. A left click
// opens the panel; the menu carries the application-wide commands.
//
// A tray icon on Linux has no title beside it (neither the X11 tray nor
// StatusNotifierItem hosts show one), so the elapsed time is shown where a
// tray shows text: in the tooltip, which is the accessibility text, and in
// the first line of the menu ("Recording · 12:34").
#pragma once

#include <QMenu>
#include <QObject>
#include <QSystemTrayIcon>
#include <QTimer>

#include <functional>
#include <memory>

#include "app/tray_icons.hpp"
#include "recording/session_manager.hpp"
#include "shell/app_commands.hpp"
#include "shell/menu_bar_status.hpp"

namespace lumenote::app {

// How often the status item reads the recorder while nothing tells it of a
// change: the elapsed time it shows moves once a second.
inline constexpr int kStatusRefreshMilliseconds = 1000;

class TallywiseStatusItemController final : public QObject {
    Q_OBJECT

  public:
    struct Actions {
        std::function<void(shell::AppCommand)> command;
        std::function<void(const QPoint& anchor)> openPanel;
        // "Open Lumenote": the main window.
        std::function<void()> openWindow;
        // "Run Setup Assistant Again…": the onboarding from its first step.
        std::function<void()> runSetupAssistant;
        std::function<void()> checkForUpdates;
        std::function<void()> quit;
    };

    // `manager` must outlive the controller.
    TallywiseStatusItemController(recording::SessionManager& manager, Actions actions,
                                  QObject* parent = nullptr);

    void show();
    // Reads the manager and redraws when the status changed.
    void refresh();
    // Draws the next status whatever it is (the images changed).
    void redrawAll();
    const std::optional<shell::MenuBarStatus>& lastRenderedStatus() const {
        return rendering_.lastRendered();
    }
    int redrawCount() const { return redraws_; }
    QSystemTrayIcon& statusItem() { return statusItem_; }
    // Where the panel opens: beside the icon where the tray tells its place,
    // else at the pointer.
    QPoint panelAnchor() const;

  private:
    void draw(const shell::MenuBarStatus& status);
    void updateMenu(const shell::MenuBarStatus& status);

    recording::SessionManager& manager_;
    Actions actions_;
    QSystemTrayIcon statusItem_;
    QMenu menu_;
    QAction* statusLine_ = nullptr;
    QAction* newSession_ = nullptr;
    QAction* togglePause_ = nullptr;
    QAction* startAway_ = nullptr;
    QAction* returnFromAway_ = nullptr;
    QTimer refreshTask_;
    shell::StatusItemRendering rendering_;
    std::unique_ptr<TrayIcons> icons_;
    shell::MenuBarImage drawnImage_ = shell::MenuBarImage::applicationImage;
    bool iconDrawn_ = false;
    // The status the menu's items were last set for.
    std::optional<shell::MenuBarStatus> menuStatus_;
    int redraws_ = 0;
};

}  // namespace lumenote::app
