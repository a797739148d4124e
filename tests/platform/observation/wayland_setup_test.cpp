#include "platform/observation/wayland_setup.hpp"

#include <gtest/gtest.h>

namespace lumenote::platform::observation {
namespace {

using F = FrontmostBackend;
using M = MissingPiece;
using S = WaylandSetupStep;

struct SetupCase {
    const char* label;
    F chosen;
    std::vector<M> missing;
    bool reporting;
    S expected;
};

TEST(WaylandSetupTest, EachDesktopGetsItsStep) {
    const SetupCase cases[] = {
        {"X11", F::x11, {}, true, S::notWayland},
        {"no display", F::none, {M::noDisplay}, false, S::notWayland},
        {"sway", F::wlrootsForeignToplevel, {}, true, S::nothingToInstall},
        {"sway without idle",
         F::wlrootsForeignToplevel,
         {M::idleProtocolUnavailable},
         true,
         S::nothingToInstall},
        {"GNOME, extension absent",
         F::none,
         {M::gnomeShellExtensionNotRunning},
         false,
         S::installGnomeExtension},
        {"GNOME, extension silent", F::gnomeShellExtension, {}, false, S::installGnomeExtension},
        {"GNOME, extension reporting", F::gnomeShellExtension, {}, true, S::nothingToInstall},
        {"Plasma", F::kwinScript, {}, true, S::nothingToInstall},
        {"Plasma without KWin", F::none, {M::kwinNotOnSessionBus}, false, S::startKwin},
        {"other compositor",
         F::none,
         {M::foreignToplevelUnavailable},
         false,
         S::unsupportedDesktop},
        {"Xwayland only", F::none, {M::waylandDisplayUnset}, false, S::startInSession},
    };
    for (const SetupCase& setup : cases) {
        ObservationHealth health;
        health.choice = {setup.chosen, IdleBackend::none, setup.missing};
        health.frontmost = setup.chosen;
        health.frontmostReporting = setup.reporting;
        EXPECT_EQ(waylandSetupStep(health), setup.expected) << setup.label;
        EXPECT_FALSE(describe(waylandSetupStep(health)).empty()) << setup.label;
    }
}

}  // namespace
}  // namespace lumenote::platform::observation
