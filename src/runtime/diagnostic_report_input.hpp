// Gathers what the diagnostic report states, at the moment it is built: the
// program's version keys, the system, the preferences, the store's counts,
// notifications and each browser's readiness. Reads only; never creates the
// store or any other file.
#pragma once

#include <optional>
#include <string>

#include "foundation/user_paths.hpp"
#include "portability/diagnostic_report.hpp"

namespace lumenote::runtime {

struct DiagnosticReportSurroundings {
    UserPaths paths;
    std::optional<std::string> appVersion;
    std::optional<std::string> appBuild;
};

portability::DiagnosticReportFacts gatherDiagnosticReportFacts(
    const DiagnosticReportSurroundings& surroundings);

}  // namespace lumenote::runtime
