// The extension's fixed identities, compiled in from extension/ids.json (the
// one place they are written, which the extension's build checks against its
// public key): the Chromium-family extension id that native-host manifests
// authorise by origin, and Firefox's add-on id.
#pragma once

#include <string_view>

namespace lumenote::bridge {

std::string_view chromiumExtensionIdentifier();
std::string_view firefoxAddonIdentifier();

}  // namespace lumenote::bridge
