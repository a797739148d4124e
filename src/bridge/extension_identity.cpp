#include "bridge/extension_identity.hpp"

namespace lumenote::bridge {

std::string_view chromiumExtensionIdentifier() {
    return LUMENOTE_CHROMIUM_EXTENSION_ID;
}

std::string_view firefoxAddonIdentifier() {
    return LUMENOTE_FIREFOX_ADDON_ID;
}

}  // namespace lumenote::bridge
