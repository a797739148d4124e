// `extension path`: where the built extension packages are and how to load
// them into a browser.
#include <fmt/format.h>

#include "bridge/extension_identity.hpp"
#include "bridge/native_host_registration.hpp"
#include "cli/browser_setup.hpp"
#include "cli/commands.hpp"

namespace lumenote::cli {

namespace {

void showExtensionPath(CliContext& context) {
    const auto folder = extensionPackagesFolder(bridge::runningExecutableFolder());
    if (!folder) {
        context.refuse(
            "The extension packages were not found beside this lumenote-cli. Build them with "
            "`make build` (they need node from scripts/install-deps).");
        return;
    }
    context.out << fmt::format(
        "Chromium, Google Chrome, Edge, Brave, Vivaldi and Opera:\n"
        "  {}\n"
        "  Open the browser's extensions page (chrome://extensions), turn on developer mode,\n"
        "  choose \"Load unpacked\" and pick this folder. Its id is {}.\n"
        "  Packed: {}\n"
        "Firefox:\n"
        "  {}\n"
        "  Open about:debugging, \"This Firefox\", \"Load Temporary Add-on…\" and pick this file\n"
        "  (add-on id {}).\n"
        "Then let the browser start Lumenote's helper: `lumenote-cli browser register`.\n",
        (*folder / "chromium").string(), bridge::chromiumExtensionIdentifier(),
        (*folder / "lumenote-chromium.zip").string(), (*folder / "lumenote-firefox.xpi").string(),
        bridge::firefoxAddonIdentifier());
}

}  // namespace

void installExtensionCommands(CLI::App& app, CliContext& context) {
    auto* extension =
        app.add_subcommand("extension", "The Lumenote browser extension that reports websites");
    extension->require_subcommand(1);
    extension
        ->add_subcommand("path", "Show where the built extension packages are and how to load them")
        ->callback([&context] { showExtensionPath(context); });
}

}  // namespace lumenote::cli
