// The About section of the settings: the version, where updates come from,
// the diagnostic report to review, copy or save, and the feedback message.
#pragma once

#include <filesystem>

#include <QWidget>

#include "ui/settings_dependencies.hpp"

class QLabel;
class QPlainTextEdit;
class QPushButton;

namespace lumenote::ui {

class AboutSettingsSection final : public QWidget {
    Q_OBJECT

  public:
    explicit AboutSettingsSection(SettingsDependencies& dependencies, QWidget* parent = nullptr);

    // Builds the report from the facts of this moment and shows it.
    void showReport();
    // Writes the report shown to `path`; a failure shows why in the banner.
    bool saveReportTo(const std::filesystem::path& path);

  private:
    portability::DiagnosticReportFacts facts();

    SettingsDependencies& dependencies_;
    QLabel* banner_;
    QPlainTextEdit* report_;
    QPushButton* copy_;
    QPushButton* save_;
};

}  // namespace lumenote::ui
