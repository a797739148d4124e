// The General section of the settings: the appearance, launching at login,
// starting hidden, and the global shortcut with its key recorder and the
// sentence that says whether it works. Every control writes its preference
// at once and follows the store when the value changes elsewhere.
#pragma once

#include <QWidget>

#include "ui/models/general_settings.hpp"
#include "ui/settings_dependencies.hpp"

class QCheckBox;
class QComboBox;
class QLabel;

namespace lumenote::ui {

class KeyRecorder;

class GeneralSettingsSection final : public QWidget {
    Q_OBJECT

  public:
    explicit GeneralSettingsSection(SettingsDependencies& dependencies, QWidget* parent = nullptr);
    ~GeneralSettingsSection() override;

    // Shows the store's values again.
    void refresh();

  public Q_SLOTS:
    // The shortcut's registration changed: its sentence is read again.
    void shortcutStateChanged();

  private:
    void recordShortcut(const models::RecordedKeys& keys);

    SettingsDependencies& dependencies_;
    settings::PreferencesStore::Observers::Token token_;
    QComboBox* appearance_;
    QCheckBox* launchAtLogin_;
    QCheckBox* startHidden_;
    QCheckBox* shortcutEnabled_;
    KeyRecorder* recorder_;
    QLabel* shortcutState_;
    QLabel* shortcutRefusal_;
};

}  // namespace lumenote::ui
