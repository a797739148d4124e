// The Tracking section of the settings: when time without input counts as
// such and when Lumenote asks about it, when a sleep pauses the session,
// what browsers and PDFs are recorded, and what this desktop lets Lumenote
// observe at all (the same checks as `lumenote-cli check`).
#pragma once

#include <QWidget>

#include "ui/settings_dependencies.hpp"

class QCheckBox;
class QComboBox;
class QLabel;

namespace lumenote::ui {

class DesktopObservationView;
class NumberField;

class TrackingSettingsSection final : public QWidget {
    Q_OBJECT

  public:
    explicit TrackingSettingsSection(SettingsDependencies& dependencies, QWidget* parent = nullptr);
    ~TrackingSettingsSection() override;

    // Shows the store's values again.
    void refresh();

  private:
    SettingsDependencies& dependencies_;
    settings::PreferencesStore::Observers::Token token_;
    NumberField* inactivity_;
    NumberField* prompt_;
    QComboBox* longSleep_;
    QCheckBox* browserTracking_;
    QCheckBox* hostnames_;
    QCheckBox* pauseBrowsers_;
    QCheckBox* localPDFs_;
    QCheckBox* manualPDFLabels_;
    DesktopObservationView* observed_;
};

}  // namespace lumenote::ui
