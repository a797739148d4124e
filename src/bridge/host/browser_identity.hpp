// Which browser started the host. Browsers start a native-messaging host with
// arguments of their own: Chromium-family browsers pass the calling
// extension's origin ("chrome-extension://<id>/"), Firefox passes the path of
// the host's manifest and the add-on's id. Neither names the browser among the
// Chromium family, so the parent process's executable decides, through the
// table below; a "--browser=<identifier>" argument overrides both (for a
// wrapper script or a browser installed where the table does not look). When
// nothing decides, the host adopts the identifier of the extension's first
// message.
//
//   executable name (any folder)            browser
//   google-chrome*, chrome under .../google/ googleChrome
//   chrome elsewhere, chromium*              chromium
//   msedge, microsoft-edge*                  microsoftEdge
//   brave, brave-browser*                    brave
//   vivaldi, vivaldi-bin                     vivaldi
//   opera                                    opera
//   firefox, firefox-esr, firefox-bin        firefox
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "bridge/supported_browser.hpp"

namespace lumenote::bridge::host {

// The browser whose executable is at `executablePath` ("/usr/lib/chromium/
// chromium"), by the table above; a " (deleted)" suffix, which the kernel adds
// after the file was replaced by an update, is ignored.
std::optional<SupportedBrowser> browserFromExecutable(std::string_view executablePath);

// True when the arguments are the ones Firefox passes (a manifest path ending
// in ".json", then the add-on's id).
bool hasFirefoxArguments(const std::vector<std::string>& arguments);

// The browser from the arguments (without the program name) and the parent's
// executable path: Firefox's arguments name Firefox; otherwise the parent's
// executable decides.
std::optional<SupportedBrowser> identifyBrowser(const std::vector<std::string>& arguments,
                                                std::string_view parentExecutable);

// The executable of this process's parent, as /proc shows it; empty when it
// cannot be read.
std::string parentProcessExecutable();

}  // namespace lumenote::bridge::host
