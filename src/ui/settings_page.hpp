// The Settings page: a list of sections on the left and the chosen section
// on the right, each in its own scroll area. Every control is bound to its
// preference or to the store operation it stands for; what the page does to
// the history is announced so that the other pages read it again.
#pragma once

#include <QWidget>

#include "ui/settings_dependencies.hpp"

class QListWidget;
class QStackedWidget;

namespace lumenote::ui {

class AboutSettingsSection;
class BrowsersSettingsSection;
class DataSettingsSection;
class GeneralSettingsSection;

class SettingsPage final : public QWidget {
    Q_OBJECT

  public:
    // The sections, in the order listed.
    enum class Section {
        general,
        sessions,
        tracking,
        classification,
        browsers,
        notifications,
        data,
        about
    };

    // Everything in `dependencies` must outlive the page.
    explicit SettingsPage(SettingsDependencies dependencies, QWidget* parent = nullptr);
    ~SettingsPage() override;

    void showSection(Section section);
    // The sections whose work starts from a file or a report as well as from
    // their buttons.

    DataSettingsSection& data() { return *data_; }
    AboutSettingsSection& about() { return *about_; }
    BrowsersSettingsSection& browsers() { return *browsers_; }

  public Q_SLOTS:
    // The global shortcut's registration changed: its sentence is read again.
    void shortcutStateChanged();

  Q_SIGNALS:
    // The stored history changed (a restore, a delete-all or a reset).
    void historyChanged();

  private:
    SettingsDependencies dependencies_;
    QListWidget* sections_;
    QStackedWidget* pages_;
    GeneralSettingsSection* general_;
    DataSettingsSection* data_;
    AboutSettingsSection* about_;
    BrowsersSettingsSection* browsers_;
};

}  // namespace lumenote::ui
