#include "platform/observation/wayland_setup.hpp"

#include <algorithm>

namespace lumenote::platform::observation {

namespace {

bool lacks(const ObservationHealth& health, MissingPiece piece) {
    return std::ranges::find(health.choice.missing, piece) != health.choice.missing.end();
}

}  // namespace

WaylandSetupStep waylandSetupStep(const ObservationHealth& health) {
    if (health.choice.frontmost == FrontmostBackend::x11 ||
        lacks(health, MissingPiece::noDisplay)) {
        return WaylandSetupStep::notWayland;
    }
    // An extension that runs but does not report is installed: enabling it
    // again (and logging in again) is still the fix.
    if (health.choice.frontmost == FrontmostBackend::gnomeShellExtension ||
        lacks(health, MissingPiece::gnomeShellExtensionNotRunning)) {
        return frontmostObservable(health) ? WaylandSetupStep::nothingToInstall
                                           : WaylandSetupStep::installGnomeExtension;
    }
    if (lacks(health, MissingPiece::kwinNotOnSessionBus)) {
        return WaylandSetupStep::startKwin;
    }
    if (lacks(health, MissingPiece::waylandDisplayUnset)) {
        return WaylandSetupStep::startInSession;
    }
    if (health.choice.frontmost == FrontmostBackend::wlrootsForeignToplevel ||
        health.choice.frontmost == FrontmostBackend::kwinScript) {
        return WaylandSetupStep::nothingToInstall;
    }
    return WaylandSetupStep::unsupportedDesktop;
}

std::string_view describe(WaylandSetupStep step) {
    switch (step) {
        case WaylandSetupStep::notWayland:
            return "This is not a Wayland session: Lumenote observes it without any set-up.";
        case WaylandSetupStep::nothingToInstall:
            return "Nothing to install: Lumenote already sees the application in front on this "
                   "desktop.";
        case WaylandSetupStep::installGnomeExtension:
            return "Log out and log back in so that GNOME Shell loads the Lumenote extension.";
        case WaylandSetupStep::startKwin:
            return "KWin does not answer on the session bus; start Lumenote from your Plasma "
                   "session so that it can load its KWin script.";
        case WaylandSetupStep::startInSession:
            return "Lumenote runs outside your Wayland session (WAYLAND_DISPLAY is not set); "
                   "start it from your desktop session.";
        case WaylandSetupStep::unsupportedDesktop:
            return "This compositor tells other programs neither which window is active nor how "
                   "to ask; Lumenote cannot see the application in front here.";
    }
    return "";
}

}  // namespace lumenote::platform::observation
