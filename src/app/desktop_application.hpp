// The desktop application: the second front end of the recorder runtime. It
// is built once at start-up with everything it wires together (the
// dependencies below) and lives until the process quits: the tray's status
// item and panel, the questions, the appearance, and the quit decision. It
// keeps no recording state: every figure it shows is read from the session
// manager, every control ends in a call on the runtime.
#pragma once

#include <QObject>
#include <QPointer>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/status_item_controller.hpp"
#include "runtime/recorder_front_end.hpp"
#include "runtime/recorder_runtime.hpp"
#include "settings/file_session_template_repository.hpp"
#include "settings/session_template_store.hpp"
#include "shell/app_commands.hpp"
#include "shell/quit_decision.hpp"
#include "ui/appearance.hpp"
#include "ui/main_window.hpp"
#include "ui/settings_dependencies.hpp"

class QMessageBox;
class QSocketNotifier;

namespace lumenote::insights {
class FileInsightDismissalRepository;
class InsightDismissalStore;
}  // namespace lumenote::insights

namespace lumenote::platform::linux_desktop {
class X11HotkeyGrabber;
}
namespace lumenote::shell {
class GlobalHotkeyCoordinator;
}

namespace lumenote::ui {
class HistoryPage;
class InsightsPage;
class NoInputQuestion;
class OnboardingDialog;
class ReplayPage;
class ReviewPage;
class SettingsPage;
class TodayPage;
class TrayPanel;
}  // namespace lumenote::ui

namespace lumenote::app {

class UpdateCheckCommand;

// Created once at start-up and kept for the life of the process. Start-up
// failed when `services` is absent; `startupFailure` then says why.
struct AppDependencies {
    std::unique_ptr<runtime::RecorderServices> services;
    std::optional<std::string> persistenceWarning;
    std::optional<std::string> startupFailure;
    std::unique_ptr<settings::FileSessionTemplateRepository> templateRepository;
    std::unique_ptr<settings::SessionTemplateStore> templateStore;
    std::unique_ptr<ui::AppearanceController> appearanceController;
    std::vector<std::string> startupWarnings;
};

class DesktopApplication final : public QObject, public runtime::RecorderFrontEnd {
    Q_OBJECT

  public:
    struct Options {
        bool startHidden = false;  // the panel is not opened at launch
    };

    // Takes the services opened at start-up; wires the runtime, the tray and
    // the questions.
    DesktopApplication(AppDependencies dependencies, Options options);
    ~DesktopApplication() override;

    // Starts the runtime and shows the status item; offers recovery when an
    // unfinished session waits. Returns what could not be set up.
    std::vector<std::string> begin();

    // The application-wide commands, whoever posts them.
    void perform(shell::AppCommand command);
    // The user asked to quit (the tray's Quit).
    void requestQuit();

    // RecorderFrontEnd
    void refresh() override;
    void controlled(runtime::RecorderControl control) override;
    void showError(const std::string& message) override;
    void noInputQuestionArrived(const recording::NoInputClassificationPrompt& prompt) override;
    void sessionEnded(const std::optional<recording::StudySession>& finished,
                      const std::vector<recording::PersonalBest>& bests) override;
    void terminated(const std::string& reason) override;
    Result<void, std::string> present() override;

    runtime::RecorderRuntime& runtime() { return *runtime_; }
    ui::TrayPanel& panel() { return *panel_; }
    // The main window once it has been opened.
    ui::MainWindow* mainWindow() { return mainWindow_.get(); }
    TallywiseStatusItemController& statusItem() { return *statusItem_; }
    bool decidingTermination() const { return decidingTermination_; }

  private:
    void openPanel(const QPoint& anchor);
    // Shows the main window on `page`, or on the page it last showed; made
    // on first use.
    void openMainWindow(std::optional<ui::MainPage> page = std::nullopt);
    // The setup assistant, brought forward when it is open already.
    void openOnboarding();
    // Shows a stored session (its id in upper-case text) on the Replay page.
    void showSession(const QString& sessionId);
    // Replay opened from the sidebar or a command without a session chosen
    // shows the newest finished one.
    void showNewestFinishedSession();
    // What changed in the stored history: one session (its figures or
    // classes), or possibly every session (a session ended, a restore,
    // deletion, a reset). Every page that shows the history reads again.
    enum class HistoryChange { oneSession, wholeHistory };
    void historyChanged(HistoryChange change);
    ui::SettingsDependencies settingsDependencies();
    void offerRecovery();
    void answerQuitQuestion(shell::QuitChoice choice);
    void quitNow();
    void onPreferenceChanged(settings::PreferenceProperty property);
    // The global shortcut: grabbed on the X display where there is one,
    // otherwise unavailable with its sentence.
    void startGlobalShortcut();
    void onShortcut();
    void announceEndedElsewhere();
    void applyLaunchAtLogin();

    AppDependencies dependencies_;
    Options options_;
    std::unique_ptr<runtime::RecorderRuntime> runtime_;
    std::unique_ptr<ui::TrayPanel> panel_;
    std::unique_ptr<ui::MainWindow> mainWindow_;
    // The insights' dismissals, made with the main window.
    std::unique_ptr<insights::FileInsightDismissalRepository> dismissalRepository_;
    std::unique_ptr<insights::InsightDismissalStore> dismissals_;
    // The pages, owned by the main window once it was opened.
    ui::TodayPage* todayPage_ = nullptr;
    ui::ReplayPage* replayPage_ = nullptr;
    ui::HistoryPage* historyPage_ = nullptr;
    ui::InsightsPage* insightsPage_ = nullptr;
    ui::SettingsPage* settingsPage_ = nullptr;
    ui::ReviewPage* reviewPage_ = nullptr;
    std::unique_ptr<TallywiseStatusItemController> statusItem_;
#if LUMENOTE_UPDATE_CHECKS
    // "Check for Updates…", run only when the user chooses it.
    std::unique_ptr<UpdateCheckCommand> updateCheck_;
#endif
    std::unique_ptr<platform::linux_desktop::X11HotkeyGrabber> hotkeyGrabber_;
    std::unique_ptr<shell::GlobalHotkeyCoordinator> hotkeyController_;
    std::unique_ptr<QSocketNotifier> hotkeyEvents_;
    QPointer<ui::NoInputQuestion> noInputQuestion_;
    QPointer<ui::OnboardingDialog> onboarding_;
    std::unique_ptr<QMessageBox> quitQuestion_;
    settings::PreferencesStore::Observers::Token preferencesObservation_ = 0;
    bool decidingTermination_ = false;
    bool quitting_ = false;
};

}  // namespace lumenote::app
