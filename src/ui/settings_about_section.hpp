// The About section of the settings: the version, where updates come from,
// the diagnostic report to review, copy or save, and the feedback message.
#pragma once

#include <filesystem>

#include <QWidget>

#include "ui/settings_dependencies.hpp"

class QCheckBox;
class QLabel;
class QPlainTextEdit;
class QPushButton;

namespace lumenote::ui {

class AboutSettingsSection final : public QWidget {
    Q_OBJECT

  public:
    explicit AboutSettingsSection(SettingsDependencies& dependencies, QWidget* parent = nullptr);
    ~AboutSettingsSection() override;

    // Builds the report from the facts of this moment and shows it.
    void showReport();
    // Writes the report shown to `path`; a failure shows why in the banner.
    bool saveReportTo(const std::filesystem::path& path);

  private:
    portability::DiagnosticReportFacts facts();
    // The update switch and address as the preferences hold them (builds
    // with the update check only).
    void refreshUpdates();

    SettingsDependencies& dependencies_;
    QLabel* banner_;
    QPlainTextEdit* report_;
    QPushButton* copy_;
    QPushButton* save_;
    QCheckBox* allowUpdateChecks_ = nullptr;
    QLabel* updateAddress_ = nullptr;
    settings::PreferencesStore::Observers::Token token_ = 0;
};

}  // namespace lumenote::ui
