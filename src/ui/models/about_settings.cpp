#include "ui/models/about_settings.hpp"

namespace lumenote::ui::models {

std::string versionText(std::string_view appVersion) {
    if (appVersion.empty()) {
        return "Development build";
    }
    return "Version " + std::string(appVersion);
}

std::string updateAddressText(std::string_view effectiveAddress) {
    if (effectiveAddress.empty()) {
        return "This build names no update address; the updates.feedAddress preference can "
               "name one.";
    }
    return "Update address: " + std::string(effectiveAddress);
}

}  // namespace lumenote::ui::models
