#include "ui/settings_data_section.hpp"

#include <QComboBox>
#include <QCoreApplication>
#include <QDir>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressDialog>
#include <QPushButton>
#include <QVBoxLayout>

#include "portability/automatic_backups.hpp"
#include "portability/export_file.hpp"
#include "ui/design/banner.hpp"
#include "ui/design/card.hpp"
#include "ui/design/named_controls.hpp"
#include "ui/design/qt_text.hpp"
#include "ui/models/data_settings.hpp"
#include "ui/settings_confirmation_field.hpp"
#include "ui/settings_section_frame.hpp"

namespace lumenote::ui {

namespace {

using portability::ExportFormat;
using portability::ExportRequest;
using portability::ExportTable;

struct ExportChoice {
    const char* label;
    const char* filter;
    ExportRequest request;
};

const ExportChoice kExportChoices[] = {
    {"JSON document", "JSON document (*.json)", {.format = ExportFormat::json}},
    {"Sessions table (CSV)", "Sessions table, CSV (*.csv)", {.format = ExportFormat::csv}},
    {"Segments table (CSV)",
     "Segments table, CSV (*.csv)",
     {.format = ExportFormat::csv, .table = ExportTable::segments}},
    {"Calendar (ICS)", "Calendar (*.ics)", {.format = ExportFormat::ics}},
};

QString stageLabel(portability::BackupStage stage) {
    switch (stage) {
        case portability::BackupStage::writing:
            return QStringLiteral("Writing the backup…");
        case portability::BackupStage::verifying:
            return QStringLiteral("Verifying the backup…");
        case portability::BackupStage::validating:
            return QStringLiteral("Validating the backup…");
        case portability::BackupStage::restoring:
            return QStringLiteral("Restoring…");
    }
    return {};
}

QLabel* wrappedLabel(const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setWordWrap(true);
    return label;
}

}  // namespace

DataSettingsSection::DataSettingsSection(SettingsDependencies& dependencies, QWidget* parent)
    : QWidget(parent), dependencies_(dependencies) {
    setObjectName(QStringLiteral("dataSection"));
    auto* layout = sectionLayout(this, QStringLiteral("Data"), qt(models::kDataSectionSummary));

    banner_ = design::errorBanner(QStringLiteral("dataBanner"), this);
    layout->addWidget(banner_);
    outcome_ = wrappedLabel({}, this);
    outcome_->setObjectName(QStringLiteral("dataOutcome"));
    outcome_->setVisible(false);
    layout->addWidget(outcome_);

    auto* exporting = new design::Card(
        QStringLiteral("Export"),
        QStringLiteral("Every session as a file to read elsewhere. Exporting changes nothing."),
        this);
    auto* exportRow = new QHBoxLayout;
    exportFormat_ = new QComboBox(exporting);
    exportFormat_->setObjectName(QStringLiteral("exportFormat"));
    exportFormat_->setAccessibleName(QStringLiteral("Export format"));
    for (const ExportChoice& choice : kExportChoices) {
        exportFormat_->addItem(QString::fromUtf8(choice.label));
    }
    auto* exportButton = design::namedButton(QStringLiteral("Export All Sessions…"),
                                             QStringLiteral("exportButton"), exporting);
    exportRow->addWidget(exportFormat_);
    exportRow->addWidget(exportButton);
    exportRow->addStretch(1);
    exporting->bodyLayout()->addLayout(exportRow);
    layout->addWidget(exporting);

    auto* backup = new design::Card(
        QStringLiteral("Backup"),
        QStringLiteral("Sessions, classification rules and supported preferences in one "
                       ".tallywisebackup file, read back and verified once written."),
        this);
    auto* backupRow = new QHBoxLayout;
    auto* backupButton = design::namedButton(QStringLiteral("Back Up History…"),
                                             QStringLiteral("backupButton"), backup);
    backupRow->addWidget(backupButton);
    backupRow->addStretch(1);
    backup->bodyLayout()->addLayout(backupRow);
    layout->addWidget(backup);

    auto* restore = new design::Card(
        QStringLiteral("Restore"),
        QStringLiteral("A backup is validated and previewed first; nothing changes until you "
                       "choose how to restore it."),
        this);
    auto* restoreRow = new QHBoxLayout;
    auto* chooseButton = design::namedButton(QStringLiteral("Choose Backup…"),
                                             QStringLiteral("restoreChooseButton"), restore);
    restoreRow->addWidget(chooseButton);
    restoreRow->addStretch(1);
    restore->bodyLayout()->addLayout(restoreRow);
    preview_ = new QWidget(restore);
    preview_->setObjectName(QStringLiteral("restorePreview"));
    auto* previewLayout = new QVBoxLayout(preview_);
    previewLayout->setContentsMargins(0, 8, 0, 0);
    auto* previewTitle = new QLabel(qt(models::kRestorePreviewTitle), preview_);
    QFont bold = previewTitle->font();
    bold.setWeight(QFont::DemiBold);
    previewTitle->setFont(bold);
    previewLayout->addWidget(previewTitle);
    previewLines_ = wrappedLabel({}, preview_);
    previewLines_->setObjectName(QStringLiteral("restorePreviewLines"));
    previewLines_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    previewLayout->addWidget(previewLines_);
    previewWarnings_ = wrappedLabel({}, preview_);
    previewWarnings_->setObjectName(QStringLiteral("restorePreviewWarnings"));
    previewLayout->addWidget(previewWarnings_);
    previewLayout->addWidget(wrappedLabel(qt(models::kMergeExplanation), preview_));
    auto* mergeRow = new QHBoxLayout;
    merge_ = design::namedButton(QStringLiteral("Merge with Current Data"),
                                 QStringLiteral("mergeButton"), preview_);
    mergeRow->addWidget(merge_);
    mergeRow->addStretch(1);
    previewLayout->addLayout(mergeRow);
    previewLayout->addWidget(wrappedLabel(qt(models::kReplaceExplanation), preview_));
    replace_ = new ConfirmationField(
        models::kRestoreConfirmationWord, QStringLiteral("Replace Current Lumenote Data"),
        QStringLiteral("replace"), ConfirmationField::Prompt::saidAbove, preview_);
    previewLayout->addWidget(replace_);
    restore->bodyLayout()->addWidget(preview_);
    preview_->setVisible(false);
    layout->addWidget(restore);

    auto* removal = new design::Card(QStringLiteral("Delete All Sessions"),
                                     qt(models::kDeleteAllExplanation), this);
    deleteAll_ = new ConfirmationField(
        models::kDeleteAllConfirmationWord, QStringLiteral("Delete All Sessions"),
        QStringLiteral("deleteAll"), ConfirmationField::Prompt::shown, removal);
    removal->bodyLayout()->addWidget(deleteAll_);
    layout->addWidget(removal);

    auto* resetting = new design::Card(QStringLiteral("Reset History and Preferences"),
                                       qt(models::kResetExplanation), this);
    reset_ = new ConfirmationField(
        models::kResetConfirmationWord, QStringLiteral("Reset History and Preferences"),
        QStringLiteral("reset"), ConfirmationField::Prompt::shown, resetting);
    resetting->bodyLayout()->addWidget(reset_);
    layout->addWidget(resetting);
    layout->addStretch(1);

    connect(exportButton, &QPushButton::clicked, this, &DataSettingsSection::chooseExport);
    connect(backupButton, &QPushButton::clicked, this, &DataSettingsSection::chooseBackup);
    connect(chooseButton, &QPushButton::clicked, this, &DataSettingsSection::chooseRestore);
    connect(merge_, &QPushButton::clicked, this, &DataSettingsSection::merge);
    connect(replace_, &ConfirmationField::confirmed, this, &DataSettingsSection::replace);
    connect(deleteAll_, &ConfirmationField::confirmed, this, &DataSettingsSection::deleteAll);
    connect(reset_, &ConfirmationField::confirmed, this, &DataSettingsSection::reset);
}

DataSettingsSection::~DataSettingsSection() = default;

portability::TallywiseBackupService DataSettingsSection::backupService() {
    return portability::TallywiseBackupService({
        .store = dependencies_.store,
        .history = dependencies_.historyReader,
        .importer = dependencies_.importer,
        .preferences = dependencies_.preferences,
        .wallClock = dependencies_.wallClock,
        .calendar = dependencies_.calendar,
        .automaticBackupFolder = portability::automaticBackupFolder(dependencies_.paths),
        .appVersion = dependencies_.appVersion,
    });
}

std::unique_ptr<QProgressDialog> DataSettingsSection::progressDialog(const QString& label) {
    auto dialog = std::make_unique<QProgressDialog>(label, QString(), 0, 0, this);
    dialog->setWindowModality(Qt::WindowModal);
    dialog->setMinimumDuration(500);
    return dialog;
}

portability::BackupStageProgress DataSettingsSection::progressCallback(QProgressDialog& dialog) {
    return [&dialog](portability::BackupStage stage, std::size_t done, std::size_t total) {
        QString label = stageLabel(stage);
        if (done > 0) {
            label += total > 0 ? QStringLiteral(" %1 of %2 sessions").arg(done).arg(total)
                               : QStringLiteral(" %1 sessions").arg(done);
        }
        dialog.setLabelText(label);
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    };
}

void DataSettingsSection::chooseExport() {
    const ExportChoice& choice = kExportChoices[std::max(0, exportFormat_->currentIndex())];
    const QString path = QFileDialog::getSaveFileName(
        this, QStringLiteral("Export Sessions"),
        QDir::home().filePath(qt(portability::defaultExportFileName(choice.request))),
        QString::fromUtf8(choice.filter));
    if (!path.isEmpty()) {
        (void)exportTo(path.toStdString(), choice.request);
    }
}

bool DataSettingsSection::exportTo(const std::filesystem::path& path,
                                   const portability::ExportRequest& request) {
    banner_->setVisible(false);
    auto file = portability::AtomicExportFile::create(path);
    if (!file) {
        showError(qt(file.error().message()));
        return false;
    }
    const auto dialog = progressDialog(QStringLiteral("Exporting sessions…"));
    portability::DataExportService service(dependencies_.store, dependencies_.historyReader);
    auto written =
        service.write(request, dependencies_.wallClock.now(), **file, [&dialog](std::size_t done) {
            if (done % 64 == 0) {
                dialog->setLabelText(QStringLiteral("Exporting sessions… %1 written").arg(done));
                QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
            }
        });
    if (!written) {
        showError(qt(written.error().message()));
        return false;
    }
    if (auto committed = (*file)->commit(); !committed) {
        showError(qt(committed.error().message()));
        return false;
    }
    showOutcome(qt(models::exportedText(written->sessions)));
    return true;
}

void DataSettingsSection::chooseBackup() {
    const QString path =
        QFileDialog::getSaveFileName(this, QStringLiteral("Back Up Lumenote History"),
                                     QDir::home().filePath(qt(portability::kSuggestedBackupName)),
                                     QStringLiteral("Lumenote history backup (*.tallywisebackup)"));
    if (!path.isEmpty()) {
        (void)backUpTo(path.toStdString());
    }
}

bool DataSettingsSection::backUpTo(const std::filesystem::path& path) {
    banner_->setVisible(false);
    const auto dialog = progressDialog(stageLabel(portability::BackupStage::writing));
    auto created = backupService().createBackup(path, progressCallback(*dialog));
    if (!created) {
        showError(qt(created.error().message()));
        return false;
    }
    showOutcome(qt(portability::kBackupCreatedText) + QStringLiteral(": ") +
                QString::fromStdString(path.filename().string()));
    return true;
}

void DataSettingsSection::chooseRestore() {
    const QString path = QFileDialog::getOpenFileName(
        this, QStringLiteral("Restore Lumenote History Backup"), QDir::homePath(),
        QStringLiteral("Lumenote history backup (*.tallywisebackup)"));
    if (!path.isEmpty()) {
        (void)previewRestore(path.toStdString());
    }
}

bool DataSettingsSection::previewRestore(const std::filesystem::path& path) {
    banner_->setVisible(false);
    hidePreview();
    const auto dialog = progressDialog(stageLabel(portability::BackupStage::validating));
    auto validated = backupService().validateBackup(path, progressCallback(*dialog));
    if (!validated) {
        showError(qt(models::restoreValidationFailedText(validated.error())));
        return false;
    }
    validated_.emplace(std::move(*validated));
    QStringList lines;
    for (const std::string& line :
         models::restorePreviewLines(validated_->report, dependencies_.calendar)) {
        lines.append(qt(line));
    }
    previewLines_->setText(lines.join(QLatin1Char('\n')));
    QStringList warnings;
    for (const std::string& warning : validated_->report.warnings) {
        warnings.append(QStringLiteral("Warning: ") + qt(warning));
    }
    previewWarnings_->setText(warnings.join(QLatin1Char('\n')));
    previewWarnings_->setVisible(!warnings.isEmpty());
    preview_->setVisible(true);
    merge_->setFocus(Qt::OtherFocusReason);
    return true;
}

void DataSettingsSection::hidePreview() {
    validated_.reset();
    replace_->clear();
    preview_->setVisible(false);
}

void DataSettingsSection::merge() {
    if (!validated_) {
        return;
    }
    banner_->setVisible(false);
    const auto dialog = progressDialog(stageLabel(portability::BackupStage::restoring));
    auto merged = backupService().merge(*validated_, progressCallback(*dialog));
    if (!merged) {
        showError(qt(merged.error().message()));
        return;
    }
    hidePreview();
    showOutcome(qt(portability::restoreCompleteText(*merged)));
    reloadRules();
    Q_EMIT historyChanged();
}

void DataSettingsSection::replace() {
    if (!validated_) {
        return;
    }
    banner_->setVisible(false);
    const auto dialog = progressDialog(stageLabel(portability::BackupStage::restoring));
    auto replaced = backupService().replace(*validated_, replace_->typed().toStdString(),
                                            progressCallback(*dialog));
    if (!replaced) {
        showError(qt(replaced.error().message()));
        return;
    }
    hidePreview();
    QString text = qt(portability::restoreCompleteText(*replaced));
    if (replaced->automaticBackup) {
        text += QStringLiteral("\nAutomatic backup of the previous data: ") +
                QString::fromStdString(replaced->automaticBackup->string());
    }
    showOutcome(text);
    reloadRules();
    Q_EMIT historyChanged();
}

void DataSettingsSection::reloadRules() {
    const auto problems = dependencies_.rules.load();
    if (!problems.empty()) {
        // The restore itself succeeded: its outcome stays beside the problem.
        banner_->setText(qt(problems.front().message()));
        banner_->setVisible(true);
    }
}

void DataSettingsSection::deleteAll() {
    banner_->setVisible(false);
    const auto count = dependencies_.store.sessionCount();
    if (auto deleted = dependencies_.history.deleteAllSessions(); !deleted.ok()) {
        showError(qt(deleted.error().message()));
        return;
    }
    deleteAll_->clear();
    showOutcome(qt(models::deletedAllText(count.ok() ? std::optional(*count) : std::nullopt)));
    Q_EMIT historyChanged();
}

void DataSettingsSection::reset() {
    banner_->setVisible(false);
    if (auto reset = dependencies_.history.resetAllData(); !reset.ok()) {
        showError(qt(reset.error().message()));
        return;
    }
    reset_->clear();
    hidePreview();
    showOutcome(qt(models::kResetDoneText));
    Q_EMIT historyChanged();
}

void DataSettingsSection::showOutcome(const QString& text) {
    outcome_->setText(text);
    outcome_->setVisible(true);
}

void DataSettingsSection::showError(const QString& message) {
    outcome_->setVisible(false);
    banner_->setText(message);
    banner_->setVisible(true);
}

}  // namespace lumenote::ui
