// The Browsers section of the settings: per browser whether it is installed,
// registered and connected, its last event, version compatibility and the
// one sentence that says what keeps its activity from being recorded, with
// Register, Repair and Remove for its native-host manifest; where the
// extension packages are and how to load them; and the setup test with its
// copyable report.
#pragma once

#include <vector>

#include <QWidget>

#include "bridge/native_host_registration.hpp"
#include "ui/settings_dependencies.hpp"

class QLabel;
class QPlainTextEdit;
class QPushButton;
class QVBoxLayout;

namespace lumenote::ui {

class BrowsersSettingsSection final : public QWidget {
    Q_OBJECT

  public:
    explicit BrowsersSettingsSection(SettingsDependencies& dependencies, QWidget* parent = nullptr);

    // Reads every browser's state again and lays out its card.
    void refresh();
    // Runs the setup test and shows its items and report.
    void runSetupTest();

  private:
    std::vector<bridge::BrowserStatusRow> rows() const;
    QWidget* browserCard(const bridge::BrowserStatusRow& row);
    void change(bridge::SupportedBrowser browser, bool removing);

    SettingsDependencies& dependencies_;
    bridge::NativeHostRegistrationChecker checker_;
    QLabel* banner_;
    QLabel* outcome_;
    QVBoxLayout* browsers_;
    QLabel* notInstalled_;
    QLabel* setupItems_;
    QPlainTextEdit* setupReport_;
    QPushButton* copyReport_;
};

}  // namespace lumenote::ui
