// The setup assistant: welcome and the privacy promise, what this desktop
// lets Lumenote observe (with the GNOME Shell extension's installation where
// GNOME needs it), the browser set-up (register the helper, load the
// extension, test the connection), the starter classifications, the daily
// goal and the global shortcut, and done. It opens at the first start and
// from "Run Setup Assistant Again…", resumes at the step kept in
// "onboarding.lastStep", and changes nothing but what the user sets in it:
// never sessions, rules or other preferences.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <vector>

#include <QDialog>

#include "bridge/browser_status_report.hpp"
#include "bridge/native_host_registration.hpp"
#include "foundation/result.hpp"
#include "runtime/gnome_extension_setup.hpp"
#include "runtime/setup_check.hpp"
#include "settings/preferences_store.hpp"
#include "ui/models/onboarding.hpp"

class QCheckBox;
class QLabel;
class QPushButton;
class QSpinBox;
class QStackedWidget;
class QVBoxLayout;

namespace lumenote::ui {

class DesktopObservationView;

// What the assistant reads and changes beyond the preferences.
struct OnboardingServices {
    // The checks of `lumenote-cli check`.
    std::function<runtime::SetupCheck()> checkSetup;
    // Installs and enables the GNOME Shell extension (offered when the check
    // says GNOME needs it).
    std::function<runtime::GnomeExtensionSetup()> installGnomeExtension;
    // Every registrable browser's state now.
    std::function<std::vector<bridge::BrowserStatusRow>()> browserStatus;
    std::function<Result<void, bridge::NativeHostRegistrationError>(bridge::SupportedBrowser)>
        registerBrowser;
    // Where the built extension packages are, when they were found.
    std::optional<std::filesystem::path> extensionFolder;
};

class OnboardingDialog final : public QDialog {
    Q_OBJECT

  public:
    // `preferences` must outlive the dialog.
    OnboardingDialog(settings::PreferencesStore& preferences, OnboardingServices services,
                     QWidget* parent = nullptr);
    ~OnboardingDialog() override;

    models::OnboardingStep step() const { return step_; }
    void showStep(models::OnboardingStep step);
    void goForward();
    void goBack();
    // Reads the browsers' state again (the connection test).
    void refreshBrowsers();
    const std::vector<models::OnboardingBrowserRow>& browserRows() const { return browsers_; }

  Q_SIGNALS:
    // "Start a Study Session" on the last step.
    void startSessionRequested();

  private:
    QWidget* buildWelcome();
    QWidget* buildObservation();
    QWidget* buildBrowsers();
    QWidget* buildClassifications();
    QWidget* buildGoal();
    QWidget* buildDone();
    void finish();
    void refreshShortcutState();

    settings::PreferencesStore& preferences_;
    OnboardingServices services_;
    settings::PreferencesStore::Observers::Token preferencesToken_ = 0;
    models::OnboardingStep step_ = models::OnboardingStep::welcome;
    std::vector<models::OnboardingBrowserRow> browsers_;

    QLabel* title_;
    QLabel* progress_;
    QStackedWidget* pages_;
    DesktopObservationView* observation_;
    QVBoxLayout* browserList_;
    QLabel* browserMessage_;
    QSpinBox* goal_;
    QCheckBox* shortcutEnabled_;
    QLabel* shortcutState_;
    QPushButton* back_;
    QPushButton* next_;
};

}  // namespace lumenote::ui
