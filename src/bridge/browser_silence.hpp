// The watchdog sentence: when a supported browser has been in front during a
// session for kBrowserSilenceDelaySeconds and no fresh event came from it,
// the recorder is recording only the browser's name, and the user is told why
// in one sentence instead of finding out afterwards.
#pragma once

#include <string>

#include "bridge/browser_extension_status.hpp"
#include "bridge/native_host_registration.hpp"
#include "bridge/supported_browser.hpp"

namespace lumenote::bridge {

// Long enough for a working extension to report the page after a switch
// (it does within a second), short enough to warn before much is lost.
inline constexpr double kBrowserSilenceDelaySeconds = 10.0;

// "Websites in Chromium are not recorded: …", naming the first cause that
// holds: the native host is not registered, the extension was never heard
// from (not installed), or it is disconnected.
std::string browserSilenceSentence(SupportedBrowser browser,
                                   const NativeHostSetupSnapshot& registration,
                                   BrowserExtensionConnectionState extension);

}  // namespace lumenote::bridge
