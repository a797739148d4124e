#include "ui/models/about_settings.hpp"

namespace lumenote::ui::models {

std::string versionText(std::string_view appVersion) {
    if (appVersion.empty()) {
        return "Development build";
    }
    return "Version " + std::string(appVersion);
}

}  // namespace lumenote::ui::models
