// The Data section of the settings: export every session, write a verified
// history backup, restore one by merge or by replace after its preview and
// the typed word RESTORE, delete all sessions after the typed word DELETE,
// and reset after the typed word RESET. Long work shows its progress; a
// failure shows the core's own sentence in the section's banner and changes
// nothing.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>

#include <QWidget>

#include "portability/data_export_service.hpp"
#include "portability/tallywise_backup_service.hpp"
#include "ui/settings_dependencies.hpp"

class QComboBox;
class QLabel;
class QProgressDialog;
class QPushButton;

namespace lumenote::ui {

class ConfirmationField;

class DataSettingsSection final : public QWidget {
    Q_OBJECT

  public:
    explicit DataSettingsSection(SettingsDependencies& dependencies, QWidget* parent = nullptr);
    ~DataSettingsSection() override;

    // Each of these is what a button does once its file is chosen; each
    // returns whether it succeeded, shows its outcome under the section's
    // title, and a failure's sentence in the banner.
    bool exportTo(const std::filesystem::path& path, const portability::ExportRequest& request);
    bool backUpTo(const std::filesystem::path& path);
    // Validates the backup and shows its preview with the two ways to
    // restore it; a backup that fails validation shows why, and no preview.
    bool previewRestore(const std::filesystem::path& path);

  Q_SIGNALS:
    // The stored history changed (a restore, a delete-all or a reset): pages
    // that show it read it again.
    void historyChanged();

  private:
    portability::TallywiseBackupService backupService();
    void chooseExport();
    void chooseBackup();
    void chooseRestore();
    void merge();
    void replace();
    // The rules the recorder classifies with are read again from the store
    // after a restore brought other rules; what could not be read is shown.
    void reloadRules();
    void deleteAll();
    void reset();
    void hidePreview();
    void showOutcome(const QString& text);
    void showError(const QString& message);
    // A progress dialog for long work, shown only when it lasts.
    std::unique_ptr<QProgressDialog> progressDialog(const QString& label);
    portability::BackupStageProgress progressCallback(QProgressDialog& dialog);

    SettingsDependencies& dependencies_;
    std::optional<portability::ValidatedBackup> validated_;
    QLabel* banner_;
    QLabel* outcome_;
    QComboBox* exportFormat_;
    QWidget* preview_;
    QLabel* previewLines_;
    QLabel* previewWarnings_;
    QPushButton* merge_;
    ConfirmationField* replace_;
    ConfirmationField* deleteAll_;
    ConfirmationField* reset_;
};

}  // namespace lumenote::ui
