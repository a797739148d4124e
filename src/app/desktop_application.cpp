#include "app/desktop_application.hpp"

#include <QApplication>
#include <QMessageBox>
#include <QSocketNotifier>
#include <cstdlib>
#include <filesystem>
#include <iostream>

#include "app/tray_icons.hpp"
#if LUMENOTE_UPDATE_CHECKS
#include "app/update_check_command.hpp"
#endif
#include "bridge/native_host_registration.hpp"
#include "insights/file_insight_dismissal_repository.hpp"
#include "insights/first_weekday.hpp"
#include "insights/insight_dismissal_store.hpp"
#include "platform/linux/x11_hotkey_grabber.hpp"
#include "recording/session_notices.hpp"
#include "recording/unclassified_review_service.hpp"
#include "runtime/setup_check.hpp"
#include "runtime/setup_test_input.hpp"
#include "shell/global_hotkey_coordinator.hpp"
#include "shell/launch_at_login.hpp"
#include "ui/design/qt_text.hpp"
#include "ui/history_page.hpp"
#include "ui/insights_page.hpp"
#include "ui/models/onboarding.hpp"
#include "ui/onboarding_dialog.hpp"
#include "ui/questions.hpp"
#include "ui/replay_page.hpp"
#include "ui/review_page.hpp"
#include "ui/settings_page.hpp"
#include "ui/today_page.hpp"
#include "ui/tray_panel.hpp"

