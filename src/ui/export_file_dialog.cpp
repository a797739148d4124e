#include "ui/export_file_dialog.hpp"

#include <algorithm>
#include <array>

#include <QDir>
#include <QFileDialog>

#include "portability/export_file.hpp"
#include "ui/design/qt_text.hpp"

namespace lumenote::ui {

std::optional<ChosenExport> chooseExportFile(QWidget* parent, const QString& title,
                                             const portability::ExportRequest& base) {
    using portability::ExportFormat;
    using portability::ExportTable;
    const auto request = [&base](ExportFormat format, ExportTable table) {
        portability::ExportRequest made = base;
        made.format = format;
        made.table = table;
        return made;
    };
    const std::array<std::pair<QString, portability::ExportRequest>, 4> choices{{
        {QStringLiteral("JSON document (*.json)"),
         request(ExportFormat::json, ExportTable::sessions)},
        {QStringLiteral("Sessions table, CSV (*.csv)"),
         request(ExportFormat::csv, ExportTable::sessions)},
        {QStringLiteral("Segments table, CSV (*.csv)"),
         request(ExportFormat::csv, ExportTable::segments)},
        {QStringLiteral("Calendar (*.ics)"), request(ExportFormat::ics, ExportTable::sessions)},
    }};
    QStringList filters;
    for (const auto& [filter, made] : choices) {
        filters.append(filter);
    }
    QFileDialog dialog(parent, title, QDir::homePath());
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setNameFilters(filters);
    dialog.selectFile(qt(portability::defaultExportFileName(choices[0].second)));
    QObject::connect(&dialog, &QFileDialog::filterSelected, &dialog, [&](const QString& filter) {
        const auto chosen = std::max<qsizetype>(0, filters.indexOf(filter));
        dialog.selectFile(qt(
            portability::defaultExportFileName(choices[static_cast<std::size_t>(chosen)].second)));
    });
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) {
        return std::nullopt;
    }
    const auto chosen = std::max<qsizetype>(0, filters.indexOf(dialog.selectedNameFilter()));
    return ChosenExport{std::filesystem::path(dialog.selectedFiles().front().toStdString()),
                        choices[static_cast<std::size_t>(chosen)].second};
}

}  // namespace lumenote::ui
