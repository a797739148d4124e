// What `lumenote-cli setup wayland` and the setup assistant do on this
// desktop: on GNOME the shell extension must be installed and enabled; on
// wlroots compositors and KDE Plasma there is nothing to install (the
// compositor reports the active window, or the recorder loads its KWin script
// by itself); elsewhere the desktop cannot be helped from here.
#pragma once

#include <string_view>

#include "platform/observation/observation_health.hpp"

namespace lumenote::platform::observation {

enum class WaylandSetupStep {
    notWayland,             // an X11 session, or no display at all
    nothingToInstall,       // the application in front is observed already
    installGnomeExtension,  // GNOME: install and enable the shell extension
    startKwin,              // KDE without KWin on the session bus
    startInSession,         // a Wayland session whose WAYLAND_DISPLAY is not passed on
    unsupportedDesktop      // a compositor without any way to observe
};

WaylandSetupStep waylandSetupStep(const ObservationHealth& health);

// The fixed sentence that says what the step means for the user; for
// installGnomeExtension, what they must do themselves after it.
std::string_view describe(WaylandSetupStep step);

}  // namespace lumenote::platform::observation
