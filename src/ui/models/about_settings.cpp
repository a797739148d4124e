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

std::string updateAddressText(std::string_view effectiveAddress) {
    if (effectiveAddress.empty()) {
        return "This build names no update address; the updates.feedAddress preference can "
               "name one.";
    }
    return "Update address: " + std::string(effectiveAddress);
}

}  // namespace lumenote::ui::models
