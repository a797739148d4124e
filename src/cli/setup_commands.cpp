// `setup wayland`: what this desktop needs before Lumenote can see the
// application in front, done where it can be done from here (installing and
// enabling the GNOME Shell extension), said in one sentence where it cannot.
#include "cli/commands.hpp"
#include "platform/observation/wayland_setup.hpp"
#include "runtime/desktop_observation.hpp"
#include "runtime/gnome_extension_setup.hpp"

namespace lumenote::cli {

namespace {

namespace observation = platform::observation;

void installGnomeExtension(CliContext& context) {
    const runtime::GnomeExtensionSetup setup = runtime::installShippedGnomeExtension(context.paths);
    for (const std::string& sentence : setup.sentences) {
        (setup.installed ? context.out : context.err) << sentence << "\n";
    }
    if (!setup.installed) {
        context.exitCode = kExitRefused;
    }
}

void runWaylandSetup(CliContext& context) {
    const observation::WaylandSetupStep step =
        observation::waylandSetupStep(runtime::observeDesktopNow());
    switch (step) {
        case observation::WaylandSetupStep::installGnomeExtension:
            installGnomeExtension(context);
            return;
        case observation::WaylandSetupStep::notWayland:
        case observation::WaylandSetupStep::nothingToInstall:
            context.out << observation::describe(step) << "\n";
            return;
        case observation::WaylandSetupStep::startKwin:
        case observation::WaylandSetupStep::startInSession:
        case observation::WaylandSetupStep::unsupportedDesktop:
            context.err << observation::describe(step) << "\n";
            context.exitCode = kExitRefused;
            return;
    }
}

}  // namespace

void installSetupCommands(CLI::App& app, CliContext& context) {
    auto* setup = app.add_subcommand(
        "setup", "Prepare this desktop so that Lumenote can see the application in front");
    setup->require_subcommand(1);
    setup
        ->add_subcommand("wayland",
                         "On GNOME, install and enable Lumenote's GNOME Shell extension; on "
                         "other Wayland desktops, say whether anything is needed. Exits with 1 "
                         "when this desktop cannot be prepared from here")
        ->callback([&context] { runWaylandSetup(context); });
}

}  // namespace lumenote::cli
