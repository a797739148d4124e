#include "app/status_item_controller.hpp"

#include <QApplication>
#include <QCursor>

#include "shell/panel_model.hpp"
#include "ui/design/qt_text.hpp"

namespace lumenote::app {

using ui::qt;

namespace {

bool onDarkPanel() {
    return QApplication::palette().color(QPalette::Window).lightness() < 128;
}

}  // namespace

TallywiseStatusItemController::TallywiseStatusItemController(recording::SessionManager& manager,
                                                             Actions actions, QObject* parent)
    : QObject(parent),
      manager_(manager),
      actions_(std::move(actions)),
      icons_(std::make_unique<TrayIcons>(onDarkPanel())) {
    statusLine_ = menu_.addAction(QString());
    statusLine_->setEnabled(false);
    menu_.addSeparator();
    menu_.addAction(qt(shell::kOpenLumenoteTitle), this, [this] { actions_.openWindow(); });
    const auto commandItem = [this](shell::AppCommand command) {
        return menu_.addAction(qt(shell::appCommandInfo(command).menuTitle), this,
                               [this, command] { actions_.command(command); });
    };
    newSession_ = commandItem(shell::AppCommand::newSession);
    togglePause_ = commandItem(shell::AppCommand::togglePause);
    startAway_ = commandItem(shell::AppCommand::startPassiveStudy);
    returnFromAway_ = commandItem(shell::AppCommand::returnToComputerStudy);
    menu_.addSeparator();
    commandItem(shell::AppCommand::reviewUnclassified);
    menu_.addAction(qt(shell::kRunSetupAssistantAgainTitle), this,
                    [this] { actions_.runSetupAssistant(); });
    menu_.addAction(qt(shell::kCheckForUpdatesTitle), this, [this] { actions_.checkForUpdates(); });
    menu_.addSeparator();
    menu_.addAction(qt(shell::kQuitTitle), this, [this] { actions_.quit(); });
    statusItem_.setContextMenu(&menu_);
    connect(&menu_, &QMenu::aboutToShow, this,
            [this] { updateMenu(shell::menuBarStatus(manager_)); });

    connect(&statusItem_, &QSystemTrayIcon::activated, this,
            [this](QSystemTrayIcon::ActivationReason reason) {
                if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::DoubleClick) {
                    actions_.openPanel(panelAnchor());
                }
            });
    refreshTask_.setInterval(kStatusRefreshMilliseconds);
    connect(&refreshTask_, &QTimer::timeout, this, &TallywiseStatusItemController::refresh);
}

void TallywiseStatusItemController::show() {
    refresh();
    statusItem_.show();
    refreshTask_.start();
}

void TallywiseStatusItemController::refresh() {
    const shell::MenuBarStatus status = shell::menuBarStatus(manager_);
    if (rendering_.needsRedraw(status)) {
        draw(status);
    }
}

void TallywiseStatusItemController::redrawAll() {
    icons_ = std::make_unique<TrayIcons>(onDarkPanel());
    iconDrawn_ = false;
    rendering_.forget();
    refresh();
}

// Each part is handed to the tray only when it changed: every change is a
// message to the tray host, and the elapsed time moves every second while
// the image changes with the activity only and the tooltip once a minute.
// The menu is brought up to date when it opens and when the activity
// changes, not with every second of its status line.
void TallywiseStatusItemController::draw(const shell::MenuBarStatus& status) {
    ++redraws_;
    const shell::MenuBarImage image = shell::menuBarImage(status);
    if (image != drawnImage_ || !iconDrawn_) {
        statusItem_.setIcon(icons_->icon(image));
        drawnImage_ = image;
        iconDrawn_ = true;
    }
    const QString tooltip = qt(shell::menuBarAccessibilityText(status));
    if (tooltip != statusItem_.toolTip()) {
        statusItem_.setToolTip(tooltip);
    }
    if (!menuStatus_ || menuStatus_->activity != status.activity ||
        menuStatus_->studyState != status.studyState || menu_.isVisible()) {
        updateMenu(status);
    }
}

void TallywiseStatusItemController::updateMenu(const shell::MenuBarStatus& status) {
    using Activity = shell::MenuBarStatus::Activity;
    const std::string title = shell::menuBarTitle(status);
    switch (status.activity) {
        case Activity::idle:
            statusLine_->setText(QStringLiteral("No session running"));
            break;
        case Activity::recording:
            statusLine_->setText(status.studyState == recording::LiveStudyState::passiveStudy
                                     ? QStringLiteral("Studying away · %1").arg(qt(title))
                                     : QStringLiteral("Recording · %1").arg(qt(title)));
            break;
        case Activity::paused:
            statusLine_->setText(QStringLiteral("Paused · %1").arg(qt(title)));
            break;
    }
    menuStatus_ = status;
    const bool active = status.activity != Activity::idle;
    const bool away = status.studyState == recording::LiveStudyState::passiveStudy;
    newSession_->setEnabled(!active);
    togglePause_->setEnabled(active);
    startAway_->setVisible(!away);
    startAway_->setEnabled(status.activity == Activity::recording);
    returnFromAway_->setVisible(away);
}

QPoint TallywiseStatusItemController::panelAnchor() const {
    const QRect geometry = statusItem_.geometry();
    if (geometry.isValid() && !geometry.isEmpty()) {
        return {geometry.center().x(), geometry.bottom()};
    }
    return QCursor::pos();
}

}  // namespace lumenote::app
