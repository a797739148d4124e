// What the browser commands of lumenote-cli share: the registration checker
// for this user and this installation and the browsers named on the command
// line.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "bridge/native_host_registration.hpp"
#include "bridge/supported_browser.hpp"
#include "cli/cli_context.hpp"
#include "foundation/result.hpp"

namespace lumenote::cli {

using bridge::extensionPackagesFolder;
using bridge::registrableBrowsers;

// The checker for this user's folders and the helper bundled with this
// installation (an empty helper path when none was found).
bridge::NativeHostRegistrationChecker registrationChecker(const CliContext& context);

// A browser as the user may name it: its case name ("googleChrome",
// "microsoftEdge"), a short name ("chrome", "edge", "chromium", "firefox",
// "brave", "vivaldi", "opera") or its identifier ("org.mozilla.firefox"), in
// any case. Fails with a sentence naming the accepted names.
Result<bridge::SupportedBrowser, std::string> parseBrowserName(std::string_view name);

}  // namespace lumenote::cli
