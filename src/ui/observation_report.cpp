#include "ui/observation_report.hpp"

#include "ui/design/qt_text.hpp"
#include "ui/models/onboarding.hpp"

namespace lumenote::ui {

QString observationReportHtml(std::string_view report) {
    QString lines;
    for (const models::ObservationLine& line : models::observationLines(report)) {
        lines += (line.ok ? QStringLiteral("✓ ") : QStringLiteral("⚠ ")) +
                 qt(line.text).toHtmlEscaped() + QStringLiteral("<br>");
    }
    return lines;
}

}  // namespace lumenote::ui
