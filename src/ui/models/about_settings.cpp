#include "ui/models/about_settings.hpp"

namespace lumenote::ui::models {

std::string versionText(std::string_view appVersion, std::string_view appBuild) {
    if (appVersion.empty()) {
        return "Development build";
    }
    std::string text = "Version " + std::string(appVersion);
    if (!appBuild.empty()) {
        text += " (build " + std::string(appBuild) + ")";
    }
    return text;
}

}  // namespace lumenote::ui::models