namespace lumenote::app {

using ui::qt;

DesktopApplication::DesktopApplication(AppDependencies dependencies, Options options)
    : dependencies_(std::move(dependencies)), options_(options) {
    runtime_ = std::make_unique<runtime::RecorderRuntime>(*dependencies_.services, *this);
    panel_ = std::make_unique<ui::TrayPanel>(*runtime_, *dependencies_.templateStore);
    panel_->setWindowIcon(applicationIcon());
    connect(panel_.get(), &ui::TrayPanel::reviewRequested, this,
            [this] { perform(shell::AppCommand::reviewUnclassified); });
    connect(panel_.get(), &ui::TrayPanel::replayRequested, this, &DesktopApplication::showSession);
    TallywiseStatusItemController::Actions actions;
    actions.command = [this](shell::AppCommand command) { perform(command); };
    actions.openPanel = [this](const QPoint& anchor) { openPanel(anchor); };
    actions.openWindow = [this] { openMainWindow(); };
    actions.runSetupAssistant = [this] { openOnboarding(); };
#if LUMENOTE_UPDATE_CHECKS
    updateCheck_ = std::make_unique<UpdateCheckCommand>(dependencies_.services->preferences());
    actions.checkForUpdates = [this] { updateCheck_->run(); };
#else
    actions.checkForUpdates = [] {
        QMessageBox::information(nullptr, QStringLiteral("Lumenote"),
                                 qt(shell::kUpdatesFromPackageManager));
    };
#endif
    actions.quit = [this] { requestQuit(); };
    statusItem_ =
        std::make_unique<TallywiseStatusItemController>(runtime_->manager(), std::move(actions));
}

DesktopApplication::~DesktopApplication() {
    hotkeyEvents_.reset();
    hotkeyController_.reset();
    if (preferencesObservation_ != 0) {
        dependencies_.services->preferences().removeObserver(preferencesObservation_);
    }
}

std::vector<std::string> DesktopApplication::begin() {
    settings::PreferencesStore& preferences = dependencies_.services->preferences();
    dependencies_.appearanceController->apply(preferences.appearance());
    preferencesObservation_ = preferences.addObserver(
        [this](settings::PreferenceProperty property) { onPreferenceChanged(property); });

    std::vector<std::string> gaps = runtime_->begin();
    if (const auto unserved = runtime_->serveCommands()) {
        gaps.push_back(*unserved);
    }
    statusItem_->show();
    startGlobalShortcut();
    // The desktop session ending (a logout through the session manager)
    // quits the application without a question: an active session is left
    // for recovery, as a termination signal leaves it.
    connect(qApp, &QCoreApplication::aboutToQuit, this, [this] {
        if (!quitting_ && !runtime_->stopped()) {
            runtime_->terminate("The desktop session is ending");
        }
    });
    if (!QSystemTrayIcon::isSystemTrayAvailable()) {
        gaps.push_back(
            "This desktop shows no tray icons, so Lumenote opens its panel in a window instead.");
    }
    for (const std::string& warning : dependencies_.startupWarnings) {
        panel_->showError(qt(warning));
    }
    if (runtime_->manager().pendingRecoverySession()) {
        offerRecovery();
    } else if (ui::models::onboardingDueAtStart(preferences.onboardingCompletedVersion())) {
        openOnboarding();
    } else if (!options_.startHidden || !QSystemTrayIcon::isSystemTrayAvailable()) {
        openPanel(statusItem_->panelAnchor());
    }
    return gaps;
}

void DesktopApplication::perform(shell::AppCommand command) {
    switch (command) {
        case shell::AppCommand::togglePause:
            (void)runtime_->togglePause();
            break;
        case shell::AppCommand::startPassiveStudy:
            (void)runtime_->startPassiveStudy();
            break;
        case shell::AppCommand::returnToComputerStudy:
            (void)runtime_->returnToComputerStudy();
            break;
        case shell::AppCommand::endSession:
            (void)runtime_->end();
            break;
        case shell::AppCommand::newSession:
            if (!runtime_->manager().activeSession()) {
                runtime_->manager().clearPendingPostSession();
                panel_->reloadStartForm();
            }
            openPanel(statusItem_->panelAnchor());
            break;
        case shell::AppCommand::navigateToday:
            openMainWindow(ui::MainPage::today);
            break;
        case shell::AppCommand::navigateReplay:
            openMainWindow(ui::MainPage::replay);
            break;
        case shell::AppCommand::navigateHistory:
            openMainWindow(ui::MainPage::history);
            break;
        case shell::AppCommand::navigateInsights:
            openMainWindow(ui::MainPage::insights);
            break;
        case shell::AppCommand::navigateSettings:
            openMainWindow(ui::MainPage::settings);
            break;
        case shell::AppCommand::reviewUnclassified:
            openMainWindow(ui::MainPage::review);
            reviewPage_->reload();
            break;
    }
    refresh();
}

void DesktopApplication::openPanel(const QPoint& anchor) {
    panel_->popUp(anchor);
}

void DesktopApplication::openMainWindow(std::optional<ui::MainPage> page) {
    if (!mainWindow_) {
        runtime::RecorderServices& services = *dependencies_.services;
        mainWindow_ = std::make_unique<ui::MainWindow>();
        mainWindow_->setWindowIcon(applicationIcon());
        const auto now = [&services] { return services.now(); };
        todayPage_ = new ui::TodayPage(
            services.store(), services.review(), LocalCalendar::current(), now,
            [&services] { return services.preferences().dailyStudyGoalMinutes(); });
        mainWindow_->addPage(ui::MainPage::today, todayPage_);
        connect(todayPage_, &ui::TodayPage::sessionOpened, this, &DesktopApplication::showSession);
        connect(todayPage_, &ui::TodayPage::newSessionRequested, this,
                [this] { perform(shell::AppCommand::newSession); });
        connect(todayPage_, &ui::TodayPage::reviewRequested, this,
                [this] { perform(shell::AppCommand::reviewUnclassified); });
        connect(todayPage_, &ui::TodayPage::commandRequested, this,
                [this](shell::AppCommand command) { perform(command); });

        replayPage_ =
            new ui::ReplayPage(services.store(), services.historyReader(), services.history(),
                               services.defaults(), LocalCalendar::current(), now);
        mainWindow_->addPage(ui::MainPage::replay, replayPage_);
        connect(replayPage_, &ui::ReplayPage::sessionChanged, this,
                [this] { historyChanged(HistoryChange::oneSession); });

        historyPage_ =
            new ui::HistoryPage(services.store(), services.historyReader(), services.history(),
                                LocalCalendar::current(), insights::localeFirstWeekday(), now);
        mainWindow_->addPage(ui::MainPage::history, historyPage_);
        connect(historyPage_, &ui::HistoryPage::sessionOpened, this,
                &DesktopApplication::showSession);

        dismissalRepository_ = std::make_unique<insights::FileInsightDismissalRepository>(
            insights::FileInsightDismissalRepository::pathFor(services.paths()), now);
        dismissals_ = std::make_unique<insights::InsightDismissalStore>(*dismissalRepository_, now);
        insightsPage_ = new ui::InsightsPage(
            services.historyReader(), services.store(), *dismissals_, services.defaults(),
            LocalCalendar::current(), insights::localeFirstWeekday(), now);
        mainWindow_->addPage(ui::MainPage::insights, insightsPage_);

        settingsPage_ = new ui::SettingsPage(settingsDependencies());
        mainWindow_->addPage(ui::MainPage::settings, settingsPage_);
        connect(settingsPage_, &ui::SettingsPage::historyChanged, this,
                [this] { historyChanged(HistoryChange::wholeHistory); });

        reviewPage_ = new ui::ReviewPage(services.review());
        mainWindow_->addPage(ui::MainPage::review, reviewPage_);
        connect(reviewPage_, &ui::ReviewPage::classified, this,
                [this] { historyChanged(HistoryChange::oneSession); });
        connect(mainWindow_.get(), &ui::MainWindow::newSessionRequested, this,
                [this] { perform(shell::AppCommand::newSession); });
        connect(mainWindow_.get(), &ui::MainWindow::pageShown, this, [this](ui::MainPage shown) {
            if (shown == ui::MainPage::replay && !replayPage_->sessionId()) {
                showNewestFinishedSession();
            } else if (shown == ui::MainPage::today) {
                todayPage_->showLiveSession(panel_->liveSession());
            }
        });
        mainWindow_->showPage(ui::MainPage::today);
    }
    if (page) {
        mainWindow_->showPage(*page);
    }
    mainWindow_->present();
}

void DesktopApplication::openOnboarding() {
    if (!onboarding_) {
        runtime::RecorderServices& services = *dependencies_.services;
        ui::OnboardingServices reach;
        reach.checkSetup = [&services] { return runtime::checkSetup(services.desktop().health()); };
        reach.installGnomeExtension = [&services] {
            return runtime::installShippedGnomeExtension(services.paths());
        };
        reach.browserStatus = [&services] { return services.browserStatusRows(); };
        reach.registerBrowser = [&services](bridge::SupportedBrowser browser) {
            return services.registration().repair(browser);
        };
        reach.extensionFolder = bridge::extensionPackagesFolder(bridge::runningExecutableFolder());
        onboarding_ = new ui::OnboardingDialog(services.preferences(), std::move(reach));
        onboarding_->setAttribute(Qt::WA_DeleteOnClose);
        onboarding_->setWindowIcon(applicationIcon());
        connect(onboarding_, &ui::OnboardingDialog::startSessionRequested, this,
                [this] { perform(shell::AppCommand::newSession); });
    }
    onboarding_->show();
    onboarding_->raise();
    onboarding_->activateWindow();
}

void DesktopApplication::showSession(const QString& sessionId) {
    const auto id = Uuid::parse(sessionId.toStdString());
    openMainWindow(ui::MainPage::replay);
    if (id) {
        replayPage_->showSession(*id);
    }
}

void DesktopApplication::showNewestFinishedSession() {
    recording::SessionQuery query;
    // The running session (at most one) and a session left for recovery
    // come before it at most.
    query.limit = 3;
    const auto newest = dependencies_.services->store().listSessions(query);
    if (!newest) {
        return;
    }
    for (const recording::StudySession& session : *newest) {
        if (session.status() == recording::StudySessionStatus::completed ||
            session.status() == recording::StudySessionStatus::interrupted) {
            replayPage_->showSession(session.id);
            return;
        }
    }
}

void DesktopApplication::historyChanged(HistoryChange change) {
    dependencies_.services->review().invalidate();
    panel_->reloadStartForm();
    if (!mainWindow_) {
        return;
    }
    todayPage_->reload();
    historyPage_->reload();
    insightsPage_->reload();
    if (change == HistoryChange::wholeHistory) {
        replayPage_->reload();
    }
}

ui::SettingsDependencies DesktopApplication::settingsDependencies() {
    runtime::RecorderServices& services = *dependencies_.services;
    ui::SettingsDependencies settings{
        .preferences = services.preferences(),
        .store = services.store(),
        .historyReader = services.historyReader(),
        .importer = services.importer(),
        .history = services.history(),
        .templates = *dependencies_.templateStore,
        .rules = services.rules(),
        .wallClock = services.wallClock(),
        .calendar = LocalCalendar::current(),
        .paths = services.paths(),
        .appVersion = LUMENOTE_VERSION,
        .appBuild = LUMENOTE_BUILD_NUMBER,
    };
    settings.browserStatus = [&services](const bridge::NativeHostRegistrationChecker& checker) {
        return services.browserStatusRows(&checker);
    };
    settings.extensionPackages = bridge::extensionPackagesFolder(bridge::runningExecutableFolder());
    settings.setupTestInput = [&services] {
        return runtime::gatherSetupTestInput({services.paths(), LUMENOTE_VERSION,
                                              LUMENOTE_BUILD_NUMBER, services.desktop().health()});
    };
    settings.checkDesktop = [&services] {
        return runtime::checkSetup(services.desktop().health());
    };
    settings.installGnomeExtension = [&services] {
        return runtime::installShippedGnomeExtension(services.paths());
    };
    return settings;
}

void DesktopApplication::offerRecovery() {
    recording::SessionManager& manager = runtime_->manager();
    const auto& session = manager.pendingRecoverySession();
    const auto& summary = manager.pendingRecoverySummary();
    if (!session || !summary) {
        return;
    }
    auto* question = new ui::RecoveryQuestion(*summary, session->subject, LocalCalendar::current());
    question->setAttribute(Qt::WA_DeleteOnClose);
    question->setWindowIcon(applicationIcon());
    connect(question, &ui::RecoveryQuestion::continueChosen, this, [this] {
        (void)runtime_->continueRecoveredSession();
        refresh();
    });
    connect(question, &ui::RecoveryQuestion::endChosen, this, [this] {
        (void)runtime_->endRecoveredSession();
        panel_->reloadStartForm();
        refresh();
    });
    question->show();
    question->raise();
    question->activateWindow();
}

void DesktopApplication::requestQuit() {
    const bool active = runtime_->manager().activeSession().has_value();
    switch (shell::quitDecision(shell::QuitReason::userQuit, active, decidingTermination_)) {
        case shell::QuitDecision::quitNow:
            quitNow();
            return;
        case shell::QuitDecision::alreadyAsking:
            if (quitQuestion_) {
                quitQuestion_->raise();
                quitQuestion_->activateWindow();
            }
            return;
        case shell::QuitDecision::leaveForRecovery:
        case shell::QuitDecision::askAboutSession:
            break;
    }
    decidingTermination_ = true;
    quitQuestion_ = ui::makeQuitQuestion();
    quitQuestion_->setWindowIcon(applicationIcon());
    connect(quitQuestion_.get(), &QMessageBox::finished, this, [this] {
        const shell::QuitChoice choice = ui::quitChoiceOf(*quitQuestion_);
        quitQuestion_.release()->deleteLater();
        decidingTermination_ = false;
        answerQuitQuestion(choice);
    });
    quitQuestion_->open();
    quitQuestion_->raise();
    quitQuestion_->activateWindow();
}

void DesktopApplication::answerQuitQuestion(shell::QuitChoice choice) {
    switch (choice) {
        case shell::QuitChoice::keepRunning:
            return;
        case shell::QuitChoice::endSessionAndQuit:
            quitting_ = true;
            if (runtime_->manager().activeSession() && !runtime_->end().ok()) {
                // The session could not be ended: keep running and show why.
                quitting_ = false;
                openPanel(statusItem_->panelAnchor());
                return;
            }
            quitNow();
            return;
        case shell::QuitChoice::quitAndMarkInterrupted:
            quitting_ = true;
            if (runtime_->manager().activeSession() && !runtime_->endAsInterrupted().ok()) {
                quitting_ = false;
                openPanel(statusItem_->panelAnchor());
                return;
            }
            quitNow();
            return;
    }
}

void DesktopApplication::quitNow() {
    quitting_ = true;
    panel_->hide();
    statusItem_->statusItem().hide();
    // Whatever is still active is kept for recovery, never lost.
    if (runtime_->manager().activeSession()) {
        runtime_->manager().willTerminate();
    }
    runtime_->stop(0);
}

void DesktopApplication::refresh() {
    // Xlib may have read a key press off the socket during its own calls,
    // where the socket notifier cannot see it.
    if (hotkeyGrabber_ && hotkeyGrabber_->processEvents()) {
        hotkeyController_->service().trigger();
    }
    statusItem_->refresh();
    if (panel_->isVisible()) {
        panel_->refresh();
    } else {
        panel_->followActivity();
    }
    if (mainWindow_ && mainWindow_->isVisible() &&
        mainWindow_->currentPage() == ui::MainPage::today) {
        todayPage_->showLiveSession(panel_->liveSession());
    }
    // A question answered elsewhere (another front end's command) goes away.
    const auto& pending = runtime_->manager().pendingNoInputPrompt();
    if (noInputQuestion_ && (!pending || pending->id != noInputQuestion_->prompt().id)) {
        noInputQuestion_->deleteLater();
        noInputQuestion_.clear();
    }
}

void DesktopApplication::controlled(runtime::RecorderControl control) {
    refresh();
    if (control == runtime::RecorderControl::end) {
        announceEndedElsewhere();
    }
}

// A session ended from another process (lumenote-cli end, a desktop
// shortcut) is announced as a completed timer is: the user may not be
// looking at the panel.
void DesktopApplication::announceEndedElsewhere() {
    runtime::RecorderServices& services = *dependencies_.services;
    const auto& finished = runtime_->manager().pendingPostSession();
    if (!finished || !services.preferences().notificationsEnabled()) {
        return;
    }
    const recording::SessionNotice notice =
        recording::timerCompletionNotice(finished->subject, finished->timerDuration,
                                         services.preferences().notificationsIncludeSubject());
    services.notifications().post(notice.title, notice.body);
}

void DesktopApplication::showError(const std::string& message) {
    panel_->showError(qt(message));
}

void DesktopApplication::noInputQuestionArrived(
    const recording::NoInputClassificationPrompt& prompt) {
    if (noInputQuestion_) {
        noInputQuestion_->deleteLater();
    }
    auto* question = new ui::NoInputQuestion(prompt, LocalCalendar::current());
    question->setAttribute(Qt::WA_DeleteOnClose);
    question->setWindowIcon(applicationIcon());
    connect(question, &ui::NoInputQuestion::answered, this,
            [this](recording::SessionManager::NoInputPromptAnswer answer) {
                (void)runtime_->answerNoInputQuestion(answer);
                refresh();
            });
    noInputQuestion_ = question;
    question->show();
    question->raise();
    question->activateWindow();
}

void DesktopApplication::sessionEnded(const std::optional<recording::StudySession>&,
                                      const std::vector<recording::PersonalBest>&) {
    statusItem_->refresh();
    if (quitting_) {
        return;
    }
    historyChanged(HistoryChange::wholeHistory);
    // The summary is offered where the session was watched.
    openPanel(statusItem_->panelAnchor());
}

void DesktopApplication::terminated(const std::string&) {
    quitting_ = true;
    panel_->hide();
    if (noInputQuestion_) {
        noInputQuestion_->deleteLater();
    }
}

Result<void, std::string> DesktopApplication::present() {
    openPanel(statusItem_->panelAnchor());
    return {};
}

void DesktopApplication::startGlobalShortcut() {
    auto grabber = platform::linux_desktop::X11HotkeyGrabber::open(processEnvironmentValue);
    if (grabber.ok()) {
        hotkeyGrabber_ = std::move(grabber).value();
        hotkeyEvents_ = std::make_unique<QSocketNotifier>(hotkeyGrabber_->fileDescriptor(),
                                                          QSocketNotifier::Read);
        connect(hotkeyEvents_.get(), &QSocketNotifier::activated, this, [this] {
            if (hotkeyGrabber_->connection()->lost()) {
                // End of file on a lost display stays readable for ever.
                hotkeyEvents_->setEnabled(false);
                return;
            }
            if (hotkeyGrabber_->processEvents()) {
                hotkeyController_->service().trigger();
            }
        });
    }
    hotkeyController_ = std::make_unique<shell::GlobalHotkeyCoordinator>(
        dependencies_.services->preferences(), hotkeyGrabber_.get());
    shell::GlobalHotkeyService& service = hotkeyController_->service();
    service.setOnTrigger([this] { onShortcut(); });
    const auto report = [](const shell::GlobalHotkeyRegistrationState& state) {
        if (state.kind == shell::GlobalHotkeyRegistrationState::Kind::unavailable) {
            std::cerr << "Global shortcut: " << state.message << std::endl;
        }
    };
    report(service.state());
    service.stateObservers().add(report);
}

// With no session the shortcut opens the panel, so that a session is always
// started deliberately; during one it pauses or resumes it without bringing
// anything forward.
void DesktopApplication::onShortcut() {
    if (!runtime_->manager().activeSession()) {
        openPanel(statusItem_->panelAnchor());
        return;
    }
    (void)runtime_->togglePause();
    refresh();
}

// "general.launchAtLogin" adds or removes the autostart entry that starts
// this executable; a failure is shown in the panel and changes nothing else.
void DesktopApplication::applyLaunchAtLogin() {
    runtime::RecorderServices& services = *dependencies_.services;
    std::error_code error;
    const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", error);
    if (error) {
        return;
    }
    if (auto applied = shell::applyLaunchAtLogin(services.preferences().launchAtLogin(),
                                                 services.paths(), self);
        !applied.ok()) {
        showError(applied.error().message());
    }
}

void DesktopApplication::onPreferenceChanged(settings::PreferenceProperty property) {
    if (property == settings::PreferenceProperty::launchAtLogin) {
        applyLaunchAtLogin();
    }
    if (property == settings::PreferenceProperty::appearance) {
        dependencies_.appearanceController->apply(
            dependencies_.services->preferences().appearance());
        statusItem_->redrawAll();
    }
}

}  // namespace lumenote::app
