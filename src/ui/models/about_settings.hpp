// What the About section of the settings says: the version line, where
// updates come from, and what the diagnostic report holds.
#pragma once

#include <string>
#include <string_view>

namespace lumenote::ui::models {

// "Version 1.4.0 (build 12)"; "Version 1.4.0" without a build number;
// "Development build" without a version.
std::string versionText(std::string_view appVersion, std::string_view appBuild);

inline constexpr std::string_view kUpdatesText =
    "Updates come from your distribution's package manager, together with the rest of the "
    "system. Lumenote never downloads anything by itself.";
// Builds with the update check say what "Check for Updates…" does instead.
inline constexpr std::string_view kUpdateChecksText =
    "When allowed, Check for Updates\u2026 asks the update address whether a newer Lumenote "
    "exists, only when you choose it, and accepts only an answer signed by Lumenote's release "
    "key. Nothing is downloaded or installed by itself.";
inline constexpr std::string_view kAllowUpdateChecksTitle = "Allow checking for updates when I ask";

// Where a check would ask: the effective feed address, or what to do when
// there is none.
std::string updateAddressText(std::string_view effectiveAddress);

inline constexpr std::string_view kReportPrivacyText =
    "The report holds versions, counts and switches only: no subject, goal, note, application, "
    "website, PDF or session time. Nothing is sent; you choose whether to attach it.";

}  // namespace lumenote::ui::models
