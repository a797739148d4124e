// The Notifications section of the settings: whether a finished timer is
// announced, whether the announcement names the subject, and whether
// finished sessions are celebrated.
#pragma once

#include <QWidget>

#include "ui/settings_dependencies.hpp"

class QCheckBox;

namespace lumenote::ui {

class NotificationsSettingsSection final : public QWidget {
    Q_OBJECT

  public:
    explicit NotificationsSettingsSection(SettingsDependencies& dependencies,
                                          QWidget* parent = nullptr);
    ~NotificationsSettingsSection() override;

    // Shows the store's values again.
    void refresh();

  private:
    SettingsDependencies& dependencies_;
    settings::PreferencesStore::Observers::Token token_;
    QCheckBox* enabled_;
    QCheckBox* includeSubject_;
    QCheckBox* celebrations_;
};

}  // namespace lumenote::ui
