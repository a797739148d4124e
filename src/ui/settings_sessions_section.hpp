// The Sessions section of the settings: what a new session starts with (its
// length, subject, goal and study mode, or the last ones used), the daily
// study goal, and the session templates with add, edit and delete.
#pragma once

#include <QWidget>

#include "ui/settings_dependencies.hpp"

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;

namespace lumenote::ui {

class NumberField;

class SessionsSettingsSection final : public QWidget {
    Q_OBJECT

  public:
    explicit SessionsSettingsSection(SettingsDependencies& dependencies, QWidget* parent = nullptr);
    ~SessionsSettingsSection() override;

    // Shows the stores' values again.
    void refresh();
    void refreshTemplates();

  private:
    void editSelected();
    void deleteSelected();
    void showError(const QString& message);

    SettingsDependencies& dependencies_;
    settings::PreferencesStore::Observers::Token preferencesToken_;
    settings::SessionTemplateStore::Observers::Token templatesToken_;
    NumberField* defaultLength_;
    QLineEdit* defaultSubject_;
    QLineEdit* defaultGoal_;
    QComboBox* studyMode_;
    QCheckBox* rememberSubject_;
    QCheckBox* rememberGoal_;
    QCheckBox* rememberDuration_;
    NumberField* dailyGoal_;
    QLabel* templatesMessage_;
    QLabel* templatesEmpty_;
    QListWidget* templates_;
    QPushButton* add_;
    QPushButton* edit_;
    QPushButton* delete_;
    QLabel* banner_;
};

}  // namespace lumenote::ui
