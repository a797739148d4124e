// What this desktop lets Lumenote observe, as the setup check reports it,
// turned into rich text: one line each, a check mark for what works and a
// warning sign for a gap (DesktopObservationView shows it).
#pragma once

#include <QString>
#include <string_view>

namespace lumenote::ui {

QString observationReportHtml(std::string_view report);

}  // namespace lumenote::ui
