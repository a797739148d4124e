// The save dialog of an export: one file type per format (JSON, the
// sessions table, the segments table, a calendar), each proposing the
// export's default file name when chosen.
#pragma once

#include <filesystem>
#include <optional>

#include <QString>

#include "portability/data_export_service.hpp"

class QWidget;

namespace lumenote::ui {

struct ChosenExport {
    std::filesystem::path path;
    portability::ExportRequest request;
};

// Asks where to write the export; the requests start from `base` (which
// names the sessions, if any) and differ in format and table. nullopt when
// the user cancels.
std::optional<ChosenExport> chooseExportFile(QWidget* parent, const QString& title,
                                             const portability::ExportRequest& base);

}  // namespace lumenote::ui
